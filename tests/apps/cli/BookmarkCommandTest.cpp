// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

using namespace Qt::StringLiterals;

namespace {

class BookmarkCommand : public CliTest
{
protected:
    CliResult bookmark(const QStringList &arguments) const { return run(QStringList{u"bookmark"_s} + arguments); }
    CliResult add(const QString &name, const QString &url) const { return bookmark({u"add"_s, name, url}); }
    /// Every bookmark as "name=link".
    QStringList kept() const
    {
        QStringList result;
        const QJsonArray array = bookmark({u"list"_s, u"--json"_s}).array();
        for (const auto &element : array)
            result.append(element[u"name"_s].toString() + u'=' + element[u"url"_s].toString());
        return result;
    }
    void limitTo(int most) const
    {
        ConfigFile file(settingsFile(), false);
        EXPECT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfBookmark"_s, most));
        EXPECT_TRUE(file.flush());
    }
    static void expectOneLine(const CliResult &result, int status, const char *part)
    {
        EXPECT_EQ(result.status, status) << result.errors.constData();
        EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
        EXPECT_TRUE(result.errors.startsWith("marvola: ")) << result.errors.constData();
        EXPECT_TRUE(result.errors.contains(part)) << result.errors.constData();
    }
};

} // namespace

TEST_F(BookmarkCommand, AddedOnesAreThereInTheNextRunInOrderOfTheirCharacters)
{
    EXPECT_EQ(add(u"Bookmark2"_s, u"rtsp://b"_s).status, 0);
    EXPECT_EQ(add(u"Bookmark10"_s, u"rtsp://a"_s).status, 0);
    EXPECT_EQ(add(u"bookmark"_s, u"rtsp://c"_s).status, 0);
    EXPECT_EQ(kept(), (QStringList{u"Bookmark10=rtsp://a"_s, u"Bookmark2=rtsp://b"_s, u"bookmark=rtsp://c"_s}));
    EXPECT_EQ(bookmark({u"list"_s}).output, "  Bookmark10  rtsp://a\n"
                                            "  Bookmark2   rtsp://b\n"
                                            "  bookmark    rtsp://c\n");
}

TEST_F(BookmarkCommand, AddSaysItsStatusAsAWord)
{
    EXPECT_EQ(add(u"A"_s, u"rtsp://a"_s).output, "stored: A\n");
    const QJsonObject result = bookmark({u"add"_s, u"B"_s, u"rtsp://b"_s, u"--json"_s}).object();
    EXPECT_EQ(result[u"status"_s].toString(), u"stored"_s);
    EXPECT_EQ(result[u"name"_s].toString(), u"B"_s);
    EXPECT_EQ(result[u"url"_s].toString(), u"rtsp://b"_s);
}

TEST_F(BookmarkCommand, RenameAndRemoveTellProgramsWhatIsLeft)
{
    ASSERT_EQ(add(u"A"_s, u"rtsp://a"_s).status, 0);
    ASSERT_EQ(add(u"B"_s, u"rtsp://b"_s).status, 0);
    const QJsonArray renamed = bookmark({u"rename"_s, u"A"_s, u"C"_s, u"--json"_s}).array();
    ASSERT_EQ(renamed.size(), 2);
    EXPECT_EQ(renamed.at(1).toObject()[u"name"_s].toString(), u"C"_s);
    EXPECT_EQ(renamed.at(1).toObject()[u"url"_s].toString(), u"rtsp://a"_s);
    const QJsonArray left = bookmark({u"remove"_s, u"B"_s, u"--json"_s}).array();
    ASSERT_EQ(left.size(), 1);
    EXPECT_EQ(left.at(0).toObject()[u"name"_s].toString(), u"C"_s);
    EXPECT_TRUE(bookmark({u"remove"_s, u"C"_s}).output.isEmpty());
}

