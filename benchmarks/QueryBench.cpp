// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FullIndex.h"
#include "PlainFile.h"

#include "scan/IndexQueries.h"
#include "scan/InfoFile.h"

#include <marvola/Types.h>

/// Questions to an index, each as the library asks them: the file is opened anew. QueryPeerBench.cpp has what SQLite
/// takes.
namespace {

using namespace Qt::StringLiterals;

class OwnIndex : public FullIndex
{
public:
    void SetUp(benchmark::State &state) override
    {
        FullIndex::SetUp(state);
        marvola::InfoFileWriter writer(path, marvola::InfoFile::FirstRecordOffset);
        for (int number = 0; number < count; ++number)
            writer.append({static_cast<qint16>(number), pathOf(number), MP_MEDIA_FILE_TYPE_AUDIO, artistOf(number),
                           u"Album"_s, u"Genre"_s});
        if (writer.close() != count || !marvola::InfoFile::publishCount(path, static_cast<quint16>(count)))
            state.SkipWithError("the index cannot be written");
    }
};

BENCHMARK_DEFINE_F(OwnIndex, OneArtist)(benchmark::State &state)
{
    const QString wanted = wantedArtist();
    for (auto _ : state)
        benchmark::DoNotOptimize(marvola::readInfoFile(path, u"artist"_s, wanted));
}

BENCHMARK_DEFINE_F(OwnIndex, AllMedia)(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(marvola::readInfoFile(path, u"media"_s, QString()));
}

BENCHMARK_DEFINE_F(OwnIndex, FloorOfReading)(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(plain::read(path));
}

BENCHMARK_REGISTER_F(OwnIndex, OneArtist)->Apply(countsOfRecords);
BENCHMARK_REGISTER_F(OwnIndex, AllMedia)->Apply(countsOfRecords);
BENCHMARK_REGISTER_F(OwnIndex, FloorOfReading)->Apply(countsOfRecords);

} // namespace

BENCHMARK_MAIN();
