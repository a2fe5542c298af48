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

/// Each operation on the catalogue of playlists, with the longest playlist and the longest catalogue there are in one
/// list file, beside the floor for it: the bytes of the file read, or read and written anew.
namespace {

using namespace marvola;
using namespace Qt::StringLiterals;

constexpr int Longest = CurrentList::MaxItems;
constexpr PlaylistLimits Limits = {Longest, Longest};

/// A list file with 65,535 playlists, of which "Long" comes last and has 65,535 items.
class LongCatalogue : public benchmark::Fixture
{
public:
    void SetUp(benchmark::State &state) override
    {
        m_folder.emplace();
        path = m_folder->filePath(u"list"_s);
        QStringList items;
        for (int number = 0; number < Longest; ++number)
            items.append(u"/mmc/mmca1/music/some artist/some album/%1 - track.mp3"_s.arg(number));
        list.restore(u"pl-Long"_s, items, 0, Shuffle::Off);
        ConfigFile file(path, false);
        const auto add = [&file](int number, const QString &name) {
            return file.writeEntry(u"allplaylist"_s, QString::number(number), u"pl-"_s + name);
        };
        bool isWritten = file.writeEntry(u"allplaylist"_s, u"counter"_s, Longest) && add(Longest, u"Long"_s);
        for (int number = 1; isWritten && number < Longest; ++number)
            isWritten = add(number, u"playlist"_s + QString::number(number - 1));
        if (!isWritten || !file.flush() || save() != PlaylistStatus::Done)
            state.SkipWithError("the list file cannot be written");
    }
    void TearDown(benchmark::State &state) override
    {
        state.counters["bytes"] = static_cast<double>(QFile(path).size());
        m_folder.reset();
    }

protected:
    PlaylistStatus save() { return savePlayList(path, u"Long"_s, Limits, list); }

    QString path;
    CurrentList list;

private:
    std::optional<QTemporaryDir> m_folder;
};

BENCHMARK_DEFINE_F(LongCatalogue, Has)(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(hasPlayList(path, u"Long"_s));
}

BENCHMARK_DEFINE_F(LongCatalogue, DefaultName)(benchmark::State &state)
{
    for (auto _ : state) {
        std::atomic<quint32> counter{0};
        benchmark::DoNotOptimize(getDefaultPlayListName(path, counter));
    }
}

BENCHMARK_DEFINE_F(LongCatalogue, SaveLast)(benchmark::State &state)
{
    for (auto _ : state) {
        if (save() != PlaylistStatus::Done)
            state.SkipWithError("the playlist cannot be saved");
    }
}

BENCHMARK_DEFINE_F(LongCatalogue, RenameThereAndBack)(benchmark::State &state)
{
    for (auto _ : state) {
        if (!renamePlayList(path, u"Long"_s, u"Longer"_s, list) || !renamePlayList(path, u"Longer"_s, u"Long"_s, list))
            state.SkipWithError("the playlist cannot be renamed");
    }
}

/// The catalogue loses its first entry each time, and all others close the gap.
BENCHMARK_DEFINE_F(LongCatalogue, DeleteFirst)(benchmark::State &state)
{
    int number = 0;
    for (auto _ : state) {
        if (!deletePlayList(path, u"playlist"_s + QString::number(number++)))
            state.SkipWithError("the playlist cannot be deleted");
    }
}

/// Stores the longest list back; the catalogue must not be full for it.
BENCHMARK_DEFINE_F(LongCatalogue, New)(benchmark::State &state)
{
    const PlaylistLimits roomy = {0, Longest};
    for (auto _ : state) {
        CurrentList next = list;
        if (newPlayList(path, roomy, next) != PlaylistStatus::Done)
            state.SkipWithError("the list cannot be stored back");
    }
}

BENCHMARK_DEFINE_F(LongCatalogue, FloorOfRead)(benchmark::State &state)
{
    for (auto _ : state) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            state.SkipWithError("the file cannot be read");
        benchmark::DoNotOptimize(file.readAll());
    }
}

/// The file's bytes read and written anew, as a commit does, durably.
BENCHMARK_DEFINE_F(LongCatalogue, FloorOfWrite)(benchmark::State &state)
{
    for (auto _ : state) {
        QFile file(path);
        QSaveFile copy(path);
        if (!file.open(QIODevice::ReadOnly) || !copy.open(QIODevice::WriteOnly) || copy.write(file.readAll()) < 0 ||
            !copy.commit())
            state.SkipWithError("the file cannot be written");
    }
}

BENCHMARK_REGISTER_F(LongCatalogue, Has)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongCatalogue, DefaultName)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongCatalogue, SaveLast)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongCatalogue, RenameThereAndBack)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongCatalogue, DeleteFirst)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongCatalogue, New)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongCatalogue, FloorOfRead)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongCatalogue, FloorOfWrite)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
