// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/ConfigFile.h>

#include "Folder.h"

#include "support/StoppedHolder.h"

#include <functional>
#include <thread>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString name = u"shared.cfg"_s;
constexpr int Writers = 2;
constexpr int KeysEach = 200;

QString keyOf(int writer, int number)
{
    return QString::number(writer) + u'-' + QString::number(number);
}

/// Commits each key by itself.
bool commitKeys(const QString &path, int writer)
{
    bool isDone = true;
    for (int number = 0; number < KeysEach; ++number) {
        ConfigFile file(path, false);
        isDone = file.writeEntry(u"g"_s, keyOf(writer, number), number) && file.flush() && isDone;
    }
    return isDone;
}

bool count(const QString &path)
{
    bool isDone = true;
    for (int step = 0; step < KeysEach; ++step) {
        ConfigFile file(path, false);
        isDone = file.lockForUpdate() && isDone;
        isDone = file.writeEntry(u"g"_s, u"counter"_s, file.readNumEntry(u"g"_s, u"counter"_s) + 1) && isDone;
        isDone = file.flush() && isDone;
    }
    return isDone;
}

void inProcesses(const std::function<bool(int)> &work)
{
    std::vector<pid_t> children;
    for (int writer = 0; writer < Writers; ++writer) {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(work(writer) ? 0 : 1);
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
}

void inThreads(const std::function<bool(int)> &work)
{
    std::vector<std::thread> threads;
    for (int writer = 0; writer < Writers; ++writer)
        threads.emplace_back([&work, writer] { EXPECT_TRUE(work(writer)); });
    for (std::thread &thread : threads)
        thread.join();
}

void expectAllKeys(const Folder &folder)
{
    ConfigFile file(folder.path(name), false);
    for (int writer = 0; writer < Writers; ++writer) {
        for (int number = 0; number < KeysEach; ++number)
            ASSERT_EQ(file.readNumEntry(u"g"_s, keyOf(writer, number), -1), number) << writer;
    }
    EXPECT_EQ(folder.names(), QStringList(name)) << "nothing stays beside the file";
}

} // namespace

TEST(ConfigFileSharing, TwoObjectsLoseNothingOfOneAnother)
{
    const Folder folder;
    folder.put(name, "[g]\na=1\nb=2\nc=3\n");
    ConfigFile one(folder.path(name), false);
    ConfigFile two(folder.path(name), false);
    EXPECT_EQ(one.readNumEntry(u"g"_s, u"a"_s), 1);
    EXPECT_EQ(two.readNumEntry(u"g"_s, u"b"_s), 2);
    one.writeEntry(u"g"_s, u"a"_s, 10);
    one.writeEntry(u"pl-x"_s, u"1"_s, u"song"_s);
    two.removeEntry(u"g"_s, u"b"_s);
    two.writeEntry(u"g"_s, u"d"_s, 4);
    EXPECT_TRUE(one.flush());
    EXPECT_TRUE(two.flush());
    ConfigFile now(folder.path(name), false);
    const QMap<QString, QString> expected{{u"a"_s, u"10"_s}, {u"c"_s, u"3"_s}, {u"d"_s, u"4"_s}};
    EXPECT_EQ(now.getGroupEntriesKeyList(u"g"_s), expected);
    EXPECT_EQ(now.readEntry(u"pl-x"_s, u"1"_s), u"song"_s);
}

TEST(ConfigFileSharing, ReadsStayAsTheyWereUntilTheCommit)
{
    const Folder folder;
    folder.put(name, "[g]\na=1\n");
    ConfigFile reader(folder.path(name), false);
    EXPECT_EQ(reader.readNumEntry(u"g"_s, u"a"_s), 1);
    ConfigFile(folder.path(name), false).writeEntry(u"g"_s, u"a"_s, 2);
    EXPECT_EQ(reader.readNumEntry(u"g"_s, u"a"_s), 1);
    reader.writeEntry(u"g"_s, u"b"_s, 1);
    EXPECT_TRUE(reader.flush());
    EXPECT_EQ(reader.readNumEntry(u"g"_s, u"a"_s), 2) << "what was committed is what is there";
}

TEST(ConfigFileSharing, WhatAnotherCommittedSinceItWasReadStays)
{
    const Folder folder;
    const QString path = folder.path(u"file"_s);
    ASSERT_TRUE(ConfigFile(path, false).writeEntry(u"g"_s, u"a"_s, 1));
    ConfigFile one(path, false);
    ASSERT_EQ(one.readNumEntry(u"g"_s, u"a"_s, 0), 1);
    ASSERT_TRUE(ConfigFile(path, false).writeEntry(u"g"_s, u"a"_s, 2));
    ASSERT_TRUE(one.writeEntry(u"g"_s, u"b"_s, 3));
    ASSERT_TRUE(one.flush());
    EXPECT_EQ(ConfigFile(path, false).readNumEntry(u"g"_s, u"a"_s, 0), 2);
    EXPECT_EQ(ConfigFile(path, false).readNumEntry(u"g"_s, u"b"_s, 0), 3);
}

