// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_REFRESHSUMMARY_H
#define MARVOLA_CLI_REFRESHSUMMARY_H

#include "StopReason.h"

#include <QtCore/QJsonObject>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

namespace marvola {

class Session;
struct RefreshRun;

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
    QStringList unread; ///< files that are known by their names alone, because a refresh died while it read them

    std::optional<qsizetype> found() const; ///< unknown when it is for one of the places
    qsizetype indexed() const;
};

/// Gathers the summary of \a run from the index. Counts the files of a place that was not indexed to its end by walking
/// it once more, unless the user cancelled; the others need no second walk.
RefreshSummary summarize(Session &session, const RefreshRun &run);

QJsonObject toJson(const RefreshSummary &summary);
void print(const RefreshSummary &summary);

} // namespace marvola

#endif
