// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "M3uText.h"

#include <gtest/gtest.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

const QString Folder = u"/card/lists"_s;

QStringList itemsOf(const QString &text)
{
    return parseM3u(text, Folder).items;
}

/// The reason why the one line is left out; null when it is not.
QString reasonFor(const QString &line)
{
    const M3uEntries entries = parseM3u(line, Folder);
    EXPECT_EQ(entries.items.size() + entries.skippedCount, 1) << qPrintable(line);
    return entries.skipped.isEmpty() ? QString() : entries.skipped.constFirst().reason;
}

QByteArray written(const QStringList &items, const QStringList &roots = {u"/card"_s, u"/phone"_s})
{
    return formatM3u(items, Folder, roots).bytes;
}

} // namespace

TEST(M3uParse, CommentsAndBlankLinesAreNoEntries)
{
    const M3uEntries entries = parseM3u(u"#EXTM3U\n#EXTINF:12,Some song\n/a.mp3\n\n   \n# note\n/b.mp3\n"_s, Folder);
    EXPECT_EQ(entries.items, (QStringList{u"/a.mp3"_s, u"/b.mp3"_s}));
    EXPECT_EQ(entries.skippedCount, 0);
}

TEST(M3uParse, LinesEndWithOrWithoutCarriageReturnAndTheLastMayHaveNoEnd)
{
    EXPECT_EQ(itemsOf(u"/a.mp3\r\n/b.mp3\n/c.mp3"_s), (QStringList{u"/a.mp3"_s, u"/b.mp3"_s, u"/c.mp3"_s}));
    EXPECT_EQ(itemsOf(QString()), QStringList());
    EXPECT_EQ(itemsOf(u"\r\n\r\n"_s), QStringList());
}

TEST(M3uParse, RelativePathsStartInTheFilesFolder)
{
    EXPECT_EQ(itemsOf(u"a.mp3\n./b.mp3\n../music/c.mp3\nd/e.mp3\n./#1.mp3\n../../../../up.mp3"_s),
              (QStringList{u"/card/lists/a.mp3"_s, u"/card/lists/b.mp3"_s, u"/card/music/c.mp3"_s,
                           u"/card/lists/d/e.mp3"_s, u"/card/lists/#1.mp3"_s, u"/up.mp3"_s}));
    EXPECT_EQ(parseM3u(u"a.mp3"_s, u"/"_s).items, QStringList{u"/a.mp3"_s});
}

TEST(M3uParse, BlanksBelongToTheName)
{
    EXPECT_EQ(itemsOf(u" a b .mp3 "_s), QStringList{u"/card/lists/ a b .mp3 "_s});
}

TEST(M3uParse, LinksStayAsTheyAre)
{
    const QStringList links = {u"http://radio.example/a%20b?x=1#y"_s, u"rtsp://a"_s, u"x-y+z.1://a"_s};
    EXPECT_EQ(itemsOf(links.join(u'\n')), links);
}

TEST(M3uParse, LinksToFilesBecomePaths)
{
    EXPECT_EQ(itemsOf(u"file:///music/a%20b.mp3\nFILE:///c.mp3"_s), (QStringList{u"/music/a b.mp3"_s, u"/c.mp3"_s}));
}

TEST(M3uParse, WhatWouldInjectALineIsLeftOut)
{
    for (const QString &line :
         {u"a\x1b[2J.mp3"_s, u"a\rb.mp3"_s, u"a\0b"_s, u"a\u2028b"_s, u"a\u2029b"_s, u"a\u0085b"_s, u"a\x7f"_s})
        EXPECT_EQ(reasonFor(line), u"it holds control characters"_s);
    EXPECT_EQ(reasonFor(u"file:///a%0Ab.mp3"_s), u"it is no link to a file of this device"_s);
    EXPECT_EQ(reasonFor(u"file:///a%1B.mp3"_s), u"it is no link to a file of this device"_s);
    EXPECT_TRUE(reasonFor(u"a\tb.mp3"_s).isNull());
}

