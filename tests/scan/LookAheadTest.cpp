// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/LookAhead.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <future>
#include <thread>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using marvola::LookAhead;

namespace {

constexpr auto Slow = LookAhead::SlowFile + std::chrono::microseconds(1);
constexpr auto Quick = LookAhead::SlowFile;

/// A list of files named by their numbers, and the hints that are given about them.
class Hints
{
public:
    explicit Hints(int files, int count = 1'000'000) : m_count(count)
    {
        for (int number = 0; number < files; ++number)
            m_files.append(QString::number(number));
    }

    /// The hints that one more file brings.
    QByteArrayList after(std::chrono::steady_clock::duration duration)
    {
        m_given.clear();
        m_lookAhead.described(duration);
        return m_given;
    }

private:
    QStringList m_files;
    QByteArrayList m_given;
    int m_count;
    LookAhead m_lookAhead{m_files, m_count, [this](const QByteArray &path) { m_given.append(path); }};
};

std::chrono::nanoseconds ranSoFar()
{
    timespec ran = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ran);
    return std::chrono::seconds(ran.tv_sec) + std::chrono::nanoseconds(ran.tv_nsec);
}

} // namespace

TEST(LookAhead, QuickFilesCostNothing)
{
    Hints hints(100);
    for (int file = 0; file < 100; ++file)
        EXPECT_EQ(hints.after(Quick), QByteArrayList());
}

TEST(LookAhead, ASlowFileBringsHintsAboutTheNextButOneOnwards)
{
    Hints hints(100);
    EXPECT_EQ(hints.after(Slow), QByteArrayList({"2", "3", "4", "5", "6", "7", "8"}));
    EXPECT_EQ(hints.after(Slow), QByteArrayList{"9"}) << "each file once";
    EXPECT_EQ(hints.after(Quick), QByteArrayList{"10"}) << "quick because of the hint";
}

TEST(LookAhead, AfterManyQuickFilesThereAreNoMore)
{
    Hints hints(1000);
    hints.after(Slow);
    QByteArrayList given;
    for (int file = 1; file < 100; ++file)
        given += hints.after(Quick);
    EXPECT_EQ(given.size(), LookAhead::Patience + 1 - LookAhead::Reach - 1);
    EXPECT_EQ(given.last(), QByteArray::number(LookAhead::Patience));
    EXPECT_EQ(hints.after(Slow).first(), "102") << "until one is slow again";
}

TEST(LookAhead, EndsWithTheList)
{
    Hints hints(3);
    EXPECT_EQ(hints.after(Slow), QByteArrayList{"2"});
    EXPECT_EQ(hints.after(Slow), QByteArrayList());
    EXPECT_EQ(hints.after(Slow), QByteArrayList());
}

TEST(LookAhead, FilesThatAreNotGoingToBeDescribedGetNone)
{
    Hints hints(100, 4);
    EXPECT_EQ(hints.after(Slow), QByteArrayList({"2", "3"}));
    EXPECT_EQ(hints.after(Slow), QByteArrayList());
    EXPECT_EQ(Hints(100, 0).after(Slow), QByteArrayList());
    EXPECT_EQ(Hints(100, -1).after(Slow), QByteArrayList());
}

TEST(LookAhead, OnlyWhatTheThreadDidNotRunIsWaiting)
{
    using namespace std::chrono_literals;
    const auto begin = std::chrono::steady_clock::now();
    const auto atBegin = LookAhead::waitedSoFar();
    std::this_thread::sleep_for(20ms);
    const auto slept = LookAhead::waitedSoFar() - atBegin;
    // The scheduler may count a little of the sleep as running.
    EXPECT_GE(slept, 19ms);

    const auto ran = ranSoFar();
    while (ranSoFar() - ran < 50ms) {
    }
    const auto waited = LookAhead::waitedSoFar() - atBegin;
    EXPECT_LE(waited, std::chrono::steady_clock::now() - begin - 49ms) << "the other fifty it ran";
}

TEST(LookAhead, NeverWaitsForAPipe)
{
    const QTemporaryDir folder;
    const QByteArray pipe = QFile::encodeName(folder.filePath(u"a.mp3"_s));
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    auto hint = std::async(std::launch::async, [&pipe] { LookAhead::hintAt(pipe); });
    hint.get();
}

TEST(LookAhead, TakesWhateverThereIs)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"file"_s);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const qint64 size : {0, 1, 64 * 1024, 64 * 1024 + 1, 200 * 1024}) {
        ASSERT_TRUE(file.resize(size));
        LookAhead::hintAt(QFile::encodeName(path));
    }
    for (const QByteArray &other :
         {QByteArray(), QByteArray("/"), QByteArray("/missing"), QByteArray("/dev/null"), QByteArray("/\0x", 3)})
        LookAhead::hintAt(other);
}
