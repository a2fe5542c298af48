// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CrashNote.h"

#include "ChildProcess.h"
#include "MediaBytes.h"

#include <QtCore/QCryptographicHash>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>

using marvola::CrashNote;
using marvola::FileIdentity;

namespace {

const QByteArray Song = "/card/song.mp3";
constexpr FileIdentity State = {1, 2, 3000, {400, 5}, {600, 7}};

class CrashNoteTest : public testing::Test
{
protected:
    QString path(const char *name = "note") const { return m_folder.filePath(QLatin1String(name)); }
    QByteArray content() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    bool write(const QByteArray &bytes) const
    {
        QFile file(path());
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }

    /// Lets a process die while it reads the file called \a name in state \a state.
    int dieOver(const QByteArray &name, const FileIdentity &state = State) const
    {
        return inChild([&] {
            CrashNote note;
            if (!note.open(path()))
                return 2;
            note.begin(name, state);
            return ::raise(SIGKILL);
        });
    }

    bool isCulprit(const QByteArray &name, const FileIdentity &state = State) const
    {
        CrashNote note;
        EXPECT_TRUE(note.open(path()));
        return note.isCulprit(name, state);
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(CrashNoteTest, FileOverWhichAProcessDiedIsACulprit)
{
    EXPECT_FALSE(isCulprit(Song));
    ASSERT_EQ(dieOver(Song), -SIGKILL);
    for (int round = 0; round < 3; ++round)
        EXPECT_TRUE(isCulprit(Song)) << "and stays one";
    EXPECT_FALSE(isCulprit("/card/other.mp3"));
}

TEST_F(CrashNoteTest, FileThatWasReadIsNone)
{
    const int result = inChild([this] {
        CrashNote note;
        if (!note.open(path()))
            return 2;
        note.begin(Song, State);
        note.end();
        return ::raise(SIGKILL);
    });
    ASSERT_EQ(result, -SIGKILL);
    EXPECT_FALSE(isCulprit(Song));
}

TEST_F(CrashNoteTest, LastFileCountsNotThoseBefore)
{
    const int result = inChild([this] {
        CrashNote note;
        if (!note.open(path()))
            return 2;
        for (const char *name : {"/a.mp3", "/b.mp3", "/c.mp3"}) {
            note.end();
            note.begin(name, State);
        }
        return ::raise(SIGKILL);
    });
    ASSERT_EQ(result, -SIGKILL);
    EXPECT_TRUE(isCulprit("/c.mp3"));
    EXPECT_FALSE(isCulprit("/b.mp3"));
}

TEST_F(CrashNoteTest, ChangedFileIsNoCulprit)
{
    ASSERT_EQ(dieOver(Song), -SIGKILL);
    const FileIdentity changed[] = {{1, 2, 3001, {400, 5}, {600, 7}},
                                    {1, 2, 3000, {401, 5}, {600, 7}},
                                    {1, 2, 3000, {400, 6}, {600, 7}},
                                    {1, 2, 3000, {400, 5}, {601, 7}},
                                    {1, 2, 3000, {400, 5}, {600, 8}}};
    for (const FileIdentity &state : changed)
        EXPECT_FALSE(isCulprit(Song, state));
    EXPECT_TRUE(isCulprit(Song, {9, 9, 3000, {400, 5}, {600, 7}})) << "a card has other numbers each time it is put in";
}

TEST_F(CrashNoteTest, NewStateOfAFileTakesThePlaceOfTheOld)
{
    const FileIdentity later = {1, 2, 3000, {500, 5}, {600, 7}};
    ASSERT_EQ(dieOver(Song), -SIGKILL);
    ASSERT_EQ(dieOver(Song, later), -SIGKILL);
    EXPECT_FALSE(isCulprit(Song));
    EXPECT_TRUE(isCulprit(Song, later));
    EXPECT_TRUE(isCulprit(Song, later)) << "not only as long as it is in a slot";
}

TEST_F(CrashNoteTest, NewestCulpritsAreRemembered)
{
    for (int number = 0; number < CrashNote::CulpritCount + 3; ++number)
        ASSERT_EQ(dieOver("/" + QByteArray::number(number)), -SIGKILL);
    // One more look moves the last one from its slot to the others.
    EXPECT_TRUE(isCulprit("/57"));
    EXPECT_FALSE(isCulprit("/0"));
    EXPECT_FALSE(isCulprit("/2"));
    for (int number = 3; number < CrashNote::CulpritCount + 3; ++number)
        EXPECT_TRUE(isCulprit("/" + QByteArray::number(number))) << number;
    EXPECT_EQ(content().size(), 4096);
}

TEST_F(CrashNoteTest, ProcessThatIsStillReadingIsNoCrash)
{
    CrashNote first;
    ASSERT_TRUE(first.open(path()));
    first.begin(Song, State);
    EXPECT_FALSE(isCulprit(Song)) << "one process";
    EXPECT_EQ(inChild([this] { return isCulprit(Song) ? 1 : 0; }), 0) << "and another";
    first.end();
    EXPECT_FALSE(isCulprit(Song));
}

TEST_F(CrashNoteTest, EachProcessHasItsOwnNote)
{
    CrashNote living;
    ASSERT_TRUE(living.open(path()));
    living.begin("/living.mp3", State);
    ASSERT_EQ(dieOver(Song), -SIGKILL);
    EXPECT_TRUE(isCulprit(Song));
    EXPECT_FALSE(isCulprit("/living.mp3"));
    EXPECT_TRUE(content().contains(QCryptographicHash::hash("/living.mp3", QCryptographicHash::Sha1)));
}

TEST_F(CrashNoteTest, NinthProcessFindsNoPlace)
{
    std::vector<std::unique_ptr<CrashNote>> notes;
    for (int count = 0; count < CrashNote::SlotCount; ++count) {
        notes.push_back(std::make_unique<CrashNote>());
        ASSERT_TRUE(notes.back()->open(path()));
    }
    CrashNote ninth;
    EXPECT_FALSE(ninth.open(path()));
    ninth.begin(Song, State);
    ninth.end();
    notes.pop_back();
    EXPECT_TRUE(ninth.open(path()));
}

TEST_F(CrashNoteTest, CulpritsAreKnownWithoutAPlaceToo)
{
    ASSERT_EQ(dieOver(Song), -SIGKILL);
    EXPECT_TRUE(isCulprit(Song));
    std::vector<std::unique_ptr<CrashNote>> notes;
    for (int count = 0; count < CrashNote::SlotCount; ++count) {
        notes.push_back(std::make_unique<CrashNote>());
        ASSERT_TRUE(notes.back()->open(path()));
    }
    CrashNote ninth;
    EXPECT_FALSE(ninth.open(path()));
    EXPECT_TRUE(ninth.isCulprit(Song, State));
}

TEST_F(CrashNoteTest, GarbageIsNoCulpritAndIsReplaced)
{
    ASSERT_EQ(dieOver(Song), -SIGKILL);
    QByteArray bytes = content();
    ASSERT_EQ(bytes.size(), 4096);
    for (qsizetype at = 64; at < bytes.size(); ++at)
        bytes[at] = static_cast<char>(at * 37);
    ASSERT_TRUE(write(bytes));
    EXPECT_FALSE(isCulprit(Song));
    ASSERT_EQ(dieOver(Song), -SIGKILL);
    EXPECT_TRUE(isCulprit(Song));
}

TEST_F(CrashNoteTest, OneWrongBitMakesARecordNone)
{
    ASSERT_EQ(dieOver(Song), -SIGKILL);
    EXPECT_TRUE(isCulprit(Song));
    const QByteArray bytes = content();
    const qsizetype record = bytes.indexOf(QCryptographicHash::hash(Song, QCryptographicHash::Sha1));
    ASSERT_GT(record, 0);
    for (qsizetype at = record; at < record + 64; ++at) {
        QByteArray damaged = bytes;
        damaged[at] = static_cast<char>(damaged.at(at) ^ 0x10);
        ASSERT_TRUE(write(damaged));
        EXPECT_FALSE(isCulprit(Song)) << at;
    }
}

TEST_F(CrashNoteTest, CutOffNoteIsMadeWhole)
{
    ASSERT_EQ(dieOver(Song), -SIGKILL);
    const QByteArray bytes = content();
    for (const qsizetype size : {0, 64, 70, 100, 200, 4000}) {
        ASSERT_TRUE(write(bytes.left(size)));
        ASSERT_EQ(dieOver("/again.mp3"), -SIGKILL) << size;
        EXPECT_TRUE(isCulprit("/again.mp3")) << size;
    }
    ASSERT_TRUE(write(QByteArray(4096, '\0')));
    EXPECT_FALSE(isCulprit(Song)) << "what a power cut may leave";
}

TEST_F(CrashNoteTest, FileOfSomebodyElseIsLeftAlone)
{
    const QByteArray letter = "Dear diary, this is not a note of that kind.";
    ASSERT_TRUE(write(letter));
    CrashNote note;
    EXPECT_FALSE(note.open(path()));
    note.begin(Song, State);
    note.end();
    EXPECT_EQ(content(), letter);
}

TEST_F(CrashNoteTest, PlantedLinksAreNotFollowed)
{
    CrashNote note;
    ASSERT_EQ(::symlink(path("elsewhere").toUtf8().constData(), path().toUtf8().constData()), 0);
    EXPECT_FALSE(note.open(path()));
    EXPECT_FALSE(QFile::exists(path("elsewhere")));
    ASSERT_TRUE(QFile::remove(path()));

    ASSERT_TRUE(note.open(path("other")));
    ASSERT_TRUE(note.open(QString()));
    ASSERT_EQ(::link(path("other").toUtf8().constData(), path().toUtf8().constData()), 0);
    EXPECT_FALSE(note.open(path())) << "a file that has another name too";
}

TEST_F(CrashNoteTest, WhatIsNoFileIsNoNote)
{
    CrashNote note;
    EXPECT_FALSE(note.open(QStringLiteral("/no/such/folder/note")));
    EXPECT_FALSE(note.open(path("")));
    EXPECT_FALSE(note.open(QStringLiteral("/dev/null")));
    const QByteArray pipe = path("pipe").toUtf8();
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    EXPECT_FALSE(note.open(QString::fromUtf8(pipe))) << "and this did not wait";
    EXPECT_TRUE(note.open(QString()));
    note.begin(Song, State);
    note.end();
    EXPECT_FALSE(note.isCulprit(Song, State));
}

TEST_F(CrashNoteTest, NobodyElseMayReadIt)
{
    ASSERT_EQ(dieOver(Song), -SIGKILL);
    struct stat status = {};
    ASSERT_EQ(::stat(path().toUtf8().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_FALSE(content().contains("song")) << "nor does it name the file";
}

TEST_F(CrashNoteTest, StoppedProcessDoesNotHoldUpOthers)
{
    // It holds the lock that everyone takes when opening, and goes on holding it.
    ASSERT_EQ(dieOver(Song), -SIGKILL);
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    struct flock range = {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_len = 64;
    ASSERT_EQ(::fcntl(file.handle(), F_OFD_SETLK, &range), 0);
    EXPECT_TRUE(isCulprit(Song)) << "known, though it cannot be put among the others now";
    file.close();
    EXPECT_TRUE(isCulprit(Song));
    EXPECT_TRUE(isCulprit(Song)) << "nor is it lost";
}

TEST_F(CrashNoteTest, TwoProcessesThatTakeOverLoseNothing)
{
    for (int round = 0; round < 20; ++round) {
        const QByteArray first = "/first" + QByteArray::number(round);
        const QByteArray second = "/second" + QByteArray::number(round);
        // Both die before anybody looks.
        const int result = inChild([&] {
            CrashNote one;
            CrashNote two;
            if (!one.open(path()) || !two.open(path()))
                return 2;
            one.begin(first, State);
            two.begin(second, State);
            return ::raise(SIGKILL);
        });
        ASSERT_EQ(result, -SIGKILL);
        const pid_t other = ::fork();
        if (other == 0) {
            CrashNote note;
            ::_exit(note.open(path()) ? 0 : 1);
        }
        EXPECT_TRUE(isCulprit(first));
        EXPECT_TRUE(isCulprit(second));
        ::waitpid(other, nullptr, 0);
        EXPECT_TRUE(isCulprit(first));
        EXPECT_TRUE(isCulprit(second));
    }
}
