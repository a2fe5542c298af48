// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

using namespace Qt::StringLiterals;

namespace {

class PlaylistCommand : public CliTest
{
protected:
    CliResult playlist(const QStringList &arguments) const { return run(QStringList{u"playlist"_s} + arguments); }
    QStringList names() const { return playlist({u"list"_s, u"--json"_s}).texts(); }
    QStringList itemsOf(const QString &name) const { return playlist({u"show"_s, name, u"--json"_s}).texts(); }
    QJsonObject queue() const { return run({u"queue"_s, u"show"_s, u"--json"_s}).object(); }
    void play(const QStringList &items) const
    {
        ASSERT_EQ(run({u"queue"_s, u"clear"_s}).status, 0);
        ASSERT_EQ(run(QStringList{u"queue"_s, u"add"_s} + items).status, 0);
    }
    void save(const QString &name, const QStringList &items) const
    {
        play(items);
        ASSERT_EQ(playlist({u"save"_s, name}).status, 0);
    }
    void setLimit(const QString &key, int value) const
    {
        ConfigFile file(settingsFile(), false);
        ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, key, value));
    }
    static void expectFailure(const CliResult &result, int status, const QByteArray &words)
    {
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
        EXPECT_TRUE(result.errors.contains(words)) << result.errors.constData();
    }

    const QStringList m_two = {u"http://a"_s, u"http://b"_s};
    const QStringList m_one = {u"http://x"_s};
};

} // namespace

TEST_F(PlaylistCommand, SavedOnesAreListedShownAndLoaded)
{
    save(u"Jazz"_s, m_two);
    save(u"Folk"_s, m_one);
    EXPECT_EQ(playlist({u"list"_s}).output, "1  Jazz\n2  Folk\n");
    EXPECT_EQ(playlist({u"show"_s, u"Jazz"_s}).output, "1  http://a\n2  http://b\n");
    EXPECT_EQ(queue().value(u"playlist"_s).toString(), u"Folk"_s) << "showing one plays nothing";
    EXPECT_EQ(playlist({u"load"_s, u"Jazz"_s}).output, "2 items\n");
    EXPECT_EQ(queue().value(u"playlist"_s).toString(), u"Jazz"_s);
    EXPECT_EQ(queue().value(u"items"_s).toArray().size(), 2);
    EXPECT_EQ(queue().value(u"active"_s).toInt(), 1);
}

TEST_F(PlaylistCommand, NewStoresTheQueueBackAndEmptiesIt)
{
    save(u"Jazz"_s, m_two);
    ASSERT_EQ(run({u"queue"_s, u"remove"_s, u"1"_s}).status, 0);
    EXPECT_EQ(playlist({u"new"_s}).status, 0);
    EXPECT_TRUE(queue().value(u"playlist"_s).isNull());
    EXPECT_TRUE(queue().value(u"items"_s).toArray().isEmpty());
    EXPECT_EQ(itemsOf(u"Jazz"_s), QStringList{u"http://b"_s});
}

TEST_F(PlaylistCommand, RenamingMovesTheQueuesNameAlong)
{
    save(u"Jazz"_s, m_two);
    EXPECT_EQ(playlist({u"rename"_s, u"Jazz"_s, u"Late jazz"_s}).status, 0);
    EXPECT_EQ(names(), QStringList{u"Late jazz"_s});
    EXPECT_EQ(queue().value(u"playlist"_s).toString(), u"Late jazz"_s);
    save(u"Folk"_s, m_one);
    expectFailure(playlist({u"rename"_s, u"Folk"_s, u"Late jazz"_s}), 1, "already");
    expectFailure(playlist({u"rename"_s, u"nobody"_s, u"nobody"_s}), 1, "there is no playlist 'nobody'");
    expectFailure(playlist({u"rename"_s, u"Folk"_s, u""_s}), 2, "empty");
    EXPECT_EQ(names(), (QStringList{u"Late jazz"_s, u"Folk"_s}));
}

TEST_F(PlaylistCommand, DeletingAnUnknownNameCostsNothing)
{
    save(u"Jazz"_s, m_two);
    expectFailure(playlist({u"delete"_s, u"nobody"_s}), 1, "there is no playlist 'nobody'");
    expectFailure(playlist({u"delete"_s, u"jazz"_s}), 1, "there is no playlist 'jazz'");
    expectFailure(playlist({u"delete"_s, u""_s}), 1, "there is no playlist ''");
    EXPECT_EQ(names(), QStringList{u"Jazz"_s});
}

TEST_F(PlaylistCommand, DeletingKeepsTheQueue)
{
    save(u"Jazz"_s, m_two);
    save(u"Folk"_s, m_one);
    EXPECT_EQ(playlist({u"delete"_s, u"Jazz"_s, u"--json"_s}).texts(), QStringList{u"Folk"_s});
    EXPECT_EQ(playlist({u"delete-all"_s}).status, 0);
    EXPECT_EQ(names(), QStringList());
    EXPECT_EQ(queue().value(u"items"_s).toArray().size(), 1);
}

