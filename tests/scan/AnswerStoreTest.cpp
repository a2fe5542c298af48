// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/AnswerStore.h"

#include "support/ClipInfos.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using marvola::AnswerStore;
using marvola::FileStamp;
using marvola::MediaKind;
using marvola::Question;

namespace {

const FileStamp stamp{1, {2, 3}, {4, 5}};
const FileStamp otherStamp{1, {2, 3}, {4, 6}};
const MediaKind both{1, 0xff};
const QString identity = u"engine 1"_s;

Question about(const QByteArray &path, int settingA = 0, int settingB = 0)
{
    return {path, settingA, settingB};
}

bool knows(AnswerStore &store, const QByteArray &path)
{
    return store.kind(about(path), stamp).has_value();
}

AnswerStore filled()
{
    AnswerStore store;
    store.remember(about("/a"), stamp, both);
    store.remember(about("/a"), stamp, oddClipInfo());
    store.remember(about("/b", -1, 0x7fffffff), otherStamp, MediaKind{0, 1});
    return store;
}

AnswerStore readBack(const QByteArray &bytes)
{
    AnswerStore store;
    store.fromBytes(bytes, identity);
    return store;
}

} // namespace

TEST(AnswerStore, GivesWhatWasRemembered)
{
    AnswerStore store = filled();
    const auto kind = store.kind(about("/a"), stamp);
    ASSERT_TRUE(kind);
    EXPECT_EQ(kind->hasAudio, 1);
    EXPECT_EQ(kind->hasVideo, 0xff);
    const auto info = store.info(about("/a"), stamp);
    ASSERT_TRUE(info);
    EXPECT_TRUE(isSame(*info, oddClipInfo()));
    EXPECT_FALSE(store.info(about("/b", -1, 0x7fffffff), otherStamp)) << "only the kind was told";
}

TEST(AnswerStore, AnswersForThisFileStateAndSettingsOnly)
{
    AnswerStore store = filled();
    EXPECT_FALSE(store.kind(about("/c"), stamp));
    EXPECT_FALSE(store.kind(about("/a"), otherStamp));
    EXPECT_FALSE(store.kind(about("/a", 1, 0), stamp));
    EXPECT_FALSE(store.kind(about("/a", 0, 1), stamp));
}

TEST(AnswerStore, ANewStateOfAFileMakesTheOldOneForgotten)
{
    AnswerStore store = filled();
    store.remember(about("/a"), otherStamp, MediaKind{0, 0});
    EXPECT_FALSE(store.info(about("/a"), otherStamp)) << "the text was that of the old one";
    EXPECT_FALSE(store.kind(about("/a"), stamp));
    EXPECT_EQ(store.count(), 2);
}

TEST(AnswerStore, ComesBackFromItsBytes)
{
    AnswerStore store = readBack(filled().toBytes(identity));
    EXPECT_EQ(store.count(), 2);
    const auto kind = store.kind(about("/a"), stamp);
    const auto info = store.info(about("/a"), stamp);
    ASSERT_TRUE(kind && info);
    EXPECT_EQ(kind->hasVideo, 0xff);
    EXPECT_TRUE(isSame(*info, oddClipInfo()));
    EXPECT_TRUE(store.kind(about("/b", -1, 0x7fffffff), otherStamp));
    EXPECT_FALSE(store.info(about("/b", -1, 0x7fffffff), otherStamp));
}

TEST(AnswerStore, BytesOfAnotherIdentityHaveNoAnswers)
{
    const QByteArray bytes = filled().toBytes(u"engine 2"_s);
    EXPECT_EQ(readBack(bytes).count(), 0);
}

TEST(AnswerStore, BytesThatAreCutOrGoOnHaveNoAnswers)
{
    const QByteArray bytes = filled().toBytes(identity);
    for (qsizetype size = 0; size < bytes.size(); ++size)
        EXPECT_EQ(readBack(bytes.first(size)).count(), 0) << size;
    EXPECT_EQ(readBack(bytes + '\0').count(), 0);
    EXPECT_EQ(readBack(bytes).count(), 2);
}

TEST(AnswerStore, SurvivesEveryChangedByte)
{
    const QByteArray bytes = filled().toBytes(identity);
    for (qsizetype at = 0; at < bytes.size(); ++at) {
        for (const char value : {'\0', '\x7f', '\xff'}) {
            QByteArray changed = bytes;
            changed[at] = value;
            AnswerStore store = readBack(changed);
            EXPECT_LE(store.count(), 2) << at;
            store.info(about("/a"), stamp);
        }
    }
}

TEST(AnswerStore, WhatWasNotAskedForTheLongestGoesFirst)
{
    AnswerStore store(AnswerStore::Limits{3, 10000, 1000});
    for (const char *path : {"/1", "/2", "/3"})
        store.remember(about(path), stamp, both);
    EXPECT_TRUE(knows(store, "/1"));
    store.remember(about("/4"), stamp, both);
    EXPECT_EQ(store.count(), 3);
    EXPECT_FALSE(knows(store, "/2"));
    EXPECT_TRUE(knows(store, "/3") && knows(store, "/1") && knows(store, "/4"));
}

TEST(AnswerStore, TheOrderOfAskingSurvivesTheFile)
{
    AnswerStore before;
    for (const char *path : {"/1", "/2"})
        before.remember(about(path), stamp, both);
    EXPECT_TRUE(knows(before, "/1"));
    AnswerStore store(AnswerStore::Limits{2, 10000, 1000});
    store.fromBytes(before.toBytes(identity), identity);
    store.remember(about("/3"), stamp, both);
    EXPECT_FALSE(knows(store, "/2"));
    EXPECT_TRUE(knows(store, "/1"));
}

TEST(AnswerStore, BytesAreBoundedToo)
{
    AnswerStore store(AnswerStore::Limits{100, 1000, 500});
    const QByteArray name(300, 'x');
    for (const char *path : {"/1", "/2", "/3"})
        store.remember(about(path + name), stamp, both);
    EXPECT_EQ(store.count(), 2);
    EXPECT_FALSE(knows(store, "/1" + name));
    EXPECT_LE(store.toBytes({}).size(), 1000 + 8) << "what is counted is what is written";
}

TEST(AnswerStore, AFileThatIsTooFullIsReadWithinTheLimits)
{
    AnswerStore store(AnswerStore::Limits{1, 10000, 1000});
    store.fromBytes(filled().toBytes(identity), identity);
    EXPECT_EQ(store.count(), 1);
}

TEST(AnswerStore, AHugeAnswerIsNotKeptAndChangesNothing)
{
    AnswerStore store;
    store.remember(about("/a"), stamp, both);
    store.setSaved();
    ClipInfo huge;
    huge.comment = QString(40000, u'x');
    store.remember(about("/a"), stamp, huge);
    EXPECT_FALSE(store.info(about("/a"), stamp));
    EXPECT_TRUE(knows(store, "/a")) << "the kind is small";
    EXPECT_FALSE(store.isChanged()) << "or the file would be written anew each time";
}

TEST(AnswerStore, OnlyWhatIsNewIsAChange)
{
    AnswerStore store = readBack(filled().toBytes(identity));
    EXPECT_FALSE(store.isChanged());
    EXPECT_TRUE(knows(store, "/a"));
    EXPECT_FALSE(store.isChanged());
    store.remember(about("/c"), stamp, both);
    EXPECT_TRUE(store.isChanged());
    store.setSaved();
    EXPECT_FALSE(store.isChanged());
}
