// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

using namespace Qt::StringLiterals;

namespace {

class QueueCommand : public CliTest
{
protected:
    CliResult queue(const QStringList &arguments) const { return run(QStringList{u"queue"_s} + arguments); }
    QJsonObject shown() const { return queue({u"show"_s, u"--json"_s}).object(); }
    QStringList items() const { return itemsIn(shown()); }
    int active() const { return shown().value(u"active"_s).toInt(); }
    static QStringList itemsIn(const QJsonObject &queue)
    {
        QStringList texts;
        const QJsonArray array = queue.value(u"items"_s).toArray();
        for (const auto &item : array)
            texts.append(item.toString());
        return texts;
    }
    /// Fills the queue with links named a, b, c and so on.
    QStringList addLinks(int count) const
    {
        QStringList links;
        for (int number = 0; number < count; ++number)
            links.append(u"http://"_s + QChar(u'a' + number));
        EXPECT_EQ(queue(QStringList{u"add"_s} + links).status, 0);
        return links;
    }
    void setLimit(const QString &key, int value) const
    {
        ConfigFile file(settingsFile(), false);
        ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, key, value));
    }
    static void expectFailure(const CliResult &result, int status)
    {
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
        EXPECT_TRUE(result.errors.startsWith("marvola: ")) << result.errors.constData();
    }
};

} // namespace

TEST_F(QueueCommand, StartsEmpty)
{
    EXPECT_EQ(queue({u"show"_s}).output, "0 items, shuffle off, repeat off\n");
    EXPECT_EQ(shown(), (QJsonObject{{u"playlist"_s, QJsonValue()},
                                    {u"active"_s, QJsonValue()},
                                    {u"shuffle"_s, false},
                                    {u"repeat"_s, false},
                                    {u"items"_s, QJsonArray()}}));
    expectFailure(queue({u"next"_s}), 1);
}

TEST_F(QueueCommand, FilesAndLinksAreAddedOnceAndKeptForTheNextRun)
{
    const QString file = write(u"phone/one.mp3"_s, "x");
    const CliResult added = queue({u"add"_s, path(u"phone/../phone/one.mp3"_s), u"http://b"_s, u"http://b"_s});
    EXPECT_EQ(added.status, 0) << added.errors.constData();
    EXPECT_EQ(added.output, "2 added\n");
    EXPECT_EQ(queue({u"add"_s, u"http://b"_s}).output, "0 added\n");
    EXPECT_EQ(queue({u"show"_s}).output,
              "2 items, shuffle off, repeat off\n> 1  " + file.toUtf8() + "\n  2  http://b\n");
}

TEST_F(QueueCommand, AFileThatIsNotThereAddsNothing)
{
    expectFailure(queue({u"add"_s, u"http://a"_s, path(u"none.mp3"_s)}), 1);
    expectFailure(queue({u"add"_s, path(u"phone"_s)}), 1);
    EXPECT_EQ(items(), QStringList());
}

TEST_F(QueueCommand, ListsOfTheLibraryAreAddedWholeOrByPosition)
{
    const QString first = write(u"phone/1.wav"_s, waveFile({u"Ada"_s, u"First"_s, u"Jazz"_s}));
    const QString second = write(u"phone/2.wav"_s, waveFile({u"Ada"_s, u"Second"_s, u"Folk"_s}));
    const QString third = write(u"phone/3.wav"_s, waveFile({u"Bob"_s, u"Third"_s, u"Folk"_s}));
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    EXPECT_EQ(queue({u"add"_s, u"--genre"_s, u"Folk"_s, u"--position"_s, u"2"_s}).output, "1 added\n");
    EXPECT_EQ(items(), QStringList{third});
    EXPECT_EQ(queue({u"add"_s, u"--artist"_s, u"Ada"_s}).output, "2 added\n");
    EXPECT_EQ(items(), (QStringList{third, first, second}));
    ASSERT_EQ(queue({u"clear"_s}).status, 0);
    EXPECT_EQ(queue({u"add"_s, u"--list"_s, u"audio"_s, u"--position"_s, u"3,1"_s}).status, 0);
    EXPECT_EQ(items(), (QStringList{third, first}));
    EXPECT_EQ(queue({u"add"_s, u"--list"_s, u"video"_s}).output, "0 added\n") << "there is none";

    expectFailure(queue({u"add"_s, u"--list"_s, u"audio"_s, u"--position"_s, u"2,4"_s}), 1);
    expectFailure(queue({u"add"_s, u"--artist"_s, u"Nobody"_s}), 1);
    EXPECT_EQ(items(), (QStringList{third, first}));
}

