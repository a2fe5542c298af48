// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "KeptLists.h"

#include "Output.h"
#include "Session.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QDir>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr QLatin1String BookmarkGroup("bookmark");
constexpr QLatin1String HistoryGroup("history");
constexpr QLatin1String CounterKey("counter");

QString listFile(Session &session)
{
    return QDir(session.library().getWorkDirectory()).filePath(u".marvola.list"_s);
}

} // namespace

QMap<QString, QString> keptBookmarks(Session &session)
{
    QMap<QString, QString> bookmarks = ConfigFile(listFile(session), false).getGroupEntriesKeyList(BookmarkGroup);
    bookmarks.remove(CounterKey);
    return bookmarks;
}

QString latestKeptLink(Session &session)
{
    return ConfigFile(listFile(session), false).readEntry(HistoryGroup, u"1"_s);
}

ExitStatus requireListFile(Session &session)
{
    if (!session.library().getWorkDirectory().isEmpty()) {
        return ExitStatus::Done;
    }
    return fail(u"no room for the library's lists in %1: see 'marvola status', or name another directory with --work "
                "DIR"_s.arg(session.places().work));
}

ExitStatus keepLists(Session &session, const std::function<bool()> &isKept)
{
    session.library().storeMyLibrary();
    if (isKept()) {
        return ExitStatus::Done;
    }
    return fail(
        u"cannot write to %1: check that the file can be written and the medium has room"_s.arg(listFile(session)));
}

} // namespace marvola
