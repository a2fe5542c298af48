// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Screening.h"

#include "CommentBytes.h"
#include "MovieBytes.h"
#include "OggBytes.h"
#include "TextDecoder.h"

#include <marvola/PlayerEngine.h>

#include <gtest/gtest.h>

extern "C" {
#include <libavformat/avformat.h>
}

using marvola::MediaFile;
using marvola::Screening;

namespace {

struct Seen
{
    QByteArray bytes;
    QString title;
};

Seen seen(const char *format, const QByteArray &bytes, qint64 start = 0)
{
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    Screening screening(file, start, av_find_input_format(format));
    Seen seen{QByteArray(screening.view().size(), '?'), {}};
    for (qint64 at = 0; at < seen.bytes.size();) {
        const qint64 got = screening.view().read(at, seen.bytes.data() + at, seen.bytes.size() - at);
        if (got <= 0)
            return {};
        at += got;
    }
    ClipInfo info;
    screening.addTexts(info, marvola::TextDecoder());
    seen.title = info.title;
    return seen;
}

const QByteArray LongList = commentList(QByteArrayList{"title=T"} + QByteArrayList(3000, "a=b"));

/// A file of Monkey's Audio with a seek table of so many entries and a descriptor of so many bytes.
QByteArray monkeysFile(quint32 entries, int descriptor)
{
    return "MAC " + littleEndian(3990) + littleEndian(static_cast<quint32>(descriptor)) +
           QByteArray(std::max(descriptor, 52) - 12, 'd') + QByteArray(12, 'h') + littleEndian(entries) +
           QByteArray(100, 't');
}

} // namespace

TEST(Screening, PlainStreamsAreSeenAsTheyAre)
{
    const QByteArray bytes = mp3Frames(50) + "ID3 cue idx1 keys" + QByteArray::fromHex("1C53BB6B");
    EXPECT_EQ(seen("mp3", bytes).bytes, bytes);
    EXPECT_EQ(seen("mp3", "tag" + bytes, 3).bytes, bytes);
}

TEST(Screening, EachFormatIsScreenedInItsWay)
{
    EXPECT_EQ(seen("wav", "RIFF....WAVE" + QByteArray(100, 'x') + "cue ").bytes.right(4), "skip");
    EXPECT_EQ(seen("matroska", QByteArray(100, 'x') + QByteArray::fromHex("1C53BB6B81")).bytes.right(5).toHex(),
              "1fffff0681");
    EXPECT_TRUE(seen("mov", movieOf(movieTrack(80'000'000))).bytes.contains("skip"));
    EXPECT_FALSE(seen("mov", movieOf(movieTrack(80))).bytes.contains("skip"));
    const QByteArray block = bigEndian(0x84000000U + static_cast<quint32>(LongList.size())) + LongList;
    EXPECT_EQ(seen("flac", "fLaC" + block).title, QStringLiteral("T"));
    EXPECT_EQ(seen("ogg", oggPacket(1, opusHead(), 2) + oggPacket(1, "OpusTags" + LongList)).title,
              QStringLiteral("T"));
}

TEST(Screening, SeekTablesAreShortened)
{
    for (const int descriptor : {0, 52, 60}) {
        EXPECT_EQ(seen("ape", monkeysFile(500'000, descriptor)).bytes, monkeysFile(500'000, descriptor));
        EXPECT_EQ(seen("ape", monkeysFile(500'001, descriptor)).bytes, monkeysFile(500'000, descriptor)) << descriptor;
        EXPECT_EQ(seen("ape", "tag" + monkeysFile(0xFFFFFFFF, descriptor), 3).bytes, monkeysFile(500'000, descriptor));
    }
    const auto old = [](quint32 entries) {
        return "MAC " + littleEndian(3970) + QByteArray(16, 'h') + littleEndian(entries) + QByteArray(100, 't');
    };
    EXPECT_EQ(seen("ape", old(500'000)).bytes, old(500'000));
    EXPECT_EQ(seen("ape", old(500'001)).bytes, old(500'000));
    EXPECT_EQ(seen("ape", "MAC ").bytes, "MAC ");
}
