// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MatroskaElements.h"

#include "FileView.h"
#include "MediaBytes.h"
#include "Samples.h"

#include <QtCore/QSet>

#include <gtest/gtest.h>

using marvola::FileView;
using marvola::MatroskaElements;
using marvola::MediaFile;

namespace {

/// How an identity that nobody knows starts.
const QByteArray Covered = QByteArray::fromHex("1FFFFF");

/// An element with its length in eight bytes.
QByteArray element(const char *identity, const QByteArray &content)
{
    return QByteArray::fromHex(identity) + QByteArray(1, '\1') + QByteArray(3, '\0') +
           bigEndian(static_cast<quint32>(content.size())) + content;
}

constexpr const char Info[] = "1549A966";
constexpr const char Tracks[] = "1654AE6B";
constexpr const char Tags[] = "1254C367";
constexpr const char SeekHead[] = "114D9B74";

QByteArray track(const char *codec = "A_VORBIS", const QByteArray &more = {})
{
    return element("AE", element("D7", "\1") + element("86", codec) + more);
}

/// The identities of the elements of \a parts, which follow one another, that can be seen: the first four bytes of
/// each.
QList<bool> seen(const QByteArrayList &parts)
{
    const FileOf source(parts.join());
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 0);
    MatroskaElements elements(file, view);
    view.setCover([&elements](qint64 offset, QByteArray &window) { elements.cover(offset, window); },
                  MatroskaElements::Reach);
    QList<bool> seen;
    qint64 at = 0;
    for (const QByteArray &part : parts) {
        QByteArray bytes(part.size(), '?');
        for (qint64 done = 0; done < bytes.size();) {
            const qint64 got = view.read(at + done, bytes.data() + done, std::min<qint64>(bytes.size() - done, 1000));
            if (got <= 0)
                return {};
            done += got;
        }
        seen.append(bytes.left(4) == part.left(4));
        EXPECT_EQ(bytes.left(3), seen.last() ? part.left(3) : Covered);
        const QByteArray rest = bytes.mid(4).replace(QByteArray::fromHex("7FFE"), QByteArray::fromHex("6D80"));
        EXPECT_EQ(rest, part.mid(4)) << "nothing else changes, but encodings";
        at += part.size();
    }
    return seen;
}

bool isSeen(const QByteArray &part)
{
    return seen({part}) == QList<bool>{true};
}

/// The encodings of a track, compressed by \a algorithm.
QByteArray encodings(const QByteArray &algorithm)
{
    return element("6D80", element("6240", element("5034", element("4254", algorithm))));
}

/// How many of the \a encodings of one track can be seen.
qsizetype encodingsSeen(const QByteArray &encodings)
{
    const QByteArray bytes = element(Tracks, track("S_TEXT/UTF8", encodings));
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 0);
    MatroskaElements elements(file, view);
    view.setCover([&elements](qint64 offset, QByteArray &window) { elements.cover(offset, window); },
                  MatroskaElements::Reach);
    QByteArray shown(bytes.size(), '?');
    EXPECT_EQ(view.read(0, shown.data(), shown.size()), shown.size());
    EXPECT_EQ(shown.left(4), bytes.left(4));
    EXPECT_EQ(shown.count(QByteArray::fromHex("6D80")) + shown.count(QByteArray::fromHex("7FFE")), 1);
    return shown.count(QByteArray::fromHex("6D80"));
}

QByteArray simpleTag(const QByteArray &inside)
{
    return element("67C8", inside);
}

QByteArray tags(const QByteArray &simpleTags)
{
    return element(Tags, element("7373", simpleTags));
}

} // namespace

TEST(MatroskaElements, HonestFilesKeepWhatCounts)
{
    for (const char *name : {"card/video/clip.mkv", "card/video/clip.webm"}) {
        const QByteArray bytes = sampleBytes(QString::fromLatin1(name));
        ASSERT_FALSE(bytes.isEmpty());
        const FileOf source(bytes);
        MediaFile file(source.path(), AmpleBudget);
        FileView view(file, 0);
        MatroskaElements elements(file, view);
        QByteArray window = bytes;
        elements.cover(0, window);
        int count = 0;
        for (const char *identity : {Info, Tracks, Tags, SeekHead}) {
            // References have the identities in them too.
            for (qsizetype at = bytes.indexOf(QByteArray::fromHex(identity)); at >= 0;
                 at = bytes.indexOf(QByteArray::fromHex(identity), at + 1)) {
                const bool isReference = bytes.mid(at - 3, 3) == QByteArray::fromHex("53AB84");
                EXPECT_TRUE(isReference || window.mid(at, 4) == bytes.mid(at, 4)) << name << identity;
                count += isReference ? 0 : 1;
            }
        }
        EXPECT_EQ(count, 4) << name;
        EXPECT_FALSE(window.contains(QByteArray::fromHex("1C53BB6B"))) << "cues serve seeking";
    }
}