TEST_F(BookmarkCommand, ColumnsAreAlignedWhereTheLocaleDoesNotExist)
{
    ASSERT_EQ(add(u"手机"_s, u"rtsp://a"_s).status, 0);
    ASSERT_EQ(add(u"Jazz 1"_s, u"rtsp://b"_s).status, 0);
    m_environment.insert(u"LC_ALL"_s, u"xx_XX.UTF-8"_s);
    EXPECT_EQ(bookmark({u"list"_s}).output, "  Jazz 1  rtsp://b\n"
                                            "  手机    rtsp://a\n");
}

TEST_F(BookmarkCommand, SameNameReplacesTheLink)
{
    ASSERT_EQ(add(u"A"_s, u"rtsp://old"_s).status, 0);
    EXPECT_EQ(add(u"A"_s, u"rtsp://new"_s).status, 0);
    EXPECT_EQ(kept(), QStringList{u"A=rtsp://new"_s});
}

TEST_F(BookmarkCommand, AtTheLimitEvenAKnownNameIsRefused)
{
    ASSERT_EQ(add(u"A"_s, u"rtsp://a"_s).status, 0);
    limitTo(1);
    expectOneLine(add(u"A"_s, u"rtsp://new"_s), 1, "MaxNumOfBookmark in ");
    const CliResult result = bookmark({u"add"_s, u"B"_s, u"rtsp://b"_s, u"--json"_s});
    expectOneLine(result, 1, "there are 1,");
    EXPECT_EQ(result.object()[u"status"_s].toString(), u"limit-reached"_s);
    EXPECT_EQ(kept(), QStringList{u"A=rtsp://a"_s});
}

TEST_F(BookmarkCommand, BeyondTheLimitMoreAreTaken)
{
    ASSERT_EQ(add(u"A"_s, u"rtsp://a"_s).status, 0);
    ASSERT_EQ(add(u"B"_s, u"rtsp://b"_s).status, 0);
    limitTo(1);
    EXPECT_EQ(add(u"C"_s, u"rtsp://c"_s).status, 0);
    EXPECT_EQ(kept().size(), 3);
}

TEST_F(BookmarkCommand, EmptyTextsAreUsageErrors)
{
    expectOneLine(add(u""_s, u"rtsp://a"_s), 2, "empty");
    const CliResult result = bookmark({u"add"_s, u"A"_s, u""_s, u"--json"_s});
    expectOneLine(result, 2, "empty");
    EXPECT_EQ(result.object()[u"status"_s].toString(), u"empty-text"_s);
    expectOneLine(bookmark({u"rename"_s, u"A"_s, u""_s}), 2, "empty");
    EXPECT_TRUE(kept().isEmpty());
}

TEST_F(BookmarkCommand, NameOfTheCountIsRefusedBecauseTheFileCannotKeepIt)
{
    ASSERT_EQ(add(u"A"_s, u"rtsp://a"_s).status, 0);
    expectOneLine(add(u"counter"_s, u"rtsp://x"_s), 2, "counter");
    expectOneLine(bookmark({u"rename"_s, u"A"_s, u"counter"_s}), 2, "counter");
    EXPECT_EQ(kept(), QStringList{u"A=rtsp://a"_s});
}

TEST_F(BookmarkCommand, RenamedOneKeepsItsLink)
{
    ASSERT_EQ(add(u"A"_s, u"rtsp://a"_s).status, 0);
    EXPECT_EQ(bookmark({u"rename"_s, u"A"_s, u"Z"_s}).status, 0);
    EXPECT_EQ(kept(), QStringList{u"Z=rtsp://a"_s});
    EXPECT_EQ(bookmark({u"rename"_s, u"Z"_s, u"Z"_s}).status, 0);
    EXPECT_EQ(kept(), QStringList{u"Z=rtsp://a"_s});
}

