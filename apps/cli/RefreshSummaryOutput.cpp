// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Output.h"
#include "RefreshSummary.h"
#include "Text.h"

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

QJsonValue countOrNull(const std::optional<qsizetype> &count)
{
    return count ? QJsonValue(*count) : QJsonValue();
}

QString state(const PlaceSummary &place)
{
    if (place.id.isEmpty()) {
        return u"no such place"_s;
    }
    if (!place.isThere) {
        return u"not there"_s;
    }
    return place.isComplete ? u"complete"_s : u"incomplete"_s;
}

void printUnread(const QStringList &files)
{
    if (files.isEmpty()) {
        return;
    }
    printLine(
        u"%1 not read, for a refresh died while it read them; touch a file to have it read again:"_s.arg(files.size()));
    for (const QString &file : files) {
        printLine(u"  "_s + file);
    }
}

QString countText(const std::optional<qsizetype> &count)
{
    return count ? QString::number(*count) : u"?"_s;
}

} // namespace

QJsonObject toJson(const RefreshSummary &summary)
{
    QJsonArray places;
    for (const PlaceSummary &place : summary.places) {
        places.append(QJsonObject{{u"id"_s, place.id},
                                  {u"name"_s, wellFormed(place.name)},
                                  {u"there"_s, place.isThere},
                                  {u"complete"_s, place.isComplete},
                                  {u"found"_s, countOrNull(place.found)},
                                  {u"indexed"_s, place.indexed}});
    }
    QJsonArray unread;
    for (const QString &file : summary.unread) {
        unread.append(wellFormed(file));
    }
    const QString reason = reasonWord(summary.reason);
    const std::optional<qsizetype> found = summary.found();
    return {{u"places"_s, places},
            {u"found"_s, countOrNull(found)},
            {u"indexed"_s, summary.indexed()},
            {u"leftOut"_s, found ? QJsonValue(*found - summary.indexed()) : QJsonValue()},
            {u"reason"_s, reason.isEmpty() ? QJsonValue() : QJsonValue(reason)},
            {u"unread"_s, unread},
            {u"seconds"_s, static_cast<double>(summary.milliseconds) / 1000}};
}

void print(const RefreshSummary &summary)
{
    QList<QStringList> rows;
    for (const PlaceSummary &place : summary.places) {
        rows.append({place.name, countText(place.found) + u" found"_s, QString::number(place.indexed) + u" indexed"_s,
                     state(place)});
    }
    printTable(rows);
    const QString seconds = QString::number(static_cast<double>(summary.milliseconds) / 1000, 'f', 1);
    printLine(u"%1 of %2 files indexed in %3 s"_s.arg(QString::number(summary.indexed()), countText(summary.found()),
                                                      seconds));
    const qsizetype leftOut = summary.found().value_or(summary.indexed()) - summary.indexed();
    if (leftOut > 0) {
        printLine(u"%1 left out: %2"_s.arg(leftOut).arg(summary.explanation));
    } else if (!summary.explanation.isEmpty()) {
        printLine(u"stopped early: "_s + summary.explanation);
    }
    printUnread(summary.unread);
}

} // namespace marvola
