// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// Indexes the files that it is given with an engine that is slow about each.

#include "scan/LookAhead.h"
#include "scan/MediaIndexer.h"
#include "scan/RefreshPlan.h"

#include "support/NullEngine.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

class SlowEngine : public NullEngine
{
public:
    explicit SlowEngine(marvola::RefreshState &state) : m_state(state) {}

    bool getMediaKind(const QByteArray &path, UINT8 &, UINT8 &) override
    {
        std::this_thread::sleep_for(2 * marvola::LookAhead::SlowFile);
        if (path.endsWith("/cancel.mp3"))
            m_state.cancelled = true;
        return false;
    }

private:
    marvola::RefreshState &m_state;
};

} // namespace

int main(int argc, char **argv)
{
    const int limit = argc > 1 ? std::atoi(argv[1]) : 0;
    QStringList files;
    for (int i = 2; i < argc; ++i)
        files.append(QString::fromUtf8(argv[i]));
    marvola::RefreshState state({});
    SlowEngine engine(state);
    marvola::RefreshPlan plan;
    plan.engine = &engine;
    plan.maxMediaFiles = static_cast<quint16>(limit);
    QStringList texts;
    unsigned int offset = marvola::InfoFile::FirstRecordOffset;
    marvola::MediaIndexer indexer(plan, state, marvola::Records::Nowhere);
    indexer.index(offset, files, {texts, texts, texts});
    std::printf("%d\n", state.counters.scannedFiles);
    return 0;
}
