// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "OggPages.h"

#include "CommentBytes.h"
#include "FileView.h"
#include "OggBytes.h"
#include "Samples.h"
#include "TextDecoder.h"

#include <marvola/PlayerEngine.h>

#include <gtest/gtest.h>

using marvola::FileView;
using marvola::MediaFile;
using marvola::OggPages;
using marvola::VorbisComments;

namespace {

struct Shown
{
    QByteArray bytes;
    QList<VorbisComments> comments;
    qint64 bytesRead = 0;
};

Shown shown(const QByteArray &bytes, qint64 start = 0)
{
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, start);
    const OggPages pages(file, start, view);
    Shown shown{QByteArray(view.size(), '?'), pages.comments(), file.bytesRead()};
    for (qint64 at = 0; at < shown.bytes.size();) {
        const qint64 got = view.read(at, shown.bytes.data() + at, shown.bytes.size() - at);
        if (got <= 0)
            return {};
        at += got;
    }
    return shown;
}

QString titleIn(const Shown &all)
{
    ClipInfo info;
    for (const VorbisComments &list : all.comments)
        list.addTexts(info, marvola::TextDecoder());
    return info.title;
}

const QByteArray Head = oggPacket(7, opusHead(), 2);
const QByteArray Data = oggPacket(7, "\xFC the first sound") + oggPacket(7, "\xFC the second sound", 4);
constexpr qsizetype MostPage = 65307;

QByteArray opusWith(const QByteArray &list)
{
    return Head + oggPacket(7, "OpusTags" + list) + Data;
}

QByteArrayList manyComments(int count)
{
    return QByteArrayList{"title=First"} + QByteArrayList(count, "a=b");
}

} // namespace

TEST(OggPages, HonestFilesAreSeenWhole)
{
    for (const char *name : {"card/audio/song.ogg", "card/audio/song.opus", "card/audio/song with cover.ogg"}) {
        const QByteArray bytes = sampleBytes(QString::fromLatin1(name));
        ASSERT_FALSE(bytes.isEmpty());
        const Shown all = shown(bytes);
        EXPECT_EQ(all.bytes, bytes) << name;
        EXPECT_TRUE(all.comments.isEmpty()) << name;
    }
}

TEST(OggPages, LongListOfCommentsBecomesOneOfNone)
{
    const Shown few = shown(opusWith(commentList(manyComments(900))));
    EXPECT_EQ(few.bytes, opusWith(commentList(manyComments(900))));
    EXPECT_TRUE(few.comments.isEmpty());

    const QByteArray list = commentList(manyComments(5000));
    const Shown many = shown(opusWith(list));
    QByteArray changed = list;
    changed.replace(4 + 7, 4, QByteArray(4, '\0'));
    EXPECT_EQ(many.bytes, opusWith(changed)) << "and the sums are right";
    EXPECT_EQ(titleIn(many), QStringLiteral("First"));
}

TEST(OggPages, CommentsAreFoundInEveryKindOfStream)
{
    const QByteArray list = commentList(manyComments(3000));
    const QByteArray packets[] = {"\x03vorbis" + list,
                                  "\x81theora" + list,
                                  "OVP80\x02 " + list,
                                  "\x04" + QByteArray(3, '\0') + list,
                                  "\x84" + QByteArray(3, '\0') + list,
                                  list};
    for (const QByteArray &packet : packets) {
        const Shown all = shown(oggPacket(1, "some kind of head", 2) + oggPacket(1, packet) + oggPacket(1, "data"));
        EXPECT_EQ(titleIn(all), QStringLiteral("First")) << packet.left(5).toHex().constData();
        EXPECT_EQ(all.bytes.count(QByteArray(4, '\0') + littleEndian(11) + "title=First"), 1);
    }
}

TEST(OggPages, CommentsOfAllStreamsAreAddedUp)
{
    QByteArray bytes;
    for (quint32 serial = 0; serial < 10; ++serial)
        bytes += oggPacket(serial, "a head", 2) + oggPacket(serial, commentList(manyComments(900)));
    EXPECT_EQ(shown(bytes).comments.size(), 8) << "two are within what one file may have";
}