TEST(M3uParse, WhatIsNoTextIsLeftOut)
{
    EXPECT_EQ(reasonFor(u"a\ufffd.mp3"_s), u"it holds bytes that are no text"_s);
    EXPECT_EQ(reasonFor(u"a"_s + QChar(0xd83d) + u".mp3"_s), u"it holds bytes that are no text"_s);
}

TEST(M3uParse, PathsOfAnotherSystemAreLeftOut)
{
    EXPECT_EQ(reasonFor(u"C:\\Music\\a.mp3"_s), u"it is a path of another system"_s);
    EXPECT_EQ(reasonFor(u"d:/a.mp3"_s), u"it is a path of another system"_s);
    EXPECT_TRUE(reasonFor(u"c://a"_s).isNull()) << "a link with a short scheme";
    EXPECT_TRUE(reasonFor(u"C:a.mp3"_s).isNull());
}

TEST(M3uParse, AnItemIsTakenOnce)
{
    const M3uEntries entries = parseM3u(u"a.mp3\n/card/lists/a.mp3\n./a.mp3\nA.mp3\n"_s, Folder);
    EXPECT_EQ(entries.items, (QStringList{u"/card/lists/a.mp3"_s, u"/card/lists/A.mp3"_s}));
    ASSERT_EQ(entries.skippedCount, 2);
    EXPECT_EQ(entries.skipped.at(0).number, 2);
    EXPECT_EQ(entries.skipped.at(0).text, u"/card/lists/a.mp3"_s);
    EXPECT_EQ(entries.skipped.at(0).reason, u"it is in the list already"_s);
    EXPECT_EQ(entries.skipped.at(1).number, 3);
}

TEST(M3uParse, NumbersCountEveryLine)
{
    const M3uEntries entries = parseM3u(u"#EXTM3U\n\na.mp3\nb\x1b\n"_s, Folder);
    ASSERT_EQ(entries.skipped.size(), 1);
    EXPECT_EQ(entries.skipped.at(0).number, 4);
}

