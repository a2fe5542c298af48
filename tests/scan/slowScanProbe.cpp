// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// Indexes the files that it is given with an engine that is slow about each.

#include "scan/LookAhead.h"
#include "scan/MediaIndexer.h"
#include "scan/RefreshPlan.h"

#include "support/NullEngine.h"

#include <cstdio>
#include <thread>

namespace {

class SlowEngine : public NullEngine
{
public:
    bool getMediaKind(const QByteArray &, UINT8 &, UINT8 &) override
    {
        std::this_thread::sleep_for(2 * marvola::LookAhead::SlowFile);
        return false;
    }
};

} // namespace

int main(int argc, char **argv)
{
    QStringList files;
    for (int i = 1; i < argc; ++i)
        files.append(QString::fromUtf8(argv[i]));
    SlowEngine engine;
    marvola::RefreshPlan plan;
    plan.engine = &engine;
    plan.maxMediaFiles = 1000;
    marvola::RefreshState state({});
    QStringList texts;
    unsigned int offset = marvola::InfoFile::FirstRecordOffset;
    marvola::MediaIndexer indexer(plan, state, marvola::Records::Nowhere);
    indexer.index(offset, files, {texts, texts, texts});
    std::printf("%d\n", state.counters.scannedFiles);
    return 0;
}
