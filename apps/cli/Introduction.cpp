// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Introduction.h"

#include "Output.h"
#include "Places.h"
#include "Session.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

QString withState(const QString &directory)
{
    return QDir(directory).exists() ? directory : directory + u" (not there)"_s;
}

QList<QStringList> directories(const Places &places)
{
    QList<QStringList> rows;
    for (const Place &place : libraryPlaces(places)) {
        for (const QString &root : place.roots) {
            rows.append({place.name, withState(root)});
        }
    }
    rows.append({u"its own files"_s, withState(places.work)});
    return rows;
}

} // namespace

ExitStatus introduce()
{
    printLine(u"marvola finds music and videos, indexes them, and lists and queues them for a player."_s);
    QString problem;
    const std::optional<Places> places = locatePlaces({}, problem);
    if (places) {
        printLine();
        printLine(u"It looks here:"_s, Emphasis::Strong);
        printTable(directories(*places));
        if (!QFileInfo::exists(Session::settingsFileBelow(places->work))) {
            printLine(u"Nothing is indexed there yet."_s);
        }
    } else {
        printLine(problem);
    }
    printLine();
    printLine(u"Begin with:"_s, Emphasis::Strong);
    printTable({{u"marvola refresh"_s, u"find and index what is there"_s},
                {u"marvola refresh --data DIR"_s, u"or what is in a directory of yours"_s},
                {u"marvola show"_s, u"see it by artist, album and genre"_s},
                {u"marvola status"_s, u"see where everything is, and how full"_s},
                {u"marvola --help"_s, u"see every command and option"_s}});
    return ExitStatus::Done;
}

} // namespace marvola
