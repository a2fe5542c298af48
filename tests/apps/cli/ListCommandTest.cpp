// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <QtCore/QFile>

using namespace Qt::StringLiterals;

namespace {

class ListCommand : public CliTest
{
protected:
    void SetUp() override
    {
        CliTest::SetUp();
        m_first = write(u"phone/1.wav"_s, waveFile({u"Ada"_s, u"First Light"_s, u"Jazz"_s}));
        m_second = write(u"phone/2.wav"_s, waveFile({u"Ada"_s, u"Second"_s, u"Folk"_s}));
        m_third = write(u"card/3.wav"_s, waveFile());
    }
    QStringList list(const QStringList &arguments) const
    {
        return run(QStringList{u"list"_s, u"--json"_s} + arguments).texts();
    }

    QString m_first;
    QString m_second;
    QString m_third;
};

} // namespace

TEST_F(ListCommand, EveryKindIsListed)
{
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    EXPECT_EQ(list({u"media"_s}), (QStringList{m_first, m_second, m_third}));
    EXPECT_EQ(list({u"audio"_s}), (QStringList{m_first, m_second, m_third}));
    EXPECT_EQ(list({u"video"_s}), QStringList());
    EXPECT_EQ(list({u"artists"_s}), (QStringList{u"Ada"_s, u"<Unknown>"_s}));
    EXPECT_EQ(list({u"albums"_s}), (QStringList{u"First Light"_s, u"Second"_s, u"<Unknown>"_s}));
    EXPECT_EQ(list({u"genres"_s}), (QStringList{u"Jazz"_s, u"Folk"_s, u"<Unknown>"_s}));
    EXPECT_EQ(list({u"playlists"_s}), QStringList());
}

TEST_F(ListCommand, FilesOfOneArtistAlbumOrGenre)
{
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    EXPECT_EQ(list({u"--artist"_s, u"Ada"_s}), (QStringList{m_first, m_second}));
    EXPECT_EQ(list({u"--album"_s, u"First Light"_s}), QStringList{m_first});
    EXPECT_EQ(list({u"--genre"_s, u"Folk"_s}), QStringList{m_second});
    EXPECT_EQ(list({u"--artist"_s, u"<Unknown>"_s}), QStringList{m_third});
}

TEST_F(ListCommand, LinesAreNumbered)
{
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    EXPECT_EQ(run({u"list"_s, u"artists"_s}).output, "1  Ada\n2  <Unknown>\n");
}

TEST_F(ListCommand, UnknownNameIsAnError)
{
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    const CliResult result = run({u"list"_s, u"--artist"_s, u"Nobody"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "marvola: there is no artist 'Nobody' in the index; see 'marvola list artists'\n");
}

TEST_F(ListCommand, NothingBeforeTheFirstRefresh)
{
    const CliResult result = run({u"list"_s, u"media"_s, u"--json"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.texts(), QStringList());
}

TEST_F(ListCommand, WhatToListIsNeededOnceAndKnown)
{
    const QList<QStringList> mistakes = {{u"list"_s},
                                         {u"list"_s, u"shoes"_s},
                                         {u"list"_s, u"media"_s, u"--artist"_s, u"Ada"_s},
                                         {u"list"_s, u"--genre"_s, u"Jazz"_s, u"--artist"_s, u"Ada"_s}};
    for (const QStringList &arguments : mistakes) {
        const CliResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << qPrintable(arguments.join(u' '));
        EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
    }
}

TEST_F(ListCommand, NamesAndTagsNeverReachTheTerminalRaw)
{
    const QString hostile = write(u"phone/x\n\x1b[2J\u202ey.wav"_s, waveFile({u"\x1b]0;gotcha\x07 Ada"_s, {}, {}}));
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    const CliResult files = run({u"list"_s, u"media"_s});
    EXPECT_TRUE(files.output.contains("/x\\n\\x1b[2J\\u202ey.wav\n")) << files.output.constData();
    EXPECT_EQ(files.output.count('\n'), 4);
    EXPECT_FALSE(files.output.contains('\x1b'));
    const CliResult artists = run({u"list"_s, u"artists"_s});
    EXPECT_TRUE(artists.output.contains("\\x1b]0;gotcha\\x07 Ada\n")) << artists.output.constData();
    EXPECT_FALSE(run({u"show"_s}).output.contains('\x1b'));
    EXPECT_TRUE(list({u"media"_s}).contains(hostile));
    EXPECT_EQ(list({u"--artist"_s, u"\\x1b]0;gotcha\\x07 Ada"_s}), QStringList{hostile});
}

TEST_F(ListCommand, HalfOfACharacterMakesValidJson)
{
    // The index keeps twenty units of a text, which is nineteen letters and half of the face.
    const QString cut = write(u"phone/face.wav"_s, waveFile({QString(19, u'a') + u"\U0001f600"_s, {}, {}}));
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    const QString replaced = QString(19, u'a') + QChar(QChar::ReplacementCharacter);
    EXPECT_TRUE(list({u"artists"_s}).contains(replaced));
    EXPECT_EQ(list({u"--artist"_s, replaced}), QStringList{cut});
    EXPECT_TRUE(run({u"list"_s, u"artists"_s}).output.contains("aaa\\ud83d\n"));
}

TEST_F(ListCommand, NameLongerThanTheIndexKeepsIsFound)
{
    const QString name = u"The Orchestra of the Long Names"_s;
    const QString file = write(u"phone/long.wav"_s, waveFile({name, {}, {}}));
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    EXPECT_TRUE(list({u"artists"_s}).contains(name.left(20)));
    EXPECT_EQ(list({u"--artist"_s, name}), QStringList{file});
}
