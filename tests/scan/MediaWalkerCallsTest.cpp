// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Strace.h"

#include "support/Folders.h"

#include <QtCore/QRegularExpression>

#include <gtest/gtest.h>

#include <map>
#include <string>

using namespace Qt::StringLiterals;

namespace {

using Calls = std::map<std::string, int>;

/// The kernel has several calls for one thing, and libraries differ in which they use.
std::string plainName(const QString &call)
{
    for (const char *name : {"stat", "open", "getdents"}) {
        if (call.contains(QLatin1String(name)))
            return name;
    }
    return call.toStdString();
}

/// How often each system call on files was made by a program that walks \a folders, by strace.
Calls callsOfWalk(const Folders &folders, int expectedFiles)
{
    const QStringList lines =
        callsOf({QString::fromUtf8(WALK_PROBE), folders.root()}, {u"-e"_s, u"trace=%file,%desc"_s}, expectedFiles);
    Calls calls;
    for (const QString &line : lines) {
        const auto name = QRegularExpression(u"^\\w+(?=\\()"_s).match(line).captured();
        // A sanitizer reads its process's maps, in as many calls as they take. What the walk would read it has to open.
        if (!name.isEmpty() && !name.contains(u"mmap"_s) && name != u"read"_s)
            ++calls[plainName(name)];
    }
    return calls;
}

/// \a after less \a before, without what is equal.
Calls difference(const Calls &before, Calls after)
{
    for (const auto &[name, count] : before)
        after[name] -= count;
    for (auto call = after.begin(); call != after.end();)
        call = call->second == 0 ? after.erase(call) : std::next(call);
    return after;
}

} // namespace

TEST(MediaWalkerCalls, FoldersNeedFiveCallsAndFilesNone)
{
    const Folders folders;
    const Calls before = callsOfWalk(folders, 0);
    for (int folder = 0; folder < 20; ++folder) {
        for (int file = 0; file < 10; ++file)
            folders.addFile(u"%1/%2.mp3"_s.arg(folder).arg(file));
    }
    const Calls more = difference(before, callsOfWalk(folders, 200));
    EXPECT_EQ(more, Calls({{"open", 20}, {"stat", 20}, {"getdents", 40}, {"close", 20}}));
}

TEST(MediaWalkerCalls, LinksNeedOneCallEach)
{
    const Folders folders;
    folders.addFile(u"a.mp3"_s);
    const Calls before = callsOfWalk(folders, 1);
    for (int i = 0; i < 10; ++i)
        folders.addLink(u"link%1.mp3"_s.arg(i), u"a.mp3"_s);
    const Calls more = difference(before, callsOfWalk(folders, 11));
    EXPECT_EQ(more, Calls({{"stat", 10}}));
}