TEST(MatroskaElements, WhatIsOfNoUseIsCovered)
{
    EXPECT_EQ(seen({element("1043A770", "chapters"), element("1941A469", "attachments"), element("1C53BB6B", "cues"),
                    element(Info, "")}),
              (QList<bool>{false, false, false, true}));
}

TEST(MatroskaElements, SixtyFourTracksAreSeen)
{
    EXPECT_TRUE(isSeen(element(Tracks, track().repeated(64))));
    EXPECT_FALSE(isSeen(element(Tracks, track().repeated(65))));
    EXPECT_EQ(
        seen({element(Tracks, track().repeated(40)), element(Tracks, track().repeated(24)), element(Tracks, track())}),
        (QList<bool>{true, true, false}))
        << "of all elements together";
    EXPECT_FALSE(isSeen(element(Tracks, QByteArray::fromHex("AE80").repeated(100)))) << "empty ones count";
}

TEST(MatroskaElements, LengthsAreBounded)
{
    const auto padded = [](const char *identity, qsizetype size) {
        return element(identity, element("EC", QByteArray(size - 9, 'x')));
    };
    EXPECT_TRUE(isSeen(padded(Tracks, 512 * 1024)));
    EXPECT_FALSE(isSeen(padded(Tracks, 512 * 1024 + 1)));
    EXPECT_TRUE(isSeen(padded(Tags, 1024 * 1024)));
    EXPECT_FALSE(isSeen(padded(Tags, 1024 * 1024 + 1)));
    EXPECT_TRUE(isSeen(padded(Info, 1024 * 1024)));
    EXPECT_FALSE(isSeen(padded(Info, 1024 * 1024 + 1)));
    EXPECT_TRUE(isSeen(padded(SeekHead, 16 * 1024)));
    EXPECT_FALSE(isSeen(padded(SeekHead, 16 * 1024 + 1)));
}

TEST(MatroskaElements, UnknownLengthsAreCovered)
{
    for (const char *length : {"FF", "7FFF", "01FFFFFFFFFFFFFF"}) {
        for (const char *identity : {Tracks, Tags, Info, SeekHead})
            EXPECT_FALSE(isSeen(QByteArray::fromHex(identity) + QByteArray::fromHex(length) + track())) << length;
    }
    EXPECT_FALSE(isSeen(element(Tracks, QByteArray::fromHex("AEFF") + track())));
}

TEST(MatroskaElements, BrokenContentIsCovered)
{
    const char *const broken[] = {"00", "AE", "AE00", "AE81", "AE82D7", "AE82D781", "AE83D78101FF", "0FAE80"};
    for (const char *content : broken)
        EXPECT_FALSE(isSeen(element(Tracks, QByteArray::fromHex(content)))) << content;
    EXPECT_FALSE(isSeen(element(Tags, QByteArray::fromHex("737381"))));
    EXPECT_FALSE(isSeen(tags(QByteArray::fromHex("67C885"))));
    EXPECT_FALSE(isSeen(element(Tracks, track()).chopped(1))) << "cut off";
}

TEST(MatroskaElements, TagsCostByNumberAndByLength)
{
    EXPECT_TRUE(isSeen(tags(simpleTag("").repeated(1000))));
    EXPECT_FALSE(isSeen(tags(simpleTag("").repeated(3000))));
    EXPECT_FALSE(isSeen(element(Tags, element("7373", "").repeated(3000))));
    EXPECT_EQ(seen({tags(simpleTag("").repeated(1000)), tags(simpleTag("").repeated(900)),
                    tags(simpleTag("").repeated(500))}),
              (QList<bool>{true, true, false}))
        << "of all elements together";
}

TEST(MatroskaElements, TagsWithinTagsCostTwiceForEachLevel)
{
    QByteArray inside = simpleTag("").repeated(100);
    for (int level = 0; level < 3; ++level)
        inside = simpleTag(inside);
    EXPECT_TRUE(isSeen(tags(inside)));
    for (int level = 0; level < 3; ++level)
        inside = simpleTag(inside);
    EXPECT_FALSE(isSeen(tags(inside))) << "sixty-four times as many names";
    inside.clear();
    for (int level = 0; level < 20; ++level)
        inside = simpleTag(inside);
    EXPECT_FALSE(isSeen(tags(inside)));
}

