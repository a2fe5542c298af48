// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/PlaylistCatalogue.h"
#include "playlist/PlaylistFile.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QFile>
#include <QtCore/QSaveFile>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <optional>

/// Each operation on the catalogue of playlists, with a playlist and a catalogue up to the longest there are in one
/// list file, beside the floor for it: the bytes of the file read, or read and written anew.
namespace {

using namespace marvola;
using namespace Qt::StringLiterals;

constexpr int Longest = CurrentList::MaxItems;
constexpr PlaylistLimits Limits = {Longest, Longest};

/// A list file with as many playlists as the benchmark's argument says, of which "Long" comes last and has as many
/// items.
class Catalogue : public benchmark::Fixture
{
public:
    void SetUp(benchmark::State &state) override
    {
        m_folder.emplace();
        path = m_folder->filePath(u"list"_s);
        count = static_cast<int>(state.range(0));
        QStringList items;
        for (int number = 0; number < count; ++number)
            items.append(u"/mmc/mmca1/music/some artist/some album/%1 - track.mp3"_s.arg(number));
        list.restore(u"pl-Long"_s, items, 0, Shuffle::Off);
        if (!make())
            state.SkipWithError("the list file cannot be written");
    }
    void TearDown(benchmark::State &state) override
    {
        state.SetComplexityN(state.range(0));
        state.counters["bytes"] = static_cast<double>(QFile(path).size());
        m_folder.reset();
    }

protected:
    /// The file anew.
    bool make()
    {
        QFile::remove(path);
        ConfigFile file(path, false);
        const auto add = [&file](int number, const QString &name) {
            return file.writeEntry(u"allplaylist"_s, QString::number(number), u"pl-"_s + name);
        };
        bool isWritten = file.writeEntry(u"allplaylist"_s, u"counter"_s, count) && add(count, u"Long"_s);
        for (int number = 1; isWritten && number < count; ++number)
            isWritten = add(number, u"playlist"_s + QString::number(number - 1));
        return isWritten && file.flush() && save() == PlaylistStatus::Done;
    }
    PlaylistStatus save() { return savePlayList(path, u"Long"_s, Limits, list); }

    int count = 0;
    QString path;
    CurrentList list;

private:
    std::optional<QTemporaryDir> m_folder;
};

BENCHMARK_DEFINE_F(Catalogue, Has)(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(hasPlayList(path, u"Long"_s));
}

BENCHMARK_DEFINE_F(Catalogue, DefaultName)(benchmark::State &state)
{
    for (auto _ : state) {
        std::atomic<quint32> counter{0};
        benchmark::DoNotOptimize(getDefaultPlayListName(path, counter));
    }
}

BENCHMARK_DEFINE_F(Catalogue, SaveLast)(benchmark::State &state)
{
    for (auto _ : state) {
        if (save() != PlaylistStatus::Done)
            state.SkipWithError("the playlist cannot be saved");
    }
}

BENCHMARK_DEFINE_F(Catalogue, RenameThereAndBack)(benchmark::State &state)
{
    for (auto _ : state) {
        if (!renamePlayList(path, u"Long"_s, u"Longer"_s, list) || !renamePlayList(path, u"Longer"_s, u"Long"_s, list))
            state.SkipWithError("the playlist cannot be renamed");
    }
}

/// The catalogue loses its first entry each time, and all others close the gap.
BENCHMARK_DEFINE_F(Catalogue, DeleteFirst)(benchmark::State &state)
{
    int number = 0;
    for (auto _ : state) {
        if (number == count - 1) {
            state.PauseTiming();
            make();
            number = 0;
            state.ResumeTiming();
        }
        if (!deletePlayList(path, u"playlist"_s + QString::number(number++)))
            state.SkipWithError("the playlist cannot be deleted");
    }
}

/// Stores the longest list back; the catalogue must not be full for it.
BENCHMARK_DEFINE_F(Catalogue, New)(benchmark::State &state)
{
    const PlaylistLimits roomy = {0, Longest};
    for (auto _ : state) {
        CurrentList next = list;
        if (newPlayList(path, roomy, next) != PlaylistStatus::Done)
            state.SkipWithError("the list cannot be stored back");
    }
}

BENCHMARK_DEFINE_F(Catalogue, FloorOfRead)(benchmark::State &state)
{
    for (auto _ : state) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            state.SkipWithError("the file cannot be read");
        benchmark::DoNotOptimize(file.readAll());
    }
}

/// The file's bytes read and written anew, as a commit does, durably.
BENCHMARK_DEFINE_F(Catalogue, FloorOfWrite)(benchmark::State &state)
{
    for (auto _ : state) {
        QFile file(path);
        QSaveFile copy(path);
        if (!file.open(QIODevice::ReadOnly) || !copy.open(QIODevice::WriteOnly) || copy.write(file.readAll()) < 0 ||
            !copy.commit())
            state.SkipWithError("the file cannot be written");
    }
}

void atManySizes(benchmark::internal::Benchmark *operation)
{
    operation->Arg(10)->Arg(1'000)->Arg(Longest)->Unit(benchmark::kMillisecond)->UseRealTime()->Complexity();
}

BENCHMARK_REGISTER_F(Catalogue, Has)->Apply(atManySizes);
BENCHMARK_REGISTER_F(Catalogue, DefaultName)->Apply(atManySizes);
BENCHMARK_REGISTER_F(Catalogue, SaveLast)->Apply(atManySizes);
BENCHMARK_REGISTER_F(Catalogue, RenameThereAndBack)->Apply(atManySizes);
BENCHMARK_REGISTER_F(Catalogue, DeleteFirst)->Apply(atManySizes);
BENCHMARK_REGISTER_F(Catalogue, New)->Apply(atManySizes);
BENCHMARK_REGISTER_F(Catalogue, FloorOfRead)->Apply(atManySizes);
BENCHMARK_REGISTER_F(Catalogue, FloorOfWrite)->Apply(atManySizes);

} // namespace

BENCHMARK_MAIN();
