// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/DirectoryLock.h"

#include "Folder.h"

#include <atomic>
#include <thread>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace marvola;

namespace {

using Patience = DirectoryLock::Patience;

bool isFree(const QByteArray &folder)
{
    bool isFree = false;
    std::thread other([&] { isFree = DirectoryLock(folder, Patience::DoNotWait).isHeld(); });
    other.join();
    return isFree;
}

} // namespace

TEST(DirectoryLock, IsHeldUntilTheLastCopyGoes)
{
    const Folder folder;
    const QByteArray path = folder.encodedPath(QString());
    DirectoryLock lock(path, Patience::Wait);
    ASSERT_TRUE(lock.isHeld());
    EXPECT_FALSE(isFree(path));
    DirectoryLock copy = lock;
    lock = DirectoryLock();
    EXPECT_FALSE(isFree(path));
    copy = DirectoryLock();
    EXPECT_TRUE(isFree(path));
    EXPECT_TRUE(folder.names().isEmpty()) << "a lock leaves no file";
}

TEST(DirectoryLock, OneThreadNeverWaitsForItself)
{
    const Folder folder;
    const QByteArray path = folder.encodedPath(QString());
    DirectoryLock outer(path, Patience::Wait);
    {
        const DirectoryLock inner(path + "/.", Patience::Wait);
        EXPECT_TRUE(inner.isHeld());
    }
    EXPECT_FALSE(isFree(path)) << "the inner one must not let go of the outer one's";
    outer = DirectoryLock();
    EXPECT_TRUE(isFree(path));
}

TEST(DirectoryLock, ALockThatWentCanBeTakenAgain)
{
    const Folder folder;
    for (int round = 0; round < 3; ++round)
        EXPECT_TRUE(DirectoryLock(folder.encodedPath(QString()), Patience::DoNotWait).isHeld());
}

TEST(DirectoryLock, FoldersAreLockedOneByOne)
{
    const Folder one;
    const Folder two;
    const DirectoryLock lock(one.encodedPath(QString()), Patience::Wait);
    EXPECT_FALSE(isFree(one.encodedPath(QString())));
    EXPECT_TRUE(isFree(two.encodedPath(QString())));
}

TEST(DirectoryLock, WaitingEndsWhenTheOtherLetsGo)
{
    const Folder folder;
    const QByteArray path = folder.encodedPath(QString());
    std::atomic<bool> isReleased = false;
    std::atomic<bool> wasReleasedFirst = false;
    DirectoryLock lock(path, Patience::Wait);
    std::thread other([&] {
        const DirectoryLock mine(path, Patience::Wait);
        wasReleasedFirst = mine.isHeld() && isReleased;
    });
    isReleased = true;
    lock = DirectoryLock();
    other.join();
    EXPECT_TRUE(wasReleasedFirst);
}

TEST(DirectoryLock, GoesWithTheProcessThatHeldIt)
{
    const Folder folder;
    const QByteArray path = folder.encodedPath(QString());
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const DirectoryLock lock(path, Patience::Wait);
        static_cast<void>(::write(ready[1], lock.isHeld() ? "y" : "n", 1));
        ::pause();
        ::_exit(0);
    }
    char answer = 0;
    ASSERT_EQ(::read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    EXPECT_FALSE(DirectoryLock(path, Patience::DoNotWait).isHeld());
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    EXPECT_TRUE(DirectoryLock(path, Patience::DoNotWait).isHeld());
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST(DirectoryLock, WhatIsNoDirectoryIsNotHeld)
{
    const Folder folder;
    folder.put(QStringLiteral("file"), "x");
    EXPECT_FALSE(DirectoryLock(folder.encodedPath(QStringLiteral("file")), Patience::Wait).isHeld());
    EXPECT_FALSE(DirectoryLock(folder.encodedPath(QStringLiteral("absent")), Patience::Wait).isHeld());
    EXPECT_FALSE(DirectoryLock().isHeld());
}
