// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "links/Bookmarks.h"
#include "links/History.h"
#include "playlist/SavedLists.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <vector>

/// Each operation on bookmarks and history with more and more of them, up to the most that a limit allows: four times
/// as many must not cost much more than four times the time, as with the floor, which outgrows the caches too. Where
/// the name says "One" a single entry is changed; the others handle all of them.
namespace {

using namespace marvola;
using namespace Qt::StringLiterals;

constexpr int Most = 65535;
constexpr quint16 Unlimited = 0; // no count that is handled here equals it

QString urlOf(int number)
{
    return u"rtsp://radio.example/some/folder/station%1.sdp"_s.arg(number);
}

QString nameOf(int number)
{
    return u"Bookmark%1"_s.arg(number);
}

QStringList manyNames(int count)
{
    QStringList names;
    for (int number = 0; number < count; ++number)
        names.append(nameOf(number));
    return names;
}

Bookmarks manyBookmarks(int count)
{
    QMap<QString, QString> urls;
    for (int number = 0; number < count; ++number)
        urls.insert(nameOf(number), urlOf(number));
    Bookmarks bookmarks;
    bookmarks.setUrls(urls);
    return bookmarks;
}

History longHistory(int count)
{
    History history;
    for (int number = 0; number < count; ++number)
        history.append(urlOf(number));
    return history;
}

int countOf(const benchmark::State &state)
{
    return static_cast<int>(state.range(0));
}

void FloorOfCopy(benchmark::State &state)
{
    const QStringList urls = longHistory(countOf(state)).entries();
    for (auto _ : state) {
        std::vector<QString> copy(urls.cbegin(), urls.cend());
        benchmark::DoNotOptimize(copy.data());
    }
    state.SetComplexityN(state.range(0));
}

void AddAllBookmarks(benchmark::State &state)
{
    const QStringList names = manyNames(countOf(state));
    for (auto _ : state) {
        Bookmarks bookmarks;
        for (const QString &name : names)
            benchmark::DoNotOptimize(bookmarks.add(name, name, Most));
    }
    state.SetComplexityN(state.range(0));
}

void ReplaceOneBookmark(benchmark::State &state)
{
    const int count = countOf(state);
    Bookmarks bookmarks = manyBookmarks(count);
    for (auto _ : state)
        benchmark::DoNotOptimize(bookmarks.add(nameOf(count / 2), u"rtsp://new"_s, Unlimited));
    state.SetComplexityN(state.range(0));
}

void RenameOneBookmarkAndBack(benchmark::State &state)
{
    const int count = countOf(state);
    Bookmarks bookmarks = manyBookmarks(count);
    for (auto _ : state) {
        benchmark::DoNotOptimize(bookmarks.rename(nameOf(count / 2), u"Z"_s));
        benchmark::DoNotOptimize(bookmarks.rename(u"Z"_s, nameOf(count / 2)));
    }
    state.SetComplexityN(state.range(0));
}

void RemoveAllBookmarks(benchmark::State &state)
{
    const int count = countOf(state);
    const QStringList names = manyNames(count);
    for (auto _ : state) {
        state.PauseTiming();
        Bookmarks bookmarks = manyBookmarks(count);
        state.ResumeTiming();
        bookmarks.remove(names);
    }
    state.SetComplexityN(state.range(0));
}

void ListBookmarks(benchmark::State &state)
{
    const Bookmarks bookmarks = manyBookmarks(countOf(state));
    for (auto _ : state)
        benchmark::DoNotOptimize(bookmarks.names());
    state.SetComplexityN(state.range(0));
}

void FirstDefaultNameBehindAll(benchmark::State &state)
{
    const Bookmarks bookmarks = manyBookmarks(countOf(state));
    for (auto _ : state) {
        DefaultNameCounter counter(0);
        benchmark::DoNotOptimize(bookmarks.unusedName(counter));
    }
    state.SetComplexityN(state.range(0));
}

void UrlsOfAllBookmarks(benchmark::State &state)
{
    const int count = countOf(state);
    const Bookmarks bookmarks = manyBookmarks(count);
    const QStringList names = manyNames(count);
    for (auto _ : state)
        benchmark::DoNotOptimize(bookmarks.urlsOf(names));
    state.SetComplexityN(state.range(0));
}

void AddOneNewLinkToAFullHistory(benchmark::State &state)
{
    const int count = countOf(state);
    History history = longHistory(count);
    int number = count;
    for (auto _ : state)
        history.add(urlOf(number++), static_cast<quint16>(count));
    state.SetComplexityN(state.range(0));
}

void AddTheOldestLinkOfAHistory(benchmark::State &state)
{
    History history = longHistory(countOf(state));
    for (auto _ : state)
        history.add(history.entries().last(), Most);
    state.SetComplexityN(state.range(0));
}

/// As the facade does, which hands out a copy that the next change must not touch.
void AddOneLinkToAHistoryThatIsHandedOut(benchmark::State &state)
{
    const int count = countOf(state);
    History history = longHistory(count);
    int number = count;
    for (auto _ : state) {
        const QStringList handedOut = history.entries();
        history.add(urlOf(number++), static_cast<quint16>(count));
        benchmark::DoNotOptimize(handedOut.constData());
    }
    state.SetComplexityN(state.range(0));
}

void StoreAndRestoreAll(benchmark::State &state)
{
    const int count = countOf(state);
    const Bookmarks bookmarks = manyBookmarks(count);
    const History history = longHistory(count);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"list"_s);
    CurrentList list;
    KnownLists known;
    for (auto _ : state) {
        storeSavedLists(PlacedFile::here(path), history.entries(), bookmarks.urls(), list, known);
        QStringList links;
        QMap<QString, QString> urls;
        restoreSavedLists(PlacedFile::here(path), Shuffle::Off, links, urls, list, known);
        if (links.size() != count || urls.size() != count)
            state.SkipWithError("what was restored is not what was stored");
        state.PauseTiming();
        QFile::remove(path);
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
}

void atManySizes(benchmark::internal::Benchmark *operation)
{
    operation->Arg(10)->Arg(1000)->Arg(Most)->Unit(benchmark::kMicrosecond)->Complexity();
}

BENCHMARK(FloorOfCopy)->Apply(atManySizes);
BENCHMARK(AddAllBookmarks)->Apply(atManySizes);
BENCHMARK(ReplaceOneBookmark)->Apply(atManySizes);
BENCHMARK(RenameOneBookmarkAndBack)->Apply(atManySizes);
BENCHMARK(RemoveAllBookmarks)->Apply(atManySizes);
BENCHMARK(ListBookmarks)->Apply(atManySizes);
BENCHMARK(FirstDefaultNameBehindAll)->Apply(atManySizes);
BENCHMARK(UrlsOfAllBookmarks)->Apply(atManySizes);
BENCHMARK(AddOneNewLinkToAFullHistory)->Apply(atManySizes);
BENCHMARK(AddTheOldestLinkOfAHistory)->Apply(atManySizes);
BENCHMARK(AddOneLinkToAHistoryThatIsHandedOut)->Apply(atManySizes);
BENCHMARK(StoreAndRestoreAll)->Apply(atManySizes);

} // namespace

BENCHMARK_MAIN();
