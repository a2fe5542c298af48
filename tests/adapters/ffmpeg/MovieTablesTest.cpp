// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MovieTables.h"

#include "MediaBytes.h"
#include "MovieBytes.h"
#include "Samples.h"

#include <gtest/gtest.h>

using marvola::MediaFile;
using marvola::MovieTables;

namespace {

struct View
{
    QByteArrayList hidden;
    qint64 end = 0;
};

View viewOf(const QByteArray &bytes)
{
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    const MovieTables tables(file, 0);
    View view;
    view.end = tables.end();
    for (const qint64 at : tables.hiddenTypes())
        view.hidden.append(bytes.mid(at, 4));
    return view;
}

const QByteArrayList AllTables = {"stts", "stsc", "stsz", "stco"};

QByteArray headerWith(const QByteArray &boxes)
{
    return box("ftyp", "isom") + box("moov", boxes);
}

} // namespace

TEST(MovieTables, HonestFilesAreSeenWhole)
{
    int count = 0;
    for (const char *name : {"card/video/clip.mp4", "card/video/silent.mp4", "card/audio/song.m4a"}) {
        const QByteArray bytes = sampleBytes(QString::fromLatin1(name));
        const View view = viewOf(bytes);
        for (const QByteArray &type : view.hidden)
            EXPECT_TRUE(type == "dref" || type == "sgpd" || type == "sbgp") << name << type.constData();
        EXPECT_EQ(view.end, bytes.size()) << name;
        count += bytes.isEmpty() ? 0 : 1;
    }
    EXPECT_EQ(count, 3);
    EXPECT_TRUE(viewOf(movieOf(movieTrack(2'000'000))).hidden.isEmpty());
}

TEST(MovieTables, MoreSamplesThanTheBoundHideAllTables)
{
    EXPECT_EQ(viewOf(movieOf(movieTrack(2'000'001))).hidden, AllTables);
    EXPECT_EQ(viewOf(movieOf(movieTrack(0xFFFFFFFF))).hidden, AllTables);
}

