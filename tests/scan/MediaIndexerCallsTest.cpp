// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Strace.h"

#include "support/Folders.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct Scan
{
    int limit; ///< of files
    int scanned;
};

/// The lines of strace about what a slow scan of \a files does with files whose path contains \a about.
QStringList callsOfSlowScan(const QStringList &files, const QString &about, const Scan &scan)
{
    return callsOf(QStringList{QString::fromUtf8(SLOW_SCAN_PROBE), QString::number(scan.limit)} + files,
                   {u"-y"_s, u"-e"_s, u"trace=openat,fadvise64"_s}, scan.scanned)
        .filter(about);
}

QStringList callsOfSlowScan(const QStringList &files, const QString &about)
{
    return callsOfSlowScan(files, about, {1000, static_cast<int>(files.size())});
}

} // namespace

TEST(MediaIndexerCalls, SlowFilesBringHintsAboutThoseThatFollow)
{
    const Folders folders;
    QStringList files;
    for (int number = 10; number < 30; ++number)
        files.append(folders.addFile(u"%1.mp3"_s.arg(number), "x"));
    const QStringList calls = callsOfSlowScan(files, folders.root());
    EXPECT_EQ(calls.filter(u"fadvise64("_s).size(), 18) << "all but the first two";
    EXPECT_EQ(calls.filter(u"openat("_s).size(), 18) << "an engine that reads nothing";
    EXPECT_EQ(calls.filter(u"O_RDONLY|O_NOCTTY|O_NONBLOCK|O_CLOEXEC"_s).size(), 18);
    EXPECT_TRUE(calls.filter(u"/10.mp3"_s).isEmpty() && calls.filter(u"/11.mp3"_s).isEmpty());
}

TEST(MediaIndexerCalls, HintsAreAboutBothEndsOfAFile)
{
    const Folders folders;
    const QString path = folders.addFile(u"long.mp3"_s, QByteArray(200 * 1024, 'x'));
    const QString other = folders.addFile(u"a.mp3"_s);
    const QStringList calls = callsOfSlowScan({other, other, path}, path).filter(u"fadvise64("_s);
    ASSERT_EQ(calls.size(), 2);
    EXPECT_TRUE(calls.at(0).contains(u", 0, 65536, POSIX_FADV_WILLNEED) = 0"_s)) << qPrintable(calls.at(0));
    EXPECT_TRUE(calls.at(1).contains(u", 139264, 65536, POSIX_FADV_WILLNEED) = 0"_s)) << qPrintable(calls.at(1));
}

TEST(MediaIndexerCalls, OnlyRegularFilesAreOpenedForHints)
{
    const Folders folders;
    const QString other = folders.addFile(u"a.mp3"_s);
    const QString pipe = folders.addFifo(u"pipe.mp3"_s);
    EXPECT_EQ(callsOfSlowScan({other, other, pipe, folders.root(), folders.path(u"missing.mp3"_s)}, folders.root()),
              QStringList());
}

TEST(MediaIndexerCalls, NoHintsAboutFilesThatAreNotScanned)
{
    const Folders folders;
    QStringList files{folders.addFile(u"a.mp3"_s)};
    for (const char name : {'b', 'c', 'd', 'e'})
        files.append(folders.addFile(QLatin1Char(name) + u".mp3"_s, "x"));
    const QStringList limited = callsOfSlowScan(files, folders.root(), {3, 3});
    EXPECT_EQ(limited.filter(u"openat("_s).size(), 1) << "past the limit";
    EXPECT_EQ(limited.filter(u"/c.mp3"_s), limited);
    files.first() = folders.addFile(u"cancel.mp3"_s);
    EXPECT_EQ(callsOfSlowScan(files, folders.root(), {1000, 1}), QStringList()) << "after the scan was cancelled";
}