TEST(M3uParse, EntriesAndReportsAreBounded)
{
    QString text;
    for (qsizetype number = 0; number < M3uEntries::MaxItems + M3uEntries::MaxReports + 10; ++number)
        text += QString::number(number) + u'\n';
    const M3uEntries entries = parseM3u(text, Folder);
    EXPECT_EQ(entries.items.size(), M3uEntries::MaxItems);
    EXPECT_EQ(entries.items.constLast(), u"/card/lists/65534"_s);
    EXPECT_EQ(entries.skippedCount, M3uEntries::MaxReports + 10);
    EXPECT_EQ(entries.skipped.size(), M3uEntries::MaxReports);
    EXPECT_EQ(entries.skipped.constFirst().reason, u"the list is full"_s);
    EXPECT_LT(parseM3u(QString(100'000, u'\x1b'), Folder).skipped.constFirst().text.size(), 300);
}

TEST(M3uDecode, ByteOrderMarkDecides)
{
    EXPECT_EQ(decodeM3u("\xef\xbb\xbf\xe6\xad\x8c", u"GBK"_s), u"歌"_s);
    EXPECT_EQ(decodeM3u(QByteArray("\xff\xfe\x4c\x6b", 4), u"GBK"_s), u"歌"_s);
    EXPECT_EQ(decodeM3u(QByteArray("\xfe\xff\x6b\x4c", 4), u"GBK"_s), u"歌"_s);
}

TEST(M3uDecode, ValidUtf8IsUtf8)
{
    EXPECT_EQ(decodeM3u("\xe6\xad\x8c.mp3", u"GBK"_s), u"歌.mp3"_s);
    EXPECT_EQ(decodeM3u(QByteArray(), u"GBK"_s), QString());
}

TEST(M3uDecode, AllElseIsReadByTheCodec)
{
    EXPECT_EQ(decodeM3u("\xb8\xe8.mp3\n", u"GBK"_s), u"歌.mp3\n"_s);
    EXPECT_EQ(decodeM3u("caf\xe9", u"ISO-8859-1"_s), u"café"_s);
    EXPECT_FALSE(decodeM3u("caf\xe9", u"no such codec"_s));
    EXPECT_FALSE(decodeM3u("caf\xe9", QString()));
    EXPECT_TRUE(decodeM3u("plain", u"no such codec"_s)) << "no codec is needed";
}

TEST(M3uFormat, PathsAreRelativeWithinThePlace)
{
    EXPECT_EQ(written({u"/card/lists/a.mp3"_s, u"/card/music/b.mp3"_s, u"/phone/c.mp3"_s, u"/else/d.mp3"_s,
                       u"http://radio.example/歌"_s, u"/cards/e.mp3"_s}),
              "#EXTM3U\na.mp3\n../music/b.mp3\n/phone/c.mp3\n/else/d.mp3\nhttp://radio.example/歌\n/cards/e.mp3\n");
}

TEST(M3uFormat, OutsideEveryPlacePathsAreWhole)
{
    EXPECT_EQ(written({u"/card/lists/a.mp3"_s}, {}), "#EXTM3U\n/card/lists/a.mp3\n");
    EXPECT_EQ(written({u"/card/lists/a.mp3"_s}, {QString(), u"/phone"_s}), "#EXTM3U\n/card/lists/a.mp3\n");
}

TEST(M3uFormat, TheInnermostPlaceCounts)
{
    EXPECT_EQ(written({u"/card/a.mp3"_s, u"/card/lists/b.mp3"_s}, {u"/card"_s, u"/card/lists"_s}),
              "#EXTM3U\n/card/a.mp3\nb.mp3\n")
        << "a folder that is itself a place";
}

TEST(M3uFormat, NamesThatWouldReadOtherwiseAreWrittenPlainly)
{
    EXPECT_EQ(written({u"/card/lists/#1.mp3"_s, u"/card/lists/ a.mp3"_s, u"/card/lists/C:\\a"_s, u"/card/lists"_s}),
              "#EXTM3U\n./#1.mp3\n./ a.mp3\n./C:\\a\n.\n");
    EXPECT_EQ(written({u"/card/lists/../a.mp3"_s}), "#EXTM3U\n/card/lists/../a.mp3\n")
        << "another text than /card/a.mp3";
}

TEST(M3uFormat, ItemsThatCannotBeALineAreLeftOutAndReported)
{
    const QStringList items = {u"/card/a\nb.mp3"_s,    u"/card/ok.mp3"_s,  QString(),
                               u"song.mp3"_s,          u"file:///a.mp3"_s, u"#x"_s,
                               u"/a"_s + QChar(0xdc00)};
    const M3uBytes m3u = formatM3u(items, Folder, {u"/card"_s});
    EXPECT_EQ(m3u.bytes, "#EXTM3U\n../ok.mp3\n");
    EXPECT_EQ(m3u.itemCount, 1);
    QStringList reports;
    for (const M3uSkipped &each : m3u.skipped)
        reports.append(QString::number(each.number) + u' ' + each.reason);
    const QString neither = u" it is neither an absolute path nor a link"_s;
    EXPECT_EQ(reports, (QStringList{u"1 it holds control characters"_s, u"3 it is empty"_s, u"4"_s + neither,
                                    u"5"_s + neither, u"6"_s + neither, u"7 it holds bytes that are no text"_s}));
}

TEST(M3uFormat, WhatIsWrittenComesBack)
{
    const QStringList items = {u"/card/lists/a.mp3"_s, u"/card/lists/#b.mp3"_s,    u"/card/lists/http:"_s,
                               u"/card/ c .mp3 "_s,    u"/phone/d\te.mp3"_s,       u"/card/lists/C:/x.mp3"_s,
                               u"/x//y/../z.mp3"_s,    u"http://r.example/ü?#f"_s, u"/card/lists/%0A.mp3"_s};
    const QByteArray bytes = written(items);
    const std::optional<QString> text = decodeM3u(bytes, u"GBK"_s);
    ASSERT_TRUE(text);
    EXPECT_EQ(parseM3u(*text, Folder).items, items);
    EXPECT_FALSE(bytes.contains('\r'));
}