TEST(MatroskaElements, CommentsOfFlacTracksAreBounded)
{
    EXPECT_TRUE(isSeen(element(Tracks, track("A_FLAC", element("63A2", QByteArray(16 * 1024, 'x'))))));
    EXPECT_FALSE(isSeen(element(Tracks, track("A_FLAC", element("63A2", QByteArray(16 * 1024 + 1, 'x'))))));
    EXPECT_FALSE(isSeen(element(Tracks, track("A_FLAC", encodings("\3"))))) << "what was stripped off is of any size";
    EXPECT_TRUE(isSeen(element(Tracks, track("A_FLAC", encodings("\1"))))) << "it is not unpacked";
    EXPECT_TRUE(isSeen(element(Tracks, track("A_VORBIS", element("63A2", QByteArray(100 * 1024, 'x'))))));
}

TEST(MatroskaElements, TracksAreNotUnpacked)
{
    const QByteArray stripped = encodings("\3");
    const QByteArray compression = element("5034", element("4254", "\3") + element("4255", "start"));
    EXPECT_EQ(encodingsSeen(stripped), 1);
    EXPECT_EQ(encodingsSeen(element("6D80", element("6240", element("5032", "\1") + compression))), 1);
    const QByteArray packed[] = {
        encodings(QByteArray(1, '\0')),
        encodings("\1"),
        encodings("\2"),
        element("6D80", ""),
        element("6D80", element("6240", "")),
        element("6D80", element("6240", element("5034", ""))),
        element("6D80", element("6240", element("5034", element("4255", "\3")))),
        element("6D80", element("6240", compression) + element("6240", element("5034", element("4254", "\1")))),
        element("6D80", element("6240", compression + element("5034", element("4254", "\1")))),
        element("6D80", element("6240", element("5034", element("4254", "\3") + element("4254", "\1")))),
        element("6D80",
                element("6240", element("5034", element("4254", "\3") + element("4255", "") + element("4254", "\1")))),
        element("6D80", element("6240", element("5034", QByteArray("\x42\x54\x81\x03\xFF")))),
    };
    for (const QByteArray &each : packed)
        EXPECT_EQ(encodingsSeen(each), 0) << each.toHex().constData();
    EXPECT_TRUE(isSeen(element(Tracks, track("S_TEXT/UTF8", element("6D80", "").repeated(64)))));
    EXPECT_FALSE(isSeen(element(Tracks, track("S_TEXT/UTF8", element("6D80", "").repeated(65)))));
}

TEST(MatroskaElements, EndlessElementsAreCovered)
{
    const QList<bool> all = seen(QByteArrayList(100, element(Info, "")));
    ASSERT_EQ(all.size(), 100);
    EXPECT_EQ(all.count(true), 64);
    EXPECT_TRUE(all.first());
}

TEST(MatroskaElements, EveryReadGivesTheSame)
{
    const QByteArray bytes = element(Tracks, track().repeated(40));
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 0);
    MatroskaElements elements(file, view);
    for (int round = 0; round < 3; ++round) {
        QByteArray window = bytes;
        elements.cover(0, window);
        EXPECT_EQ(window, bytes) << "tracks are not counted twice";
    }
}

TEST(MatroskaElements, ElementsThatAreNotLetThroughDoNotCount)
{
    const QByteArray broken = element(Tracks, track().repeated(60) + "\xFF");
    EXPECT_EQ(seen({broken, element(Tracks, track().repeated(64))}), (QList<bool>{false, true}));
    const QByteArray brokenTags = element(Tags, element("7373", simpleTag("").repeated(1900)) + "\xFF");
    EXPECT_EQ(seen({brokenTags, tags(simpleTag("").repeated(1900))}), (QList<bool>{false, true}));
}

TEST(MatroskaElements, CoveredIdentitiesStayDifferent)
{
    QByteArray window = QByteArray::fromHex("1043A77080"
                                            "1941A46980"
                                            "1C53BB6B80"
                                            "1654AE6BFF"
                                            "1254C367FF"
                                            "1043A77080");
    const FileOf source(window);
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 0);
    MatroskaElements(file, view).cover(0, window);
    QSet<QByteArray> identities;
    for (qsizetype at = 0; at < window.size(); at += 5)
        identities.insert(window.mid(at, 4));
    EXPECT_EQ(identities.size(), 5) << "two are the same";
    EXPECT_EQ(window.mid(0, 4), window.mid(25, 4));
}
