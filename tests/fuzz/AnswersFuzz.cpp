// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// The answer cache: anybody's bytes give answers within bounds, and those survive being written again.

#include "FuzzInput.h"
#include "Require.h"

#include "scan/AnswerStore.h"

using namespace marvola;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const QByteArrayView bytes = FuzzInput(data, size).rest();
    const QString identity = QStringLiteral("1");
    AnswerStore store;
    store.fromBytes(bytes, identity);
    require(!store.isChanged(), "what is read is not new");
    const AnswerStore::Limits small{4, 1000, 300};
    AnswerStore smallStore(small);
    smallStore.fromBytes(bytes, identity);
    require(smallStore.count() <= small.answers, "the number of answers is bounded");

    const QByteArray written = store.toBytes(identity);
    AnswerStore again;
    again.fromBytes(written, identity);
    require(again.count() == store.count(), "answers that are written can be read");
    require(again.toBytes(identity) == written, "answers read as they were written");

    const Question question{QByteArrayLiteral("/a"), 0, 0};
    const FileStamp stamp{1, {2, 3}, {4, 5}};
    const auto info = store.info(question, stamp);
    if (info) {
        again.remember(question, stamp, *info);
        require(again.toBytes(identity).size() == written.size(), "an answer that is understood is written as it was");
    }
    return 0;
}