TEST_F(PlaylistCommand, DefaultNameIsFree)
{
    EXPECT_EQ(playlist({u"default-name"_s}).output, "playlist0\n");
    save(u"playlist0"_s, m_two);
    EXPECT_EQ(playlist({u"default-name"_s, u"--json"_s}).object().value(u"name"_s).toString(), u"playlist1"_s);
}

TEST_F(PlaylistCommand, LimitsAreToldByName)
{
    save(u"Jazz"_s, m_two);
    setLimit(u"MaxNumOfList"_s, 1);
    expectFailure(playlist({u"save"_s, u"Folk"_s}), 1, "MaxNumOfList");
    expectFailure(playlist({u"new"_s}), 1, "MaxNumOfList");
    setLimit(u"MaxNumOfList"_s, 9);
    setLimit(u"MaxNumOfItem"_s, 1);
    expectFailure(playlist({u"save"_s, u"Folk"_s}), 1, "holds only 1 of 2 items");
    EXPECT_EQ(itemsOf(u"Folk"_s), QStringList{u"http://a"_s});
    EXPECT_EQ(queue().value(u"playlist"_s).toString(), u"Jazz"_s) << "only a whole playlist gives its name";
}

TEST_F(PlaylistCommand, NewTellsWhichLimitStoppedIt)
{
    save(u"Jazz"_s, m_two);
    save(u"Folk"_s, m_two);
    setLimit(u"MaxNumOfItem"_s, 1);
    setLimit(u"MaxNumOfList"_s, 2);
    expectFailure(playlist({u"new"_s}), 1, "MaxNumOfList");
    ASSERT_EQ(playlist({u"delete"_s, u"Folk"_s}).status, 0);
    expectFailure(playlist({u"new"_s}), 1, "'Folk' now holds only 1 of 2 items");
    EXPECT_EQ(queue().value(u"items"_s).toArray().size(), 2);
}

TEST_F(PlaylistCommand, UnknownAndMissingNamesAreErrors)
{
    for (const QString &word : {u"load"_s, u"show"_s})
        expectFailure(playlist({word, u"nobody"_s}), 1, "there is no playlist 'nobody'");
    expectFailure(playlist({u"export"_s, u"nobody"_s, path(u"x.m3u8"_s)}), 1, "there is no playlist 'nobody'");
    EXPECT_FALSE(QFile::exists(path(u"x.m3u8"_s)));
    expectFailure(playlist({u"save"_s, u""_s}), 2, "empty");
    for (const QStringList &mistake : {QStringList{}, {u"save"_s}, {u"rename"_s, u"a"_s}, {u"dance"_s}, {u"export"_s}})
        expectFailure(playlist(mistake), 2, "see 'marvola --help'");
}

TEST_F(PlaylistCommand, NamesAreFoundAsTheyArePrinted)
{
    save(u"a\nb"_s, m_two);
    EXPECT_EQ(playlist({u"list"_s}).output, "1  a\\nb\n");
    EXPECT_EQ(itemsOf(u"a\\nb"_s), m_two);
    EXPECT_EQ(playlist({u"delete"_s, u"a\\nb"_s}).status, 0);
    EXPECT_EQ(names(), QStringList());
}

TEST_F(PlaylistCommand, ExportIsRelativeWithinThePlaceAndImportsAgain)
{
    const QString near = write(u"phone/music/a.mp3"_s, "x");
    const QString far = write(u"card/b.mp3"_s, "x");
    const QString odd = write(u"phone/new\nline.mp3"_s, "x");
    save(u"Jazz"_s, {near, far, odd, u"http://radio.example/歌"_s});
    const QString target = path(u"phone/lists.m3u8"_s);
    const CliResult exported = playlist({u"export"_s, u"Jazz"_s, target});
    EXPECT_EQ(exported.status, 0) << exported.errors.constData();
    EXPECT_EQ(exported.output, "Jazz: 3 items\n");
    EXPECT_EQ(exported.errors,
              "marvola: item 3 left out: it holds control characters: " + odd.toUtf8().replace("\n", "\\n") + "\n");
    EXPECT_EQ(read(u"phone/lists.m3u8"_s), "#EXTM3U\nmusic/a.mp3\n" + far.toUtf8() + "\nhttp://radio.example/歌\n");

    expectFailure(playlist({u"export"_s, u"Jazz"_s, target}), 1, "--replace");
    EXPECT_EQ(playlist({u"export"_s, u"Jazz"_s, target, u"--replace"_s}).status, 0);
    const CliResult imported = playlist({u"import"_s, target, u"--json"_s});
    EXPECT_EQ(imported.status, 0) << imported.errors.constData();
    EXPECT_EQ(imported.object().value(u"playlist"_s).toString(), u"lists"_s);
    EXPECT_EQ(imported.object().value(u"items"_s).toInt(), 3);
    EXPECT_EQ(itemsOf(u"lists"_s), (QStringList{near, far, u"http://radio.example/歌"_s}));
}

