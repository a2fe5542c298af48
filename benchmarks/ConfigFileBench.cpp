// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/ConfigFile.h>

#include "platform/FileDescriptor.h"

#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <optional>

/// A group of numbered paths: read, written anew, and changed in one key, each beside the floor for it: the same bytes
/// read, or written durably, without any work on them.
namespace {

using marvola::FileDescriptor;
using namespace Qt::StringLiterals;

const QString group = u"pl-list"_s;

QString pathNumber(int number, int round)
{
    return u"/mmc/mmca1/music/some artist/some album/%1 - track %2.mp3"_s.arg(number).arg(round);
}

bool writeAll(const QString &path, int count, int round)
{
    ConfigFile file(path, false);
    bool isDone = file.writeEntry(group, u"counter"_s, count);
    for (int number = 1; number <= count; ++number)
        isDone = file.writeEntry(group, QString::number(number), pathNumber(number, round)) && isDone;
    return isDone && file.flush();
}

class FileOfKeys : public benchmark::Fixture
{
public:
    void SetUp(benchmark::State &state) override
    {
        m_folder.emplace();
        path = m_folder->filePath(u"list"_s);
        count = static_cast<int>(state.range(0));
        if (!writeAll(path, count, 0))
            state.SkipWithError("the file cannot be written");
    }
    void TearDown(benchmark::State &state) override
    {
        state.counters["bytes"] = static_cast<double>(QFile(path).size());
        m_folder.reset();
    }

protected:
    QString path;
    int count = 0;

private:
    std::optional<QTemporaryDir> m_folder;
};

QByteArray plainRead(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? file.readAll() : QByteArray();
}

bool plainReplace(const QString &path, const QByteArray &bytes)
{
    const QByteArray to = QFile::encodeName(path);
    const QByteArray from = to + ".floor";
    FileDescriptor file = FileDescriptor::open(from.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const bool isWritten =
        ::write(file.get(), bytes.constData(), static_cast<std::size_t>(bytes.size())) == bytes.size();
    return isWritten && ::fdatasync(file.get()) == 0 && file.close() &&
           std::rename(from.constData(), to.constData()) == 0;
}

bool syncFolder(const QString &path)
{
    const QByteArray folder = QFile::encodeName(path.left(path.lastIndexOf(u'/')));
    const FileDescriptor directory = FileDescriptor::open(folder.constData(), O_RDONLY | O_DIRECTORY);
    return ::fsync(directory.get()) == 0;
}

BENCHMARK_DEFINE_F(FileOfKeys, Load)(benchmark::State &state)
{
    for (auto _ : state) {
        const ConfigFile file(path, false);
        benchmark::DoNotOptimize(file.readNumEntry(group, u"counter"_s));
    }
}

BENCHMARK_DEFINE_F(FileOfKeys, LoadAndReadEveryKey)(benchmark::State &state)
{
    for (auto _ : state) {
        const ConfigFile file(path, false);
        for (int number = 1; number <= count; ++number)
            benchmark::DoNotOptimize(file.readEntry(group, QString::number(number)));
    }
}

BENCHMARK_DEFINE_F(FileOfKeys, FloorOfLoad)(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(plainRead(path));
}

BENCHMARK_DEFINE_F(FileOfKeys, RewriteEveryKey)(benchmark::State &state)
{
    int round = 0;
    for (auto _ : state) {
        if (!writeAll(path, count, ++round))
            state.SkipWithError("the commit failed");
    }
}

BENCHMARK_DEFINE_F(FileOfKeys, ChangeOneKey)(benchmark::State &state)
{
    int round = 0;
    for (auto _ : state) {
        ConfigFile file(path, false);
        if (!file.writeEntry(group, u"1"_s, pathNumber(1, ++round)) || !file.flush())
            state.SkipWithError("the commit failed");
    }
}

BENCHMARK_DEFINE_F(FileOfKeys, FloorOfChange)(benchmark::State &state)
{
    for (auto _ : state) {
        if (!plainReplace(path, plainRead(path)))
            state.SkipWithError("the file cannot be written");
    }
}

/// What a rename costs that outlives a power cut.
BENCHMARK_DEFINE_F(FileOfKeys, FloorOfDurableChange)(benchmark::State &state)
{
    for (auto _ : state) {
        if (!plainReplace(path, plainRead(path)) || !syncFolder(path))
            state.SkipWithError("the file cannot be written");
    }
}

void counts(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(10)->Arg(1'000)->Arg(65'535)->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK_REGISTER_F(FileOfKeys, Load)->Apply(counts);
BENCHMARK_REGISTER_F(FileOfKeys, LoadAndReadEveryKey)->Apply(counts);
BENCHMARK_REGISTER_F(FileOfKeys, FloorOfLoad)->Apply(counts);
BENCHMARK_REGISTER_F(FileOfKeys, RewriteEveryKey)->Apply(counts);
BENCHMARK_REGISTER_F(FileOfKeys, ChangeOneKey)->Apply(counts);
BENCHMARK_REGISTER_F(FileOfKeys, FloorOfChange)->Apply(counts);
BENCHMARK_REGISTER_F(FileOfKeys, FloorOfDurableChange)->Apply(counts);

} // namespace

BENCHMARK_MAIN();