TEST(ConfigFileSharing, ALockReadsAnew)
{
    const Folder folder;
    folder.put(name, "[g]\na=1\n");
    ConfigFile file(folder.path(name), false);
    EXPECT_EQ(file.readNumEntry(u"g"_s, u"a"_s), 1);
    ConfigFile(folder.path(name), false).writeEntry(u"g"_s, u"a"_s, 2);
    EXPECT_TRUE(file.lockForUpdate());
    EXPECT_EQ(file.readNumEntry(u"g"_s, u"a"_s), 2);
    EXPECT_TRUE(file.lockForUpdate()) << "twice is the same as once";
}

TEST(ConfigFileSharing, ALockKeepsOwnWrites)
{
    const Folder folder;
    ConfigFile file(folder.path(name), false);
    file.writeEntry(u"g"_s, u"a"_s, 5);
    EXPECT_TRUE(file.lockForUpdate());
    EXPECT_EQ(file.readNumEntry(u"g"_s, u"a"_s), 5);
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(ConfigFileSharing, WithinAThreadALockHoldsUpNobody)
{
    const Folder folder;
    ConfigFile locked(folder.path(name), false);
    ASSERT_TRUE(locked.lockForUpdate());
    ConfigFile other(folder.path(u"other.cfg"_s), false);
    other.writeEntry(u"g"_s, u"k"_s, 1);
    EXPECT_TRUE(other.flush());
    ConfigFile same(folder.path(name), false);
    same.writeEntry(u"g"_s, u"k"_s, 1);
    EXPECT_TRUE(same.flush());
}

TEST(ConfigFileSharing, ThreadsCommittingDifferentKeysLoseNone)
{
    const Folder folder;
    inThreads([&folder](int writer) { return commitKeys(folder.path(name), writer); });
    expectAllKeys(folder);
}

TEST(ConfigFileSharing, ProcessesCommittingDifferentKeysLoseNone)
{
    const Folder folder;
    inProcesses([&folder](int writer) { return commitKeys(folder.path(name), writer); });
    expectAllKeys(folder);
}

TEST(ConfigFileSharing, ThreadsCountingUnderTheLockLoseNoStep)
{
    const Folder folder;
    inThreads([&folder](int) { return count(folder.path(name)); });
    EXPECT_EQ(ConfigFile(folder.path(name), false).readNumEntry(u"g"_s, u"counter"_s), Writers * KeysEach);
}

TEST(ConfigFileSharing, ProcessesCountingUnderTheLockLoseNoStep)
{
    const Folder folder;
    inProcesses([&folder](int) { return count(folder.path(name)); });
    EXPECT_EQ(ConfigFile(folder.path(name), false).readNumEntry(u"g"_s, u"counter"_s), Writers * KeysEach);
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(ConfigFileSharing, ReadersSeeOneCommitOrTheOther)
{
    const Folder folder;
    const QString path = folder.path(name);
    const auto write = [&path](int round) {
        ConfigFile file(path, false);
        for (int key = 0; key < 50; ++key)
            file.writeEntry(u"g"_s, QString::number(key), round);
        return file.flush();
    };
    ASSERT_TRUE(write(0));
    std::thread writer([&write] {
        for (int round = 1; round <= 200; ++round)
            EXPECT_TRUE(write(round));
    });
    for (int last = 0; last < 200;) {
        ConfigFile file(path, false);
        const int first = file.readNumEntry(u"g"_s, u"0"_s, -1);
        ASSERT_GE(first, last);
        for (int key = 1; key < 50; ++key)
            ASSERT_EQ(file.readNumEntry(u"g"_s, QString::number(key), -1), first);
        last = first;
    }
    writer.join();
}

TEST(ConfigFileSharing, AHolderThatIsStoppedFailsTheCommitAndNothingIsLost)
{
    const Folder folder;
    ASSERT_TRUE(ConfigFile(folder.path(name), false).writeEntry(u"g"_s, u"old"_s, 1));
    const QByteArray before = folder.bytes(name);
    StoppedHolder other(folder.encodedPath(QString()).constData());
    ASSERT_TRUE(other.isHolding());
    ConfigFile file(folder.path(name), false);
    EXPECT_EQ(file.readNumEntry(u"g"_s, u"old"_s), 1) << "whole text is read without the lock";
    ASSERT_TRUE(file.writeEntry(u"g"_s, u"new"_s, 2));
    EXPECT_FALSE(file.flush());
    EXPECT_EQ(folder.bytes(name), before);
    other.end();
    EXPECT_TRUE(file.flush()) << "the changes stay in the object";
    const ConfigFile after(folder.path(name), false);
    EXPECT_EQ(after.readNumEntry(u"g"_s, u"old"_s), 1);
    EXPECT_EQ(after.readNumEntry(u"g"_s, u"new"_s), 2);
}

TEST(ConfigFileSharing, TextThatAStoppedHolderMayBeWritingIsNotTakenForTheFile)
{
    const Folder folder;
    folder.put(name, "[g]\nold=1\n");
    StoppedHolder other(folder.encodedPath(QString()).constData());
    ASSERT_TRUE(other.isHolding());
    const ConfigFile file(folder.path(name), false);
    EXPECT_TRUE(file.getGroupEntriesKeyList(u"g"_s).isEmpty());
    EXPECT_TRUE(file.isUnreadable());
}
