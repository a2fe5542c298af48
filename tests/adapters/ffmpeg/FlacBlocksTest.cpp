// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FlacBlocks.h"

#include "CommentBytes.h"
#include "FileView.h"
#include "TextDecoder.h"
#include "VorbisComments.h"

#include <marvola/PlayerEngine.h>

#include <gtest/gtest.h>

using marvola::FileView;
using marvola::MediaFile;
using marvola::VorbisComments;

namespace {

constexpr int Last = 0x80;

QByteArray block(int flags, const QByteArray &content)
{
    return static_cast<char>(flags) + bigEndian(static_cast<quint32>(content.size())).mid(1) + content;
}

struct Shown
{
    QByteArray bytes;
    QList<VorbisComments> comments;
};

Shown shown(const QByteArray &bytes, qint64 start = 0)
{
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, start);
    Shown shown;
    marvola::hideFlacBlocks(file, start, view, shown.comments);
    shown.bytes.resize(view.size());
    EXPECT_EQ(view.read(0, shown.bytes.data(), shown.bytes.size()), shown.bytes.size());
    return shown;
}

const QByteArray Info = "fLaC" + block(0, QByteArray(34, 'i'));
const QByteArray Sound = "sound";

QByteArray longList()
{
    return commentList(QByteArrayList(2000, "a=b"));
}

} // namespace

TEST(FlacBlocks, FewCommentsStay)
{
    const QByteArray bytes = Info + block(4 | Last, commentList({"title=A"})) + Sound;
    const Shown all = shown(bytes);
    EXPECT_EQ(all.bytes, bytes);
    EXPECT_TRUE(all.comments.isEmpty());
}

TEST(FlacBlocks, ManyCommentsBecomePaddingAndAreReadHere)
{
    const QByteArray list = commentList(QByteArrayList{"title=A"} + QByteArrayList(2000, "a=b"));
    const Shown all = shown(Info + block(4 | Last, list) + Sound);
    EXPECT_EQ(all.bytes, Info + block(1 | Last, list) + Sound);
    ASSERT_EQ(all.comments.size(), 1);
    ClipInfo info;
    all.comments.first().addTexts(info, marvola::TextDecoder());
    EXPECT_EQ(info.title, QStringLiteral("A"));
}

TEST(FlacBlocks, WhatIsOfNoUseBecomesPadding)
{
    const QByteArray list = commentList({"title=A"});
    const auto fileOf = [&list](int seek, int picture, int chapters) {
        return Info + block(seek, "seek") + block(4, list) + block(picture, "picture") +
               block(chapters | Last, "chapters") + Sound;
    };
    EXPECT_EQ(shown(fileOf(3, 6, 5)).bytes, fileOf(1, 1, 1));
}

TEST(FlacBlocks, SecondListOfCommentsBecomesPadding)
{
    const QByteArray list = commentList({"title=A"});
    EXPECT_EQ(shown(Info + block(4, list) + block(4 | Last, list)).bytes,
              Info + block(4, list) + block(1 | Last, list));
}

TEST(FlacBlocks, StartIsWhereItIsTold)
{
    const QByteArray bytes = Info + block(6 | Last, "picture") + Sound;
    EXPECT_EQ(shown("some tag" + bytes, 8).bytes, Info + block(1 | Last, "picture") + Sound);
}

TEST(FlacBlocks, EndlessBlocksEndTheFile)
{
    const QByteArray blocks = block(1, "").repeated(5000);
    const Shown all = shown(Info + blocks);
    EXPECT_LT(all.bytes.size(), blocks.size());
    EXPECT_EQ(all.bytes.size(), 4 + 38 + 1999 * 4);
}

TEST(FlacBlocks, BrokenFilesAreNoHarm)
{
    EXPECT_EQ(shown("fLaC").bytes, "fLaC");
    EXPECT_EQ(shown("something else").bytes, "something else");
    EXPECT_EQ(shown("fLaC" + QByteArray("\x04\xFF\xFF\xFF", 4)).bytes.size(), 8);
    const QByteArray cut = (Info + block(4 | Last, longList())).left(100);
    EXPECT_EQ(shown(cut).bytes.size(), 100);
}
