// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_REFRESHSUMMARY_H
#define MARVOLA_CLI_REFRESHSUMMARY_H

#include <QtCore/QJsonObject>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace marvola {

class Session;
struct RefreshRun;

/// Why a refresh did not index every file it was to index.
enum class StopReason {
    None,
    Cancelled,
    FileLimit,    ///< as many files as the settings allow
    IndexFull,    ///< the space reserved for the index is used up
    UnknownPlace, ///< the search order names something that is no place
    NotWritten    ///< the files were examined, but their records did not reach the index
};

/// What is known when a refresh has ended, as far as it bears on the reason.
struct RefreshFacts
{
    bool isCancelled = false;
    bool isComplete = false;   ///< every place of the search order was indexed to its end
    bool meetsUnknown = false; ///< the first place that was not is no place
    int examined = 0;          ///< files that the engine was asked about
    int indexed = 0;           ///< records in the index
    int fileLimit = 0;
    bool isIndexFull = false;
};

StopReason stopReason(const RefreshFacts &facts);

/// One place of the search order after a refresh.
struct PlaceSummary
{
    QString id; ///< empty for a name that is no place
    QString name;
    bool isThere = false; ///< at least one of its directories exists
    bool isComplete = false;
    std::optional<qsizetype> found; ///< unknown after a cancel
    qsizetype indexed = 0;
};

/// What a refresh did, for people or programs.
struct RefreshSummary
{
    QList<PlaceSummary> places;
    StopReason reason = StopReason::None;
    QString explanation; ///< of the reason; empty for none
    qint64 milliseconds = 0;

    std::optional<qsizetype> found() const; ///< unknown when it is for one of the places
    qsizetype indexed() const;
};

/// Gathers the summary of \a run from the index. Counts the files of a place that was not indexed to its end by walking
/// it once more, unless the user cancelled; the others need no second walk.
RefreshSummary summarize(Session &session, const RefreshRun &run);

/// The reason's name for programs; empty for none.
QString reasonWord(StopReason reason);

QJsonObject toJson(const RefreshSummary &summary);
void print(const RefreshSummary &summary);

} // namespace marvola

#endif
