// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_BENCHMARKS_FILEOFKEYS_H
#define MARVOLA_BENCHMARKS_FILEOFKEYS_H

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <array>
#include <optional>

/// A group of numbered paths in a file of groups and keys, as many as the benchmark's argument says. The texts are made
/// beforehand, so that only their handling is measured.
class FileOfKeys : public benchmark::Fixture
{
public:
    void SetUp(benchmark::State &state) override
    {
        m_folder.emplace();
        path = m_folder->filePath(QStringLiteral("list"));
        const auto count = static_cast<int>(state.range(0));
        for (int number = 1; number <= count; ++number) {
            keys.append(QString::number(number));
            for (int round = 0; round < 2; ++round)
                m_values[static_cast<std::size_t>(round)].append(
                    QStringLiteral("/mmc/mmca1/music/some artist/some album/%1 - track %2.mp3").arg(number).arg(round));
        }
    }
    void TearDown(benchmark::State &state) override
    {
        state.SetComplexityN(state.range(0));
        keys.clear();
        m_values = {};
        m_folder.reset();
    }

protected:
    /// Every value is another one than in the round before.
    const QStringList &valuesOf(int round) const { return m_values[round % 2 == 0 ? 0 : 1]; }

    const QString group = QStringLiteral("pl-list");
    QString path;
    QStringList keys;

private:
    std::array<QStringList, 2> m_values;
    std::optional<QTemporaryDir> m_folder;
};

inline void countsOfKeys(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(10)->Arg(1'000)->Arg(65'535)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
    benchmark->Complexity();
}

#endif