TEST_F(QueueCommand, HistoryAndBookmarksAreAdded)
{
    ASSERT_EQ(run({u"history"_s, u"add"_s, u"http://old"_s}).status, 0);
    ASSERT_EQ(run({u"history"_s, u"add"_s, u"http://new"_s}).status, 0);
    ASSERT_EQ(run({u"bookmark"_s, u"add"_s, u"Jazz"_s, u"http://jazz"_s}).status, 0);
    EXPECT_EQ(queue({u"add"_s, u"--history"_s, u"--position"_s, u"2"_s}).status, 0);
    EXPECT_EQ(queue({u"add"_s, u"--bookmark"_s, u"Jazz"_s}).status, 0);
    EXPECT_EQ(items(), (QStringList{u"http://old"_s, u"http://jazz"_s}));
    expectFailure(queue({u"add"_s, u"--bookmark"_s, u"Folk"_s}), 1);
    EXPECT_EQ(run({u"history"_s, u"list"_s, u"--json"_s}).texts(), (QStringList{u"http://new"_s, u"http://old"_s}))
        << "it is stored along, and stays";
}

TEST_F(QueueCommand, LimitKeepsWhatFitsAndIsAFailure)
{
    addLinks(1);
    setLimit(u"MaxNumOfItem"_s, 3);
    const CliResult result = queue({u"add"_s, u"http://x"_s, u"http://y"_s, u"http://z"_s});
    expectFailure(result, 1);
    EXPECT_TRUE(result.errors.contains("MaxNumOfItem")) << result.errors.constData();
    EXPECT_EQ(result.output, "2 added\n");
    EXPECT_EQ(items(), (QStringList{u"http://a"_s, u"http://x"_s, u"http://y"_s}));
}

TEST_F(QueueCommand, ItemsMoveAndGo)
{
    addLinks(4);
    ASSERT_EQ(queue({u"play"_s, u"3"_s}).output, "http://c\n");
    EXPECT_EQ(queue({u"up"_s, u"3"_s}).status, 0);
    EXPECT_EQ(items(), (QStringList{u"http://a"_s, u"http://c"_s, u"http://b"_s, u"http://d"_s}));
    EXPECT_EQ(active(), 2) << "the same item";
    EXPECT_EQ(queue({u"down"_s, u"1"_s}).status, 0);
    EXPECT_EQ(items(), (QStringList{u"http://c"_s, u"http://a"_s, u"http://b"_s, u"http://d"_s}));
    EXPECT_EQ(active(), 1);
    EXPECT_EQ(queue({u"remove"_s, u"2"_s}).status, 0);
    EXPECT_EQ(items(), (QStringList{u"http://c"_s, u"http://b"_s, u"http://d"_s}));
    EXPECT_EQ(queue({u"up"_s, u"1"_s}).status, 0) << "already there";
    for (const QString &word : {u"up"_s, u"down"_s, u"remove"_s, u"play"_s})
        expectFailure(queue({word, u"4"_s}), 1);
    EXPECT_EQ(items().size(), 3);
}

TEST_F(QueueCommand, StepsToTheEndAndWithRepeatBeyondIt)
{
    addLinks(3);
    EXPECT_EQ(queue({u"next"_s}).output, "http://b\n");
    EXPECT_EQ(queue({u"next"_s}).output, "http://c\n");
    expectFailure(queue({u"next"_s}), 1);
    EXPECT_EQ(active(), 3);
    ASSERT_EQ(queue({u"repeat"_s, u"on"_s}).status, 0);
    EXPECT_EQ(queue({u"next"_s}).output, "http://a\n");
    EXPECT_EQ(queue({u"prev"_s}).output, "http://c\n");
    ASSERT_EQ(queue({u"repeat"_s, u"off"_s}).status, 0);
    EXPECT_EQ(queue({u"prev"_s}).output, "http://b\n");
    EXPECT_EQ(queue({u"prev"_s}).output, "http://a\n");
    expectFailure(queue({u"prev"_s}), 1);
}

