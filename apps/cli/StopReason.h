// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_STOPREASON_H
#define MARVOLA_CLI_STOPREASON_H

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace marvola {

/// Why a refresh did not index every file it was to index.
enum class StopReason {
    None,
    Cancelled,
    FileLimit,    ///< as many files as the settings allow
    IndexFull,    ///< the space reserved for the index is used up
    UnknownPlace, ///< the search order names something that is no place
    NotWritten    ///< the index does not hold the files that were examined
};

/// What is known when a refresh has ended, as far as it bears on the reason.
struct RefreshFacts
{
    bool isCancelled = false;
    bool isComplete = false;   ///< every place of the search order was indexed to its end
    bool meetsUnknown = false; ///< the first place that was not is no place
    QStringList examined;      ///< files that the engine was asked about
    QStringList indexed;       ///< files of the index
    int fileLimit = 0;
    bool isIndexFull = false;
};

/// Whether the index is what the refresh made of it, and not an older one or a part: it holds the files examined, in
/// their order. A refresh that was stopped may have examined one more, which did not fit any more.
bool isIndexOfRefresh(const RefreshFacts &facts);

StopReason stopReason(const RefreshFacts &facts);

/// The reason's name for programs; empty for none.
QString reasonWord(StopReason reason);

} // namespace marvola

#endif
