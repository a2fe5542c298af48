// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_BENCHMARKS_FULLINDEX_H
#define MARVOLA_BENCHMARKS_FULLINDEX_H

#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <optional>

/// As many audio files as the benchmark's argument says, some ten by each artist.
class FullIndex : public benchmark::Fixture
{
public:
    void SetUp(benchmark::State &state) override
    {
        m_folder.emplace();
        path = m_folder->filePath(QStringLiteral("index"));
        count = static_cast<int>(state.range(0));
    }
    void TearDown(benchmark::State &state) override
    {
        state.SetComplexityN(state.range(0));
        m_folder.reset();
    }

protected:
    static QString pathOf(int number)
    {
        return QStringLiteral("/mmc/mmca1/music/album %1/track %2.mp3").arg(number / 10).arg(number);
    }
    QString artistOf(int number) const { return QStringLiteral("Artist %1").arg(number % artists()); }
    /// One of which there are files in all parts of the index.
    QString wantedArtist() const { return artistOf(artists() / 2); }

    QString path;
    int count = 0;

private:
    int artists() const { return qMax(1, count / 10); }

    std::optional<QTemporaryDir> m_folder;
};

inline void countsOfRecords(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(10)->Arg(1'000)->Arg(65'535)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
    benchmark->Complexity();
}

#endif
