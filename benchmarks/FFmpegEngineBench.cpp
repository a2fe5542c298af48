// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// ffmpeg_bench DIR: what describing the files of DIR costs, a collection made by tools/make-samples. One iteration
// handles every file once; per_1000 is the time for a thousand.

#include <marvola/CachingPlayerEngine.h>
#include <marvola/FFmpegPlayerEngine.h>

#include <QtCore/QDirIterator>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <cstdio>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

namespace {

enum class Scan { Headers, Streams };

QByteArrayList paths;

void setCounters(benchmark::State &state)
{
    const auto files = static_cast<double>(state.iterations()) * static_cast<double>(paths.size()) / 1000;
    state.counters["files"] = static_cast<double>(paths.size());
    state.counters["per_1000"] = benchmark::Counter(files, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void describe(benchmark::State &state, Scan scan)
{
    FFmpegPlayerEngine engine;
    engine.exchangeScanSettingA(scan == Scan::Headers ? 0 : 1);
    engine.exchangeScanSettingB(0);
    UINT8 audio = 0;
    UINT8 video = 0;
    ClipInfo info;
    for (auto step : state) {
        for (const QByteArray &path : paths) {
            benchmark::DoNotOptimize(engine.getMediaKind(path, audio, video));
            benchmark::DoNotOptimize(engine.getClipInfo(path, info));
        }
    }
    setCounters(state);
}

/// A scan with an answer cache, from reading its file on.
void scanWithCache(const QString &cacheFile)
{
    FFmpegPlayerEngine engine;
    CachingPlayerEngine caching(engine, cacheFile, engine.identity());
    caching.exchangeScanSettingA(0);
    caching.exchangeScanSettingB(0);
    for (const QByteArray &path : paths) {
        UINT8 audio = 0;
        UINT8 video = 0;
        ClipInfo info;
        benchmark::DoNotOptimize(caching.getMediaKind(path, audio, video));
        benchmark::DoNotOptimize(caching.getClipInfo(path, info));
    }
    caching.finishScan();
}

/// Of files that did not change since the last scan, and are older than some seconds.
void answerFromCache(benchmark::State &state)
{
    const QTemporaryDir folder;
    const QString cacheFile = folder.filePath(QStringLiteral("answers"));
    scanWithCache(cacheFile);
    for (auto step : state)
        scanWithCache(cacheFile);
    setCounters(state);
}

void openPlainly(benchmark::State &state)
{
    av_log_set_level(AV_LOG_QUIET);
    for (auto step : state) {
        for (const QByteArray &path : paths) {
            AVFormatContext *context = nullptr;
            benchmark::DoNotOptimize(avformat_open_input(&context, path.constData(), nullptr, nullptr));
            avformat_close_input(&context);
        }
    }
    setCounters(state);
}

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (argc != 2) {
        std::fputs("usage: ffmpeg_bench [--benchmark_...] DIR\n", stderr);
        return 2;
    }
    QDirIterator files(QString::fromLocal8Bit(argv[1]), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (!path.endsWith(QStringLiteral("expected.json")))
            paths.append(path.toUtf8());
    }
    benchmark::RegisterBenchmark("EngineAsAScanAsks", describe, Scan::Headers)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("CacheOfAnswers", answerFromCache)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("EngineWithAnalysis", describe, Scan::Streams)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("PlainOpenWithDefaults", openPlainly)->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