TEST(OggPages, MiddleOfALongPacketIsLeftOut)
{
    const QByteArray picture = "METADATA_BLOCK_PICTURE=" + QByteArray(1'000'000, 'A');
    const QByteArrayList pages = oggPages(7, "OpusTags" + commentList({picture, "title=Behind"}));
    ASSERT_EQ(pages.size(), 16);
    const Shown all = shown(Head + pages.join() + Data);
    EXPECT_EQ(all.bytes.size(), Head.size() + pages.first().size() + pages.last().size() + Data.size());
    EXPECT_TRUE(all.bytes.endsWith(pages.last() + Data));
    EXPECT_EQ(titleIn(all), QStringLiteral("Behind"));
    EXPECT_LT(all.bytesRead, 500'000) << "nor is it read";
}

TEST(OggPages, PacketsOfSmallPagesAreLeftOutToo)
{
    const QByteArray list = commentList({"title=Small", "b=" + QByteArray(500'000, 'x')});
    const QByteArrayList pages = oggPages(7, "OpusTags" + list, 0, 17);
    const Shown all = shown(Head + pages.join() + Data);
    EXPECT_EQ(all.bytes.size(), Head.size() + pages.first().size() + pages.last().size() + Data.size());
    EXPECT_EQ(titleIn(all), QStringLiteral("Small"));
}

TEST(OggPages, LongPacketWithoutAnEndIsLeftOut)
{
    QByteArrayList pages = oggPages(7, "OpusTags" + commentList({"a=" + QByteArray(2'000'000, 'x')}));
    pages.removeLast();
    const Shown all = shown(Head + pages.join());
    EXPECT_LT(all.bytes.size(), 2 * MostPage + Head.size());
}

TEST(OggPages, OnlyTheStartOfTheDataAndTheLastPageAreSeen)
{
    const QByteArray sound = oggPage(7, QByteArray(40, '\xC8'), QByteArray(40 * 200, 's'));
    const QByteArray start = Head + oggPacket(7, "OpusTags" + commentList({"title=A"}));
    const QByteArray bytes = start + sound.repeated(100);
    const Shown all = shown(bytes);
    ASSERT_EQ(all.bytes.size(), bytes.size());
    const qsizetype from = all.bytes.indexOf(QByteArray(1000, '\0'));
    EXPECT_GE(from, start.size() + 64 * 1024);
    EXPECT_LE(from, start.size() + 64 * 1024 + sound.size());
    EXPECT_EQ(all.bytes.left(from), bytes.left(from));
    EXPECT_EQ(all.bytes.right(MostPage), bytes.right(MostPage));
    const QByteArray middle = all.bytes.mid(from, bytes.size() - MostPage - from);
    EXPECT_EQ(middle.count('\0'), middle.size());
}

TEST(OggPages, EndOfTheHeadersIsKnownByTheKindOfStream)
{
    struct Row
    {
        QByteArray head;
        int headers;
    };
    const Row rows[] = {
        {"\1vorbis head", 3}, {"\x80theora head", 3}, {"OpusHead", 2}, {"Speex   head", 3}, {"OVP80 head", 2}};
    const QByteArray sound = oggPage(1, QByteArray(200, '\x64'), QByteArray(200 * 100, 's'));
    for (const Row &row : rows) {
        QByteArray start = oggPacket(1, row.head, 2);
        for (int header = 1; header < row.headers; ++header)
            start += oggPacket(1, "\x07 header");
        const Shown all = shown(start + sound.repeated(50));
        const qsizetype from = all.bytes.indexOf(QByteArray(1000, '\0'));
        EXPECT_GE(from, start.size() + 64 * 1024) << row.head.constData();
        EXPECT_LE(from, start.size() + 64 * 1024 + sound.size()) << row.head.constData();
    }
    const QByteArray flac = oggPacket(1,
                                      "\x7F"
                                      "FLAC head",
                                      2) +
                            oggPacket(1, "\x01 more").repeated(20);
    const Shown all = shown(flac + oggPacket(1, "\xFF\xF8 sound") + sound.repeated(50));
    EXPECT_GE(all.bytes.indexOf(QByteArray(1000, '\0')), flac.size() + 64 * 1024);
}

TEST(OggPages, HeadersHaveAMebibyte)
{
    const QByteArray page = oggPacket(1, "\x02" + QByteArray(60'000, 'x'));
    const Shown all = shown(oggPacket(1, "nobody knows this kind", 2) + page.repeated(100));
    const qsizetype from = all.bytes.indexOf(QByteArray(1000, '\0'));
    EXPECT_GT(from, 1024 * 1024);
    EXPECT_LT(from, 1024 * 1024 + 2 * page.size());
}

TEST(OggPages, PageWithAWrongSumIsTheLast)
{
    QByteArray wrong = oggPacket(7, "OpusTags" + commentList({"title=A"}));
    wrong.back() = '?';
    const QByteArray rest = oggPacket(7, QByteArray(60'000, 'x')).repeated(3);
    const Shown all = shown(Head + wrong + rest);
    EXPECT_TRUE(all.bytes.startsWith(Head));
    EXPECT_EQ(all.bytes.mid(Head.size(), 1000), QByteArray(1000, '\0'));
}

TEST(OggPages, SixtyFourStreamsAreSeen)
{
    QByteArray bytes;
    for (quint32 serial = 0; serial < 100; ++serial)
        bytes += oggPacket(serial, QByteArray(2000, 'x'), 2);
    const qsizetype page = bytes.size() / 100;
    const Shown all = shown(bytes);
    EXPECT_EQ(all.bytes.left(64 * page), bytes.left(64 * page));
    EXPECT_EQ(all.bytes.mid(64 * page, 1000), QByteArray(1000, '\0'));
}

TEST(OggPages, FirstPageIsLookedFor)
{
    const QByteArray list = commentList(manyComments(5000));
    EXPECT_EQ(titleIn(shown("some junk" + opusWith(list))), QStringLiteral("First"));
    EXPECT_EQ(titleIn(shown("some tag" + opusWith(list), 8)), QStringLiteral("First"));
}

TEST(OggPages, PacketGoesOnWhateverThePageSays)
{
    // As libavformat has it: only where there is no start of a packet does it matter whether one is continued.
    QByteArrayList pages = oggPages(7, "OpusTags" + commentList(manyComments(30'000)));
    ASSERT_GT(pages.size(), 2);
    pages[1] = oggPage(7, QByteArray(255, '\xFF'), pages.at(1).mid(27 + 255), 0);
    EXPECT_EQ(titleIn(shown(Head + pages.join() + Data)), QStringLiteral("First"));
}

TEST(OggPages, NumberOfCommentsInTwoPagesIsNotTouched)
{
    const QByteArray packet = "OpusTags" + littleEndian(65011) + QByteArray(65011, 'v');
    ASSERT_EQ(packet.size(), 255 * 255 - 2);
    const QByteArray list = littleEndian(1'000'000) + (littleEndian(3) + "a=b").repeated(5000);
    const QByteArrayList pages = oggPages(7, packet + list);
    ASSERT_EQ(pages.size(), 2);
    const Shown all = shown(Head + pages.join() + Data.repeated(1000));
    EXPECT_TRUE(all.bytes.startsWith(Head + pages.first()));
    EXPECT_EQ(all.bytes.mid(Head.size() + pages.first().size(), 1000), QByteArray(1000, '\0')) << "the file ends there";
}

TEST(OggPages, BrokenFilesAreNoHarm)
{
    const QByteArray whole = opusWith(commentList(manyComments(5000)));
    for (qsizetype size = 0; size < whole.size(); size = size * 5 / 4 + 1)
        EXPECT_EQ(shown(whole.left(size)).bytes.size(), size);
    EXPECT_EQ(shown("no Ogg at all").bytes, "no Ogg at all");
}
