// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"
#include "playlist/PlaylistFile.h"
#include "playlist/SavedLists.h"

#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QSaveFile>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <optional>
#include <vector>

/// Each operation on the list being played, on the longest list there is, beside the floor for it: a copy of the items
/// into a plain list, or the bytes of the file read or written without any work on them.
namespace {

using namespace marvola;
using namespace Qt::StringLiterals;

constexpr int Longest = CurrentList::MaxItems;
constexpr PlaylistLimits Limits = {10, Longest};

QStringList paths(int first, int count)
{
    QStringList items;
    items.reserve(count);
    for (int number = first; number < first + count; ++number)
        items.append(u"/mmc/mmca1/music/some artist/some album/%1 - track.mp3"_s.arg(number));
    return items;
}

const QStringList &longItems()
{
    static const QStringList items = paths(0, Longest);
    return items;
}

CurrentList longList()
{
    CurrentList list;
    list.restore(QString(), longItems(), 0, Shuffle::Off);
    return list;
}

void FloorOfCopy(benchmark::State &state)
{
    for (auto _ : state) {
        std::vector<QString> copy(longItems().cbegin(), longItems().cend());
        benchmark::DoNotOptimize(copy.data());
    }
}

void AddToEmpty(benchmark::State &state)
{
    const auto shuffle = static_cast<Shuffle>(state.range(0));
    for (auto _ : state) {
        CurrentList list;
        benchmark::DoNotOptimize(list.append(longItems(), Longest, shuffle));
    }
}

/// As many items as there are, all of them in the list already.
void AddKnown(benchmark::State &state)
{
    CurrentList list = longList();
    const QStringList same = paths(0, Longest);
    for (auto _ : state)
        benchmark::DoNotOptimize(list.append(same, Longest, Shuffle::Off));
}

void TurnShuffleOnAndOff(benchmark::State &state)
{
    CurrentList list = longList();
    for (auto _ : state) {
        list.setShuffle(Shuffle::Off, Shuffle::On);
        list.setShuffle(Shuffle::On, Shuffle::Off);
    }
}

void RandomizeItems(benchmark::State &state)
{
    CurrentList list = longList();
    for (auto _ : state)
        benchmark::DoNotOptimize(list.randomizeItems());
}

void Contains(benchmark::State &state)
{
    const CurrentList list = longList();
    const QString last = longItems().constLast() + u""_s;
    for (auto _ : state)
        benchmark::DoNotOptimize(list.contains(last));
}

void Next(benchmark::State &state)
{
    CurrentList list = longList();
    for (auto _ : state)
        benchmark::DoNotOptimize(list.next(Repeat::On, Shuffle::Off));
}

void Remove(benchmark::State &state)
{
    CurrentList list = longList();
    for (auto _ : state) {
        if (list.count() < Longest / 2) {
            state.PauseTiming();
            list = longList();
            state.ResumeTiming();
        }
        benchmark::DoNotOptimize(list.remove(list.count() / 2));
    }
}

void MoveUp(benchmark::State &state)
{
    CurrentList list = longList();
    list.setShuffle(Shuffle::Off, Shuffle::On);
    for (auto _ : state)
        benchmark::DoNotOptimize(list.moveUp(Longest / 2, Shuffle::On));
}

/// A list file with one playlist and the list being played, both as long as can be.
class LongListFile : public benchmark::Fixture
{
public:
    void SetUp(benchmark::State &state) override
    {
        m_folder.emplace();
        path = m_folder->filePath(u"list"_s);
        if (savePlayList(path, u"Long"_s, Limits, list) != PlaylistStatus::Done)
            state.SkipWithError("the playlist cannot be saved");
        static_cast<void>(storeSavedLists(path, {}, {}, list));
    }
    void TearDown(benchmark::State &state) override
    {
        state.counters["bytes"] = static_cast<double>(QFile(path).size());
        m_folder.reset();
    }

protected:
    QString path;
    CurrentList list = longList();

private:
    std::optional<QTemporaryDir> m_folder;
};

BENCHMARK_DEFINE_F(LongListFile, Save)(benchmark::State &state)
{
    for (auto _ : state) {
        if (savePlayList(path, u"Long"_s, Limits, list) != PlaylistStatus::Done)
            state.SkipWithError("the playlist cannot be saved");
    }
}

BENCHMARK_DEFINE_F(LongListFile, Load)(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(loadPlayList(path, u"Long"_s, Shuffle::Off, list));
}

BENCHMARK_DEFINE_F(LongListFile, Store)(benchmark::State &state)
{
    for (auto _ : state)
        static_cast<void>(storeSavedLists(path, {}, {}, list));
}

BENCHMARK_DEFINE_F(LongListFile, Restore)(benchmark::State &state)
{
    for (auto _ : state) {
        CurrentList restored;
        QStringList history;
        QMap<QString, QString> bookmarks;
        static_cast<void>(restoreSavedLists(path, Shuffle::Off, history, bookmarks, restored));
        benchmark::DoNotOptimize(restored.count());
    }
}

BENCHMARK_DEFINE_F(LongListFile, FloorOfRead)(benchmark::State &state)
{
    for (auto _ : state) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            state.SkipWithError("the file cannot be read");
        benchmark::DoNotOptimize(file.readAll());
    }
}

/// The file's bytes read and written anew, as a commit does, durably.
BENCHMARK_DEFINE_F(LongListFile, FloorOfWrite)(benchmark::State &state)
{
    for (auto _ : state) {
        QFile file(path);
        QSaveFile copy(path);
        if (!file.open(QIODevice::ReadOnly) || !copy.open(QIODevice::WriteOnly) || copy.write(file.readAll()) < 0 ||
            !copy.commit())
            state.SkipWithError("the file cannot be written");
    }
}

BENCHMARK(FloorOfCopy)->Unit(benchmark::kMillisecond);
BENCHMARK(AddToEmpty)->ArgName("shuffle")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(AddKnown)->Unit(benchmark::kMillisecond);
BENCHMARK(TurnShuffleOnAndOff)->Unit(benchmark::kMillisecond);
BENCHMARK(RandomizeItems)->Unit(benchmark::kMillisecond);
BENCHMARK(Contains)->Unit(benchmark::kMillisecond);
BENCHMARK(Next)->Unit(benchmark::kMillisecond);
BENCHMARK(Remove)->Unit(benchmark::kMillisecond);
BENCHMARK(MoveUp)->Unit(benchmark::kMillisecond);
BENCHMARK_REGISTER_F(LongListFile, Save)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongListFile, Load)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongListFile, Store)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongListFile, Restore)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongListFile, FloorOfRead)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_REGISTER_F(LongListFile, FloorOfWrite)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