TEST_F(QueueCommand, ShuffleKeepsListAndActiveItem)
{
    const QStringList links = addLinks(20);
    ASSERT_EQ(queue({u"play"_s, u"5"_s}).status, 0);
    const CliResult on = queue({u"shuffle"_s, u"on"_s, u"--json"_s});
    EXPECT_EQ(on.object().value(u"active"_s).toInt(), 5);
    EXPECT_TRUE(on.object().value(u"shuffle"_s).toBool());
    EXPECT_EQ(shown(), on.object());
    EXPECT_EQ(items(), links);
    const CliResult moved = queue({u"next"_s, u"--json"_s});
    EXPECT_EQ(moved.status, 0);
    EXPECT_NE(moved.object().value(u"active"_s).toInt(), 5);
    EXPECT_EQ(shown(), moved.object()) << "what was told is what is kept";
    expectFailure(queue({u"prev"_s}), 1);
    ASSERT_EQ(queue({u"shuffle"_s, u"off"_s}).status, 0);
    EXPECT_EQ(active(), moved.object().value(u"active"_s).toInt());
}

TEST_F(QueueCommand, RandomizedItemsKeepTheActiveOne)
{
    const QStringList links = addLinks(20);
    ASSERT_EQ(queue({u"play"_s, u"5"_s}).status, 0);
    const QJsonObject randomized = queue({u"randomize"_s, u"--json"_s}).object();
    QStringList now = itemsIn(randomized);
    EXPECT_EQ(now.value(randomized.value(u"active"_s).toInt() - 1), links.at(4));
    EXPECT_NE(now, links);
    EXPECT_EQ(shown(), randomized);
    now.sort();
    EXPECT_EQ(now, links);
}

TEST_F(QueueCommand, ClearingKeepsThePlaylistsName)
{
    addLinks(2);
    ASSERT_EQ(run({u"playlist"_s, u"save"_s, u"Jazz"_s}).status, 0);
    EXPECT_EQ(queue({u"clear"_s}).status, 0);
    EXPECT_EQ(queue({u"show"_s}).output, "0 items, shuffle off, repeat off, playlist Jazz\n");
}

TEST_F(QueueCommand, ItemsNeverReachTheTerminalRaw)
{
    const QString hostile = write(u"phone/x\n\x1b[2Jy.mp3"_s, "x");
    ASSERT_EQ(queue({u"add"_s, hostile}).status, 0);
    const CliResult people = queue({u"show"_s});
    EXPECT_TRUE(people.output.contains("/x\\n\\x1b[2Jy.mp3\n")) << people.output.constData();
    EXPECT_EQ(people.output.count('\n'), 2);
    EXPECT_EQ(items(), QStringList{hostile});
}

TEST_F(QueueCommand, MistakesAreUsageErrors)
{
    const QList<QStringList> mistakes = {
        {},
        {u"dance"_s},
        {u"add"_s},
        {u"add"_s, u"http://a"_s, u"--list"_s, u"audio"_s},
        {u"add"_s, u"--list"_s, u"artists"_s},
        {u"add"_s, u"http://a"_s, u"--position"_s, u"1"_s},
        {u"add"_s, u"--history"_s, u"--position"_s, u"0"_s},
        {u"remove"_s},
        {u"remove"_s, u"0"_s},
        {u"remove"_s, u"-1"_s},
        {u"remove"_s, u"65536"_s},
        {u"play"_s, u"first"_s},
        {u"shuffle"_s, u"maybe"_s},
        {u"repeat"_s},
    };
    for (const QStringList &arguments : mistakes) {
        SCOPED_TRACE(qPrintable(arguments.join(u' ')));
        expectFailure(queue(arguments), 2);
    }
}

TEST_F(QueueCommand, WhatCannotBeStoredIsAFailure)
{
    addLinks(2);
    ASSERT_TRUE(QFile::remove(path(u"work/.marvola.list"_s)));
    ASSERT_TRUE(QDir().mkpath(path(u"work/.marvola.list/in the way"_s)));
    expectFailure(queue({u"add"_s, u"http://x"_s}), 1);
}
