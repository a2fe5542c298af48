// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/ConfigFile.h>

#include "FileOfKeys.h"
#include "PlainFile.h"

/// A file of groups and keys: loaded, written anew, and changed in one key, each beside the floor for it: the same
/// bytes read, or written durably, without any look at what is there already. ConfigFilePeerBench.cpp has what others
/// take.
namespace {

class OwnFile : public FileOfKeys
{
public:
    void SetUp(benchmark::State &state) override
    {
        FileOfKeys::SetUp(state);
        if (!rewrite(0))
            state.SkipWithError("the file cannot be written");
    }

protected:
    bool rewrite(int round) const
    {
        ConfigFile file(path, false);
        const QStringList &values = valuesOf(round);
        bool isDone = true;
        for (qsizetype number = 0; number < keys.size(); ++number)
            isDone = file.writeEntry(group, keys.at(number), values.at(number)) && isDone;
        return isDone && file.flush();
    }
    /// The bytes that the file is made of, without seal and padding.
    QByteArray bytesOf(int round) const
    {
        QByteArray bytes = '[' + group.toUtf8() + "]\n";
        const QStringList &values = valuesOf(round);
        for (qsizetype number = 0; number < keys.size(); ++number)
            bytes += keys.at(number).toUtf8() + '=' + values.at(number).toUtf8() + '\n';
        return bytes;
    }
};

BENCHMARK_DEFINE_F(OwnFile, Load)(benchmark::State &state)
{
    for (auto _ : state) {
        const ConfigFile file(path, false);
        benchmark::DoNotOptimize(file.readEntry(group, keys.constLast()));
    }
}

BENCHMARK_DEFINE_F(OwnFile, LoadAndReadEveryKey)(benchmark::State &state)
{
    for (auto _ : state) {
        const ConfigFile file(path, false);
        for (const QString &key : std::as_const(keys))
            benchmark::DoNotOptimize(file.readEntry(group, key));
    }
}

BENCHMARK_DEFINE_F(OwnFile, RewriteEveryKey)(benchmark::State &state)
{
    int round = 0;
    for (auto _ : state) {
        if (!rewrite(++round))
            state.SkipWithError("the commit failed");
    }
}

BENCHMARK_DEFINE_F(OwnFile, ChangeOneKey)(benchmark::State &state)
{
    int round = 0;
    for (auto _ : state) {
        ConfigFile file(path, false);
        if (!file.writeEntry(group, keys.constFirst(), valuesOf(++round).constFirst()) || !file.flush())
            state.SkipWithError("the commit failed");
    }
}

BENCHMARK_DEFINE_F(OwnFile, FloorOfLoad)(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(plain::read(path));
}

BENCHMARK_DEFINE_F(OwnFile, FloorOfRewrite)(benchmark::State &state)
{
    int round = 0;
    for (auto _ : state) {
        if (!plain::replace(path, bytesOf(++round)))
            state.SkipWithError("the file cannot be written");
    }
}

BENCHMARK_DEFINE_F(OwnFile, FloorOfChange)(benchmark::State &state)
{
    for (auto _ : state) {
        if (!plain::replace(path, plain::read(path)))
            state.SkipWithError("the file cannot be written");
    }
}

BENCHMARK_REGISTER_F(OwnFile, Load)->Apply(countsOfKeys);
BENCHMARK_REGISTER_F(OwnFile, FloorOfLoad)->Apply(countsOfKeys);
BENCHMARK_REGISTER_F(OwnFile, LoadAndReadEveryKey)->Apply(countsOfKeys);
BENCHMARK_REGISTER_F(OwnFile, RewriteEveryKey)->Apply(countsOfKeys);
BENCHMARK_REGISTER_F(OwnFile, FloorOfRewrite)->Apply(countsOfKeys);
BENCHMARK_REGISTER_F(OwnFile, ChangeOneKey)->Apply(countsOfKeys);
BENCHMARK_REGISTER_F(OwnFile, FloorOfChange)->Apply(countsOfKeys);

} // namespace

BENCHMARK_MAIN();
