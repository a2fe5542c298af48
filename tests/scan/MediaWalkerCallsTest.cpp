// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Strace.h"

#include "support/Folders.h"

#include <QtCore/QMap>
#include <QtCore/QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Calls = QMap<QString, int>;

/// The kernel has several calls for one thing, and libraries differ in which they use.
QString plainName(const QString &call)
{
    for (const QString &name : {u"stat"_s, u"open"_s, u"getdents"_s}) {
        if (call.contains(name))
            return name;
    }
    return call;
}

/// How often each system call on files was made by a program that walks \a folders, by strace.
Calls callsOfWalk(const Folders &folders, int expectedFiles)
{
    const QStringList lines =
        callsOf({QString::fromUtf8(WALK_PROBE), folders.root()}, {u"-e"_s, u"trace=%file,%desc"_s}, expectedFiles);
    Calls calls;
    for (const QString &line : lines) {
        const auto name = QRegularExpression(u"^\\w+(?=\\()"_s).match(line).captured();
        if (!name.isEmpty() && !name.contains(u"mmap"_s))
            ++calls[plainName(name)];
    }
    return calls;
}

/// \a after less \a before, without what is equal.
Calls difference(const Calls &before, Calls after)
{
    for (auto call = before.begin(); call != before.end(); ++call)
        after[call.key()] -= call.value();
    after.removeIf([](const auto &call) { return call.value() == 0; });
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
    EXPECT_EQ(more, Calls({{u"open"_s, 20}, {u"stat"_s, 20}, {u"getdents"_s, 40}, {u"close"_s, 20}}));
}

TEST(MediaWalkerCalls, LinksNeedOneCallEach)
{
    const Folders folders;
    folders.addFile(u"a.mp3"_s);
    const Calls before = callsOfWalk(folders, 1);
    for (int i = 0; i < 10; ++i)
        folders.addLink(u"link%1.mp3"_s.arg(i), u"a.mp3"_s);
    const Calls more = difference(before, callsOfWalk(folders, 11));
    EXPECT_EQ(more, Calls({{u"stat"_s, 10}}));
}
