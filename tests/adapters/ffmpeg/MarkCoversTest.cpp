// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MarkCovers.h"

#include "MediaBytes.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavformat/avformat.h>
}

namespace {

QByteArray covered(const char *format, QByteArray bytes, const QByteArray &head = {})
{
    const marvola::FileView::Cover cover = marvola::markCover(av_find_input_format(format), head);
    if (cover)
        cover(0, bytes);
    return bytes;
}

QByteArray little64(quint64 value)
{
    QByteArray bytes(8, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

const QByteArray Padding(40, 'x');
constexpr quint32 Mebi = 1024 * 1024;

} // namespace

TEST(MarkCovers, FormatsWithoutMarksAreLeftAlone)
{
    for (const char *format : {"mp3", "flac", "ogg", "matroska", "amr"})
        EXPECT_FALSE(marvola::markCover(av_find_input_format(format), {})) << format;
}

TEST(MarkCovers, ListsOfTextsAreCoveredAboveAMebibyte)
{
    for (const char *format : {"wav", "avi"}) {
        const auto list = [](quint32 size) { return Padding + "LIST" + littleEndian(size) + "INFO" + Padding; };
        EXPECT_EQ(covered(format, list(Mebi)), list(Mebi));
        EXPECT_EQ(covered(format, list(Mebi + 1)), list(Mebi + 1).replace("INFO", "skip"));
        EXPECT_EQ(covered(format, list(0xFFFFFFFF)), list(0xFFFFFFFF).replace("INFO", "skip"));
        QByteArray lower = list(Mebi + 1).replace("LIST", "list");
        EXPECT_EQ(covered(format, lower), lower.replace("INFO", "skip")) << "libavformat takes either";
    }
}

TEST(MarkCovers, ListsOfFilesWithLengthsTheOtherWayAroundAreCovered)
{
    const QByteArray list = Padding + "LIST" + bigEndian(16) + "INFO" + Padding;
    EXPECT_EQ(covered("wav", list, "RIFX"), QByteArray(list).replace("INFO", "skip"));
    const QByteArray usual = Padding + "LIST" + littleEndian(16) + "INFO" + Padding;
    EXPECT_EQ(covered("wav", usual, "RIFF"), usual);
}

TEST(MarkCovers, TagsReadElsewhereAreCovered)
{
    EXPECT_EQ(covered("wav", Padding + "id3 " + Padding + "ID3 "), Padding + "skip" + Padding + "skip");
    EXPECT_EQ(covered("aiff", Padding + "ID3 " + Padding), Padding + "skip" + Padding);
    EXPECT_EQ(covered("aac", Padding + "ID3\4" + Padding), Padding + "id3\4" + Padding);
    EXPECT_EQ(covered("avi", Padding + "ID3 " + Padding), Padding + "ID3 " + Padding);
}

TEST(MarkCovers, ChaptersAndIndicesAreCovered)
{
    EXPECT_EQ(covered("wav", Padding + "cue " + Padding + "adtl"), Padding + "skip" + Padding + "skip");
    EXPECT_EQ(covered("avi", Padding + "idx1" + Padding + "indx"), Padding + "skip" + Padding + "skip");
    const QByteArray markers = QByteArray::fromHex("01CD87F451A9CF118EE600C00C205365");
    EXPECT_EQ(covered("asf", Padding + markers + Padding), Padding + "skip" + markers.mid(4) + Padding);
}

TEST(MarkCovers, KeysOfMoviesAreCoveredByTheirNumber)
{
    const auto keys = [](quint32 count) { return Padding + "keys" + bigEndian(0) + bigEndian(count) + Padding; };
    EXPECT_EQ(covered("mov", keys(4096)), keys(4096));
    EXPECT_EQ(covered("mov", keys(4097)), keys(4097).replace("keys", "skip"));
    EXPECT_EQ(covered("mov", keys(0xFFFFFFFF)), keys(0xFFFFFFFF).replace("keys", "skip"));
}

TEST(MarkCovers, StreamsOfAsfAreCoveredByTheirLength)
{
    const QByteArray identity = QByteArray::fromHex("9107DCB7B7A9CF118EE600C00C205365");
    const auto stream = [&identity](quint64 size) { return Padding + identity + little64(size) + Padding; };
    const auto hidden = [&](quint64 size) { return stream(size).replace(identity, "skip" + identity.mid(4)); };
    EXPECT_EQ(covered("asf", stream(Mebi)), stream(Mebi));
    EXPECT_EQ(covered("asf", stream(Mebi + 1)), hidden(Mebi + 1));
    EXPECT_EQ(covered("asf", stream(Q_UINT64_C(1) << 32)), hidden(Q_UINT64_C(1) << 32)) << "all of the number counts";
    EXPECT_EQ(covered("asf", stream(~Q_UINT64_C(0))), hidden(~Q_UINT64_C(0)));
}

TEST(MarkCovers, ChunksThatAreReadWholeAreCoveredAboveAMebibyte)
{
    for (const char *type : {"NAME", "AUTH", "(c) ", "ANNO"}) {
        const auto chunk = [type](quint32 size) { return Padding + type + bigEndian(size) + Padding; };
        EXPECT_EQ(covered("aiff", chunk(Mebi)), chunk(Mebi)) << type;
        EXPECT_EQ(covered("aiff", chunk(Mebi + 1)), chunk(Mebi + 1).replace(type, "skip")) << type;
    }
    for (const auto &[format, type] : {std::pair("wav", "fmt "), {"avi", "strf"}, {"avi", "strd"}, {"avi", "strn"}}) {
        const QByteArray name = type;
        const auto chunk = [&name](quint32 size) { return Padding + name + littleEndian(size) + Padding; };
        EXPECT_EQ(covered(format, chunk(Mebi)), chunk(Mebi)) << type;
        EXPECT_EQ(covered(format, chunk(Mebi + 1)), chunk(Mebi + 1).replace(name, "skip")) << type;
    }
    const auto cookie = [](quint32 high, quint32 low) {
        return Padding + "kuki" + bigEndian(high) + bigEndian(low) + Padding;
    };
    EXPECT_EQ(covered("caf", cookie(0, Mebi)), cookie(0, Mebi));
    EXPECT_EQ(covered("caf", cookie(0, Mebi + 1)), cookie(0, Mebi + 1).replace("kuki", "skip"));
    EXPECT_EQ(covered("caf", cookie(1, 0)), cookie(1, 0).replace("kuki", "skip"));
}

TEST(MarkCovers, EveryMarkIsLookedAt)
{
    const auto list = [](quint32 size) { return Padding + "LIST" + littleEndian(size) + "INFO"; };
    const QByteArray large = list(Mebi + 1);
    const QByteArray cover = QByteArray(large).replace("INFO", "skip");
    EXPECT_EQ(covered("wav", list(16) + large + list(16) + large + Padding),
              list(16) + cover + list(16) + cover + Padding);
    EXPECT_EQ(covered("wav", Padding + "cue cue "), Padding + "skipskip") << "to the last byte";
}

TEST(MarkCovers, NumberOutOfSightCounts)
{
    EXPECT_EQ(covered("wav", "INFO" + Padding), "skip" + Padding);
    EXPECT_EQ(covered("mov", Padding + "keys"), Padding + "skip");
}