TEST(MovieTables, SamplesOfAllTracksAreAddedUp)
{
    EXPECT_TRUE(viewOf(movieOf(movieTrack(50'000).repeated(40))).hidden.isEmpty());
    EXPECT_EQ(viewOf(movieOf(movieTrack(50'001).repeated(40))).hidden.size(), 160);
}

TEST(MovieTables, EveryEditCountsTheSamplesAgain)
{
    const auto edits = [](quint32 count) { return box("edts", box("elst", bigEndian(0) + bigEndian(count))); };
    EXPECT_TRUE(viewOf(movieOf(edits(1) + movieTrack(1'000'000))).hidden.isEmpty());
    EXPECT_EQ(viewOf(movieOf(edits(2) + movieTrack(1'000'000))).hidden.size(), 5);
    EXPECT_EQ(viewOf(movieOf(movieTrack(1'000'000) + edits(2))).hidden.size(), 5);
    EXPECT_EQ(viewOf(movieOf(edits(0xFFFFFFFF) + movieTrack(0xFFFFFFFF))).hidden.size(), 5);
}

TEST(MovieTables, RawAudioIsHiddenWhateverItsSampleCount)
{
    EXPECT_EQ(viewOf(movieOf(movieTrack(10, 1))).hidden, AllTables);
    EXPECT_EQ(viewOf(movieOf(movieTrack(10, 0x80000000))).hidden, AllTables);
    EXPECT_TRUE(viewOf(movieOf(movieTrack(10, 2))).hidden.isEmpty());
}

TEST(MovieTables, FileEndsAtItsFirstFragment)
{
    const QByteArray header = movieOf(movieTrack(0));
    const QByteArray fragment = movieFragment(20'000'000);
    EXPECT_EQ(viewOf(header + fragment + box("mdat", "data")).end, header.size());
    EXPECT_EQ(viewOf(header + box("mdat", "data") + fragment).end, header.size() + 12);
    const View early = viewOf(fragment + header);
    EXPECT_EQ(early.hidden, QByteArrayList{"moof"}) << "a header may yet come";
    EXPECT_EQ(early.end, fragment.size() + header.size());
}

TEST(MovieTables, TablesInOddPlacesCount)
{
    const QByteArray table = box("stsz", bigEndian(0) + bigEndian(1) + bigEndian(80'000'000));
    const QByteArray handler = box("hdlr", QByteArray(20, '\0'));
    const QByteArray headers[] = {
        table,
        box("udta", table),
        box("udta", box("meta", bigEndian(0) + handler + box("ilst", table))),
        box("udta", box("meta", handler + table)),
        box("trak", box("stsd", bigEndian(0) + bigEndian(1) + box("samr", QByteArray(28, '\0') + table))),
        bigEndian(0) + "trak" + table,
        bigEndian(0x7FFFFFFF) + "trak" + table,
        bigEndian(1) + "trak" + bigEndian(0) + bigEndian(1000) + table,
    };
    for (const QByteArray &header : headers)
        EXPECT_EQ(viewOf(headerWith(header)).hidden, QByteArrayList{"stsz"}) << header.toHex().constData();
    EXPECT_EQ(viewOf(table).hidden, QByteArrayList{"stsz"}) << "even in no header at all";
    EXPECT_EQ(viewOf(box("free", box("mvhd", "head") + table)).hidden, QByteArrayList{"stsz"})
        << "a lost header is looked for in free space";
}

TEST(MovieTables, TextsThatReadLikeTypesAreNoTables)
{
    const QByteArray text = QByteArray("\0\x08\x15\xC7", 4) + "Betrunken elst stsz";
    EXPECT_TRUE(viewOf(headerWith(movieTrack(0xFFFFFFFF) + box("udta", box("\xA9nam", text)))).hidden == AllTables);
}

TEST(MovieTables, DecryptionIsNeverNeeded)
{
    EXPECT_EQ(viewOf(movieOf(box("senc", "") + box("saiz", "") + box("saio", ""))).hidden,
              (QByteArrayList{"senc", "saiz", "saio"}));
}

TEST(MovieTables, WhatIsOfNoUseIsHidden)
{
    EXPECT_EQ(viewOf(movieOf(box("dref", "") + box("sgpd", "") + box("sbgp", "") + box("sdtp", ""))).hidden,
              (QByteArrayList{"dref", "sgpd", "sbgp", "sdtp"}));
    const QByteArray handler = box("hdlr", QByteArray(20, '\0'));
    const QByteArray items = box("\xA9nam", "title") + box("covr", QByteArray(5000, 'x'));
    EXPECT_EQ(viewOf(movieOf(box("udta", box("meta", bigEndian(0) + handler + box("ilst", items))))).hidden,
              QByteArrayList{"covr"});
}

TEST(MovieTables, TextsThatNobodyReadsAreHidden)
{
    const qsizetype most = 1024 * 1024;
    for (const char *list : {"udta", "ilst"}) {
        EXPECT_TRUE(viewOf(movieOf(box(list, box("\xA9nam", QByteArray(most, 'x'))))).hidden.isEmpty());
        EXPECT_EQ(viewOf(movieOf(box(list, box("\xA9nam", QByteArray(most + 1, 'x'))))).hidden,
                  QByteArrayList{"\xA9nam"});
        EXPECT_TRUE(viewOf(movieOf(box(list, box("----", "x").repeated(2000)))).hidden.isEmpty());
        EXPECT_EQ(viewOf(movieOf(box(list, box("----", "x").repeated(2003)))).hidden, QByteArrayList(3, "----"));
    }
    EXPECT_EQ(viewOf(movieOf(box("uuid", QByteArray(most + 1, 'x')))).hidden, QByteArrayList{"uuid"});
    EXPECT_TRUE(viewOf(movieOf(box("uuid", QByteArray(most, 'x')))).hidden.isEmpty());
    EXPECT_TRUE(viewOf(movieOf(box("free", QByteArray(most + 1, 'x')))).hidden.isEmpty());
}

TEST(MovieTables, BoxesBelowTheTenthLevelAreHidden)
{
    QByteArray nested = box("stsz", bigEndian(0) + bigEndian(1) + bigEndian(80'000'000));
    for (int level = 0; level < 10; ++level)
        nested = box("udta", nested);
    EXPECT_EQ(viewOf(nested).hidden, QByteArrayList{"stsz"});
    EXPECT_EQ(viewOf(box("udta", nested)).hidden, QByteArrayList{"udta"});
}

TEST(MovieTables, TooManyBoxesAreNotReadAtAll)
{
    EXPECT_EQ(viewOf(headerWith(box("free", "").repeated(30'000))).end, 0);
    const View atTheTop = viewOf(box("free", "").repeated(30'000));
    EXPECT_EQ(atTheTop.end, 20'000 * 8) << "what comes before is fine";
}

TEST(MovieTables, BytesAtTheEndAreNoBox)
{
    EXPECT_EQ(viewOf("").end, 0);
    EXPECT_TRUE(viewOf("moov").hidden.isEmpty());
    EXPECT_TRUE(viewOf(bigEndian(7) + "moovabcdefgh").hidden.isEmpty());
    EXPECT_TRUE(viewOf(bigEndian(1) + "moov" + QByteArray(8, '\xFF')).hidden.isEmpty());
}