TEST_F(BookmarkCommand, RefusedRenamingChangesNothing)
{
    ASSERT_EQ(add(u"A"_s, u"rtsp://a"_s).status, 0);
    ASSERT_EQ(add(u"B"_s, u"rtsp://b"_s).status, 0);
    expectOneLine(bookmark({u"rename"_s, u"A"_s, u"B"_s}), 1, "'B' already");
    expectOneLine(bookmark({u"rename"_s, u"C"_s, u"D"_s}), 1, "no bookmark 'C'");
    EXPECT_EQ(kept(), (QStringList{u"A=rtsp://a"_s, u"B=rtsp://b"_s}));
}

TEST_F(BookmarkCommand, RemovesAllThatAreNamed)
{
    for (const QString &name : {u"A"_s, u"B"_s, u"C"_s})
        ASSERT_EQ(add(name, u"rtsp://x"_s).status, 0);
    EXPECT_EQ(bookmark({u"remove"_s, u"A"_s, u"C"_s}).status, 0);
    EXPECT_EQ(kept(), QStringList{u"B=rtsp://x"_s});
}

TEST_F(BookmarkCommand, OneUnknownNameAmongSeveralRemovesNone)
{
    ASSERT_EQ(add(u"A"_s, u"rtsp://a"_s).status, 0);
    expectOneLine(bookmark({u"remove"_s, u"A"_s, u"B"_s}), 1, "no bookmark 'B'");
    EXPECT_EQ(kept(), QStringList{u"A=rtsp://a"_s});
}

TEST_F(BookmarkCommand, NameWithControlCharactersIsShownAndMeantByItsEscapes)
{
    ASSERT_EQ(add(u"a\nb\x1b[31m"_s, u"rtsp://a"_s).status, 0);
    EXPECT_EQ(bookmark({u"list"_s}).output, "  a\\nb\\x1b[31m  rtsp://a\n");
    EXPECT_EQ(bookmark({u"remove"_s, u"a\\nb\\x1b[31m"_s}).status, 0);
    EXPECT_TRUE(kept().isEmpty());
}

TEST_F(BookmarkCommand, NamesOfSubcommandsAreNamesLikeOthers)
{
    EXPECT_EQ(add(u"list"_s, u"show"_s).status, 0);
    EXPECT_EQ(kept(), QStringList{u"list=show"_s});
    EXPECT_EQ(bookmark({u"remove"_s, u"list"_s}).status, 0);
    EXPECT_TRUE(kept().isEmpty());
}

TEST_F(BookmarkCommand, DefaultNameIsTheFirstThatIsFree)
{
    EXPECT_EQ(bookmark({u"default-name"_s}).output, "Bookmark0\n");
    ASSERT_EQ(add(u"Bookmark0"_s, u"rtsp://a"_s).status, 0);
    ASSERT_EQ(add(u"Bookmark1"_s, u"rtsp://b"_s).status, 0);
    EXPECT_EQ(bookmark({u"default-name"_s}).output, "Bookmark2\n");
    EXPECT_EQ(bookmark({u"default-name"_s, u"--json"_s}).object()[u"name"_s].toString(), u"Bookmark2"_s);
}

TEST_F(BookmarkCommand, FileThatCannotBeWrittenIsTold)
{
    ASSERT_TRUE(QDir().mkpath(path(u"work/.marvola.list"_s)));
    const CliResult result = add(u"A"_s, u"rtsp://a"_s);
    expectOneLine(result, 1, QFile::encodeName(path(u"work/.marvola.list"_s)).constData());
    EXPECT_TRUE(result.output.isEmpty());
}

TEST_F(BookmarkCommand, MissingArgumentsAreUsageErrors)
{
    for (const QStringList &arguments :
         {QStringList(), QStringList{u"add"_s}, QStringList{u"add"_s, u"A"_s}, QStringList{u"rename"_s, u"A"_s},
          QStringList{u"remove"_s}, QStringList{u"add"_s, u"A"_s, u"B"_s, u"C"_s}})
        expectOneLine(bookmark(arguments), 2, "--help");
}
