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

/// Each operation on the list being played, on lists up to the longest there is, beside the floor for it: a copy of the
/// items into a plain list, or a file with a line for each item, written, or read into a list.
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

/// As many items as the benchmark's argument says.
int countOf(const benchmark::State &state)
{
    return static_cast<int>(state.range(0));
}

const QStringList &itemsOf(const benchmark::State &state)
{
    static QMap<int, QStringList> items;
    QStringList &ofCount = items[countOf(state)];
    if (ofCount.isEmpty())
        ofCount = paths(0, countOf(state));
    return ofCount;
}

/// The items from \a first on.
CurrentList listOf(const benchmark::State &state, int first = 0)
{
    CurrentList list;
    list.restore(QString(), first == 0 ? itemsOf(state) : paths(first, countOf(state)), 0, Shuffle::Off);
    return list;
}

void FloorOfCopy(benchmark::State &state)
{
    const QStringList &items = itemsOf(state);
    for (auto _ : state) {
        std::vector<QString> copy;
        copy.reserve(static_cast<std::size_t>(items.size()));
        for (const QString &item : items)
            copy.emplace_back(item.constData(), item.size());
        benchmark::DoNotOptimize(copy.data());
    }
    state.SetComplexityN(state.range(0));
}

/// The same where the copies share their characters with the originals.
void FloorOfSharing(benchmark::State &state)
{
    const QStringList &items = itemsOf(state);
    for (auto _ : state) {
        std::vector<QString> copy(items.cbegin(), items.cend());
        benchmark::DoNotOptimize(copy.data());
    }
    state.SetComplexityN(state.range(0));
}

void AddToEmpty(benchmark::State &state, Shuffle shuffle)
{
    const QStringList &items = itemsOf(state);
    for (auto _ : state) {
        CurrentList list;
        benchmark::DoNotOptimize(list.append(items, Longest, shuffle));
    }
    state.SetComplexityN(state.range(0));
}

/// As many items as there are, all of them in the list already.
void AddKnown(benchmark::State &state)
{
    CurrentList list = listOf(state);
    const QStringList same = paths(0, countOf(state));
    for (auto _ : state)
        benchmark::DoNotOptimize(list.append(same, Longest, Shuffle::Off));
    state.SetComplexityN(state.range(0));
}

void TurnShuffleOnAndOff(benchmark::State &state)
{
    CurrentList list = listOf(state);
    for (auto _ : state) {
        list.setShuffle(Shuffle::Off, Shuffle::On);
        list.setShuffle(Shuffle::On, Shuffle::Off);
    }
    state.SetComplexityN(state.range(0));
}

