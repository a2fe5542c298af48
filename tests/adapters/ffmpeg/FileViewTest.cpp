// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FileView.h"

#include "MediaBytes.h"

#include <gtest/gtest.h>

using marvola::FileView;
using marvola::MediaFile;

namespace {

/// All that \a view shows from \a position on, read in pieces of \a piece bytes.
QByteArray shown(FileView &view, qint64 piece = 1000, qint64 position = 0)
{
    QByteArray bytes;
    for (;;) {
        QByteArray buffer(piece, '?');
        const qint64 got = view.read(position + bytes.size(), buffer.data(), piece);
        if (got < 0)
            return "failed";
        if (got == 0)
            return bytes;
        bytes += buffer.left(got);
    }
}

const QByteArray Letters = "abcdefghijklmnopqrstuvwxyz";

} // namespace

TEST(FileView, ShowsTheFileFromItsStart)
{
    const FileOf source(Letters);
    MediaFile file(source.path(), AmpleBudget);
    FileView whole(file, 0);
    EXPECT_EQ(shown(whole), Letters);
    EXPECT_EQ(whole.size(), 26);
    FileView part(file, 20);
    EXPECT_EQ(shown(part), "uvwxyz");
    EXPECT_EQ(part.size(), 6);
    FileView none(file, 100);
    EXPECT_EQ(shown(none), "");
    EXPECT_EQ(none.size(), 0);
}

TEST(FileView, EndsWhereItIsTold)
{
    const FileOf source(Letters);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 2);
    view.endAt(5);
    EXPECT_EQ(shown(view), "cde");
    EXPECT_EQ(view.size(), 3);
    view.endAt(1000);
    EXPECT_EQ(view.size(), 24) << "not after the file's end";
    view.endAt(0);
    EXPECT_EQ(shown(view), "");
    EXPECT_EQ(view.size(), 0);
}

TEST(FileView, ReplacementsAreSeenHoweverReadsCutThem)
{
    const FileOf source(Letters);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 1);
    view.replace(4, "1234");
    view.replace(24, "5678");
    view.replace(0, "90");
    for (qint64 piece = 1; piece < 30; ++piece)
        EXPECT_EQ(shown(view, piece), "0cd1234ijklmnopqrstuvwx56") << piece;
}

TEST(FileView, BlankPartsAreZerosAndNotRead)
{
    const FileOf source(Letters);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 0);
    view.blank(3, 20);
    for (qint64 piece = 1; piece < 30; ++piece)
        EXPECT_EQ(shown(view, piece), "abc" + QByteArray(17, '\0') + "uvwxyz") << piece;
    EXPECT_EQ(file.bytesRead() % 9, 0);
    EXPECT_EQ(view.size(), 26);
    view.blank(25, 21);
    EXPECT_EQ(shown(view).right(6), "uvwxyz") << "nothing ends before it starts";
}

TEST(FileView, PartsLeftOutAreNotThere)
{
    const FileOf source(Letters);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 1);
    view.leaveOut(3, 10);
    view.leaveOut(12, 20);
    for (qint64 piece = 1; piece < 30; ++piece)
        EXPECT_EQ(shown(view, piece), "bckluvwxyz") << piece;
    EXPECT_EQ(view.size(), 10);
    EXPECT_EQ(shown(view, 5, 3), "luvwxyz");
}

TEST(FileView, AllKindsOfChangesMix)
{
    const FileOf source(Letters);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 2);
    view.endAt(25);
    view.leaveOut(4, 6);
    view.blank(10, 12);
    view.replace(5, "123");
    for (qint64 piece = 1; piece < 30; ++piece)
        EXPECT_EQ(shown(view, piece), "cd23ij" + QByteArray(2, '\0') + "mnopqrstuvwxy") << piece;
}

TEST(FileView, CoverSeesMoreThanIsAsked)
{
    const FileOf source(Letters);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 0);
    QByteArray last;
    view.setCover(
        [&last](qint64 offset, QByteArray &window) {
            EXPECT_EQ(window, Letters.mid(offset, window.size()));
            last = window;
            const qsizetype mark = window.indexOf("klmn");
            if (mark >= 0)
                window.replace(mark, 4, "####");
        },
        3);
    for (qint64 piece = 1; piece < 30; ++piece)
        EXPECT_EQ(shown(view, piece), "abcdefghij####opqrstuvwxyz") << piece;
    QByteArray buffer(5, '?');
    EXPECT_EQ(view.read(10, buffer.data(), 5), 5);
    EXPECT_EQ(last, "hijklmnopqr");
    EXPECT_EQ(view.read(1, buffer.data(), 5), 5);
    EXPECT_EQ(last, "abcdefghi") << "nothing before the file";
    view.replace(12, "+");
    EXPECT_EQ(shown(view), "abcdefghij##+#opqrstuvwxyz") << "replacements come last";
}

TEST(FileView, OddPositionsAreNoHarm)
{
    const FileOf source(Letters);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 20);
    view.leaveOut(22, 24);
    char byte = '?';
    EXPECT_EQ(view.read(-1, &byte, 1), -1);
    EXPECT_EQ(view.read(1000, &byte, 1), 0);
    EXPECT_EQ(view.read(std::numeric_limits<qint64>::max(), &byte, 1), 0);
    EXPECT_EQ(view.read(0, &byte, 0), 0);
    EXPECT_EQ(byte, '?');
}

TEST(FileView, BudgetEndsEveryKindOfReading)
{
    const FileOf source(Letters);
    MediaFile file(source.path(), {0, std::chrono::minutes(5)});
    FileView view(file, 0);
    view.blank(0, 10);
    char byte = '?';
    EXPECT_TRUE(view.isExhausted());
    EXPECT_EQ(view.read(0, &byte, 1), -1);
    EXPECT_EQ(view.read(12, &byte, 1), -1);
    view.setCover([](qint64, QByteArray &) { FAIL() << "there is nothing to cover"; }, 4);
    EXPECT_EQ(view.read(12, &byte, 1), -1);
}
