// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "PlainFile.h"

#include "platform/LineReader.h"
#include "playlist/CurrentList.h"
#include "playlist/PlaylistFile.h"
#include "playlist/SavedLists.h"

#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <optional>
#include <vector>

/// Each operation on the list being played, on the longest list there is, beside the floor for it: a copy of the items
/// into a plain list, or a file with a line for each item, written, or read into a list.
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

/// The items from \a first on.
CurrentList longList(int first = 0)
{
    CurrentList list;
    list.restore(QString(), first == 0 ? longItems() : paths(first, Longest), 0, Shuffle::Off);
    return list;
}

void FloorOfCopy(benchmark::State &state)
{
    for (auto _ : state) {
        std::vector<QString> copy;
        copy.reserve(Longest);
        for (const QString &item : longItems())
            copy.emplace_back(item.constData(), item.size());
        benchmark::DoNotOptimize(copy.data());
    }
}

/// The same where the copies share their characters with the originals.
void FloorOfSharing(benchmark::State &state)
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

/// The items alone, a line for each, durably.
bool writePlainly(const QString &path)
{
    QByteArray bytes;
    for (const QString &item : longItems())
        bytes += item.toUtf8() + '\n';
    return plain::replace(path, bytes);
}

/// A list file with nothing but a list as long as can be, as a playlist or (argument 1) as the list being played.
class LongListFile : public benchmark::Fixture
{
public:
    void SetUp(benchmark::State &state) override
    {
        m_folder.emplace();
        path = m_folder->filePath(u"list"_s);
        if (state.range(0) == 1)
            storeSavedLists(path, {}, {}, list);
        else if (savePlayList(path, u"Long"_s, Limits, list) != PlaylistStatus::Done)
            state.SkipWithError("the playlist cannot be saved");
    }
    void TearDown(benchmark::State &state) override
    {
        state.counters["bytes"] = static_cast<double>(QFile(path).size());
        m_folder.reset();
    }

protected:
    QString path;
    /// Every item is another one than in the round before.
    CurrentList &listOf(int round) { return round % 2 == 0 ? list : m_other; }

    CurrentList list = longList();

private:
    CurrentList m_other = longList(1);

    std::optional<QTemporaryDir> m_folder;
};

BENCHMARK_DEFINE_F(LongListFile, Save)(benchmark::State &state)
{
    int round = 0;
    for (auto _ : state) {
        if (savePlayList(path, u"Long"_s, Limits, listOf(++round)) != PlaylistStatus::Done)
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
    int round = 0;
    for (auto _ : state)
        storeSavedLists(path, {}, {}, listOf(++round));
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

/// The items alone, a line for each: read and made texts of again.
BENCHMARK_DEFINE_F(LongListFile, FloorOfLoad)(benchmark::State &state)
{
    if (!writePlainly(path))
        state.SkipWithError("the file cannot be written");
    for (auto _ : state) {
        QStringList items;
        const QByteArray bytes = plain::read(path);
        LineReader lines(bytes);
        while (lines.next())
            items.append(QString::fromUtf8(lines.line()));
        benchmark::DoNotOptimize(items.size());
    }
}

BENCHMARK_DEFINE_F(LongListFile, FloorOfSave)(benchmark::State &state)
{
    for (auto _ : state) {
        if (!writePlainly(path))
            state.SkipWithError("the file cannot be written");
    }
}

BENCHMARK(FloorOfCopy)->Unit(benchmark::kMillisecond);
BENCHMARK(FloorOfSharing)->Unit(benchmark::kMillisecond);
BENCHMARK(AddToEmpty)->ArgName("shuffle")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
BENCHMARK(AddKnown)->Unit(benchmark::kMillisecond);
BENCHMARK(TurnShuffleOnAndOff)->Unit(benchmark::kMillisecond);
BENCHMARK(RandomizeItems)->Unit(benchmark::kMillisecond);
BENCHMARK(Contains)->Unit(benchmark::kMillisecond);
BENCHMARK(Next)->Unit(benchmark::kMillisecond);
BENCHMARK(Remove)->Unit(benchmark::kMillisecond);
BENCHMARK(MoveUp)->Unit(benchmark::kMillisecond);
BENCHMARK_REGISTER_F(LongListFile, Save)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK_REGISTER_F(LongListFile, Load)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK_REGISTER_F(LongListFile, Store)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime();
BENCHMARK_REGISTER_F(LongListFile, Restore)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime();
BENCHMARK_REGISTER_F(LongListFile, FloorOfLoad)
    ->Arg(0)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime();
BENCHMARK_REGISTER_F(LongListFile, FloorOfSave)
    ->Arg(0)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

} // namespace

BENCHMARK_MAIN();