void RandomizeItems(benchmark::State &state)
{
    CurrentList list = listOf(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(list.randomizeItems());
    state.SetComplexityN(state.range(0));
}

void Contains(benchmark::State &state)
{
    const CurrentList list = listOf(state);
    const QString last = itemsOf(state).constLast() + u""_s;
    for (auto _ : state)
        benchmark::DoNotOptimize(list.contains(last));
    state.SetComplexityN(state.range(0));
}

void Next(benchmark::State &state)
{
    CurrentList list = listOf(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(list.next(Repeat::On, Shuffle::Off));
    state.SetComplexityN(state.range(0));
}

void Remove(benchmark::State &state)
{
    CurrentList list = listOf(state);
    for (auto _ : state) {
        if (list.count() <= countOf(state) / 2) {
            state.PauseTiming();
            list = listOf(state);
            state.ResumeTiming();
        }
        benchmark::DoNotOptimize(list.remove(list.count() / 2));
    }
    state.SetComplexityN(state.range(0));
}

void MoveUp(benchmark::State &state)
{
    CurrentList list = listOf(state);
    list.setShuffle(Shuffle::Off, Shuffle::On);
    for (auto _ : state)
        benchmark::DoNotOptimize(list.moveUp(countOf(state) / 2, Shuffle::On));
    state.SetComplexityN(state.range(0));
}

/// The items alone, a line for each, durably.
bool writePlainly(const QString &path, const QStringList &items)
{
    QByteArray bytes;
    for (const QString &item : items)
        bytes += item.toUtf8() + '\n';
    return plain::replace(path, bytes);
}

/// A list file with nothing but one list, as a playlist and as the list being played.
class ListFile : public benchmark::Fixture
{
public:
    void SetUp(benchmark::State &state) override
    {
        m_folder.emplace();
        path = m_folder->filePath(u"list"_s);
        items = itemsOf(state);
        list = ::listOf(state);
        m_other = ::listOf(state, 1);
    }
    void TearDown(benchmark::State &state) override
    {
        state.SetComplexityN(state.range(0));
        state.counters["bytes"] = static_cast<double>(QFile(path).size());
        m_folder.reset();
    }

protected:
    void save(benchmark::State &state, int round = 0)
    {
        if (savePlayList(path, u"Long"_s, Limits, listOf(round)) != PlaylistStatus::Done)
            state.SkipWithError("the playlist cannot be saved");
    }
    void store(int round = 0) { storeSavedLists(PlacedFile::here(path), {}, {}, listOf(round), m_known); }

    QString path;
    QStringList items;
    CurrentList list;

private:
    /// Every item is another one than in the round before.
    CurrentList &listOf(int round) { return round % 2 == 0 ? list : m_other; }

    CurrentList m_other;
    KnownLists m_known;
    std::optional<QTemporaryDir> m_folder;
};

BENCHMARK_DEFINE_F(ListFile, Save)(benchmark::State &state)
{
    int round = 0;
    save(state, round);
    for (auto _ : state)
        save(state, ++round);
}

BENCHMARK_DEFINE_F(ListFile, Load)(benchmark::State &state)
{
    save(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(loadPlayList(path, u"Long"_s, Shuffle::Off, list));
}

BENCHMARK_DEFINE_F(ListFile, Store)(benchmark::State &state)
{
    int round = 0;
    store(round);
    for (auto _ : state)
        store(++round);
}

BENCHMARK_DEFINE_F(ListFile, Restore)(benchmark::State &state)
{
    store();
    for (auto _ : state) {
        CurrentList restored;
        QStringList history;
        QMap<QString, QString> bookmarks;
        KnownLists known;
        restoreSavedLists(PlacedFile::here(path), Shuffle::Off, history, bookmarks, restored, known);
        benchmark::DoNotOptimize(restored.count());
    }
}

/// The items alone, a line for each: read and made texts of again.
BENCHMARK_DEFINE_F(ListFile, FloorOfLoad)(benchmark::State &state)
{
    if (!writePlainly(path, items))
        state.SkipWithError("the file cannot be written");
    for (auto _ : state) {
        QStringList texts;
        const QByteArray bytes = plain::read(path);
        LineReader lines(bytes);
        while (lines.next())
            texts.append(QString::fromUtf8(lines.line()));
        benchmark::DoNotOptimize(texts.size());
    }
}

BENCHMARK_DEFINE_F(ListFile, FloorOfSave)(benchmark::State &state)
{
    for (auto _ : state) {
        if (!writePlainly(path, items))
            state.SkipWithError("the file cannot be written");
    }
}

void atManySizes(benchmark::internal::Benchmark *operation)
{
    operation->Arg(10)->Arg(1'000)->Arg(Longest)->Unit(benchmark::kMillisecond)->Complexity();
}

void withFiles(benchmark::internal::Benchmark *operation)
{
    atManySizes(operation);
    operation->UseRealTime()->MeasureProcessCPUTime();
}

BENCHMARK(FloorOfCopy)->Apply(atManySizes);
BENCHMARK(FloorOfSharing)->Apply(atManySizes);
BENCHMARK_CAPTURE(AddToEmpty, inOrder, Shuffle::Off)->Apply(atManySizes);
BENCHMARK_CAPTURE(AddToEmpty, shuffled, Shuffle::On)->Apply(atManySizes);
BENCHMARK(AddKnown)->Apply(atManySizes);
BENCHMARK(TurnShuffleOnAndOff)->Apply(atManySizes);
BENCHMARK(RandomizeItems)->Apply(atManySizes);
BENCHMARK(Contains)->Apply(atManySizes);
BENCHMARK(Next)->Apply(atManySizes);
BENCHMARK(Remove)->Apply(atManySizes);
BENCHMARK(MoveUp)->Apply(atManySizes);
BENCHMARK_REGISTER_F(ListFile, Save)->Apply(withFiles);
BENCHMARK_REGISTER_F(ListFile, Load)->Apply(withFiles);
BENCHMARK_REGISTER_F(ListFile, Store)->Apply(withFiles);
BENCHMARK_REGISTER_F(ListFile, Restore)->Apply(withFiles);
BENCHMARK_REGISTER_F(ListFile, FloorOfLoad)->Apply(withFiles);
BENCHMARK_REGISTER_F(ListFile, FloorOfSave)->Apply(withFiles);

} // namespace

BENCHMARK_MAIN();