TEST_F(PlaylistCommand, ImportTellsWhatItSkippedAndLeavesTheQueue)
{
    save(u"Jazz"_s, m_two);
    write(u"phone/in.m3u"_s, "#EXTM3U\r\na.mp3\r\nb\x1b[2J.mp3\r\na.mp3\r\n");
    const CliResult people = playlist({u"import"_s, path(u"phone/in.m3u"_s)});
    EXPECT_EQ(people.status, 0);
    EXPECT_EQ(people.output, "in: 1 items\n");
    EXPECT_EQ(people.errors, "marvola: line 3 left out: it holds control characters: b\\x1b[2J.mp3\n"
                             "marvola: line 4 left out: it is in the list already: a.mp3\n");
    EXPECT_EQ(itemsOf(u"in"_s), QStringList{path(u"phone/a.mp3"_s)});
    EXPECT_EQ(queue().value(u"playlist"_s).toString(), u"Jazz"_s);
    EXPECT_EQ(queue().value(u"items"_s).toArray().size(), 2);

    expectFailure(playlist({u"import"_s, path(u"phone/in.m3u"_s)}), 1, "--replace");
    const QJsonObject json =
        playlist({u"import"_s, path(u"phone/in.m3u"_s), u"--name"_s, u"Jazz"_s, u"--replace"_s, u"--json"_s}).object();
    EXPECT_EQ(json.value(u"skippedCount"_s).toInt(), 2);
    EXPECT_EQ(json.value(u"skipped"_s).toArray().at(1).toObject(),
              (QJsonObject{{u"line"_s, 4}, {u"text"_s, u"a.mp3"_s}, {u"reason"_s, u"it is in the list already"_s}}));
    EXPECT_EQ(itemsOf(u"Jazz"_s), QStringList{path(u"phone/a.mp3"_s)});
}

TEST_F(PlaylistCommand, ImportReadsByTheCodecOfTheSettings)
{
    write(u"phone/gbk.m3u"_s, "\xb8\xe8.mp3\n");
    EXPECT_EQ(playlist({u"import"_s, path(u"phone/gbk.m3u"_s)}).status, 0);
    EXPECT_EQ(itemsOf(u"gbk"_s), QStringList{path(u"phone/歌.mp3"_s)});
    {
        ConfigFile file(settingsFile(), false);
        ASSERT_TRUE(file.writeEntry(u"MediaControlItem"_s, u"CodecName"_s, u"nonsense"_s));
    }
    expectFailure(playlist({u"import"_s, path(u"phone/gbk.m3u"_s), u"--name"_s, u"x"_s}), 1, "nonsense");
}

TEST_F(PlaylistCommand, ImportThatTheLimitCutsIsAFailure)
{
    ASSERT_EQ(names(), QStringList());
    setLimit(u"MaxNumOfItem"_s, 1);
    write(u"in.m3u"_s, "a.mp3\nb.mp3\n");
    expectFailure(playlist({u"import"_s, path(u"in.m3u"_s)}), 1, "only the first 1 of 2 items");
    EXPECT_EQ(itemsOf(u"in"_s), QStringList{path(u"a.mp3"_s)});
}

TEST_F(PlaylistCommand, ImportOfNothingMakesNoPlaylist)
{
    write(u"empty.m3u"_s, "#EXTM3U\n");
    expectFailure(playlist({u"import"_s, path(u"empty.m3u"_s)}), 1, "nothing to import");
    expectFailure(playlist({u"import"_s, path(u"none.m3u"_s)}), 1, "none.m3u");
    expectFailure(playlist({u"import"_s, path(u"phone"_s)}), 1, "no regular file");
    expectFailure(playlist({u"import"_s, u"/dev/zero"_s}), 1, "no regular file");
    EXPECT_EQ(names(), QStringList());
}

TEST_F(PlaylistCommand, WhatCannotBeStoredIsAFailure)
{
    save(u"Jazz"_s, m_two);
    ASSERT_TRUE(QFile::remove(path(u"work/.marvola.list"_s)));
    ASSERT_TRUE(QDir().mkpath(path(u"work/.marvola.list/in the way"_s)));
    expectFailure(playlist({u"save"_s, u"Folk"_s}), 1, "cannot write");
    expectFailure(playlist({u"delete-all"_s}), 1, "cannot write");
}
