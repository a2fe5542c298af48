// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "StopReason.h"

using namespace Qt::StringLiterals;

namespace marvola {

bool isIndexOfRefresh(const RefreshFacts &facts)
{
    const qsizetype missing = facts.examined.size() - facts.indexed.size();
    const qsizetype allowed = facts.isComplete ? 0 : 1;
    return missing >= 0 && missing <= allowed && facts.examined.first(facts.indexed.size()) == facts.indexed;
}

StopReason stopReason(const RefreshFacts &facts)
{
    if (!isIndexOfRefresh(facts)) {
        return StopReason::NotWritten;
    }
    if (facts.isCancelled) {
        return StopReason::Cancelled;
    }
    if (facts.isComplete) {
        return StopReason::None;
    }
    if (facts.indexed.size() >= facts.fileLimit) {
        return StopReason::FileLimit;
    }
    if (facts.isIndexFull) {
        return StopReason::IndexFull;
    }
    return facts.meetsUnknown ? StopReason::UnknownPlace : StopReason::NotWritten;
}

QString reasonWord(StopReason reason)
{
    switch (reason) {
    case StopReason::Cancelled:
        return u"cancelled"_s;
    case StopReason::FileLimit:
        return u"file-limit"_s;
    case StopReason::IndexFull:
        return u"index-full"_s;
    case StopReason::UnknownPlace:
        return u"unknown-place"_s;
    case StopReason::NotWritten:
        return u"not-written"_s;
    case StopReason::None:
        break;
    }
    return {};
}

} // namespace marvola
