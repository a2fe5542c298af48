// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/ConfigFile.h>

#include "Folder.h"
#include "platform/TextFrame.h"

#include <functional>
#include <limits>
#include <random>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString name = u"test.cfg"_s;

ConfigFile open(const Folder &folder)
{
    return ConfigFile(folder.path(name), false);
}

/// The texts that are hard to keep in a file of lines.
QStringList hardTexts()
{
    return {QString(),
            u" "_s,
            u"  both ends  "_s,
            u"a=b"_s,
            u"[g]"_s,
            u"]["_s,
            u"#x"_s,
            u";x"_s,
            u"\"quoted\""_s,
            u"'"_s,
            u"C:\\new\\x41"_s,
            u"\\"_s,
            u"100%"_s,
            u"%41"_s,
            u"a\nb"_s,
            u"\r\n"_s,
            u"\t"_s,
            QString(QChar(u'\0')),
            u"a,b , c"_s,
            u"a;b"_s,
            u"@Invalid()"_s,
            u"\u65E5\u672C\u8A9E"_s,
            u"\U0001F3B5"_s,
            QString(QChar(0xD83C)),
            QString(QChar(0xDFB5)) + QChar(0xD83C),
            u"\uFEFF"_s,
            u"\uFFFF"_s,
            u"\u0085\u2028"_s,
            u"http://host:8080/a?b=c&d=e#f"_s,
            QString(70'000, u'x')};
}

} // namespace

TEST(ConfigFile, AMissingFileGivesDefaultsAndStaysMissing)
{
    const Folder folder;
    {
        ConfigFile file(folder.path(u"a/b.cfg"_s), false);
        EXPECT_EQ(file.readEntry(u"g"_s, u"k"_s, u"d"_s), u"d"_s);
        EXPECT_TRUE(file.readEntry(u"g"_s, u"k"_s).isNull());
        EXPECT_EQ(file.readNumEntry(u"g"_s, u"k"_s, -7), -7);
        EXPECT_TRUE(file.readBoolEntry(u"g"_s, u"k"_s, true));
        EXPECT_TRUE(file.getGroupEntriesKeyList(u"g"_s).isEmpty());
        EXPECT_TRUE(file.flush());
    }
    EXPECT_TRUE(folder.names().isEmpty());
}

TEST(ConfigFile, DestructionCommitsWhatWasWritten)
{
    const Folder folder;
    EXPECT_TRUE(open(folder).writeEntry(u"g"_s, u"k"_s, u"v"_s));
    EXPECT_EQ(open(folder).readEntry(u"g"_s, u"k"_s), u"v"_s);
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(ConfigFile, ACommitMakesMissingFolders)
{
    const Folder folder;
    {
        ConfigFile file(folder.path(u"setup/deep/x.cfg"_s), true);
        EXPECT_TRUE(file.writeEntry(u"g"_s, u"k"_s, 5));
        EXPECT_TRUE(folder.names().isEmpty()) << "a write alone makes nothing";
        EXPECT_TRUE(file.flush());
    }
    EXPECT_EQ(ConfigFile(folder.path(u"setup/deep/x.cfg"_s), false).readNumEntry(u"g"_s, u"k"_s), 5);
}

TEST(ConfigFile, FilesAreWrittenByteForByteAsDocumented)
{
    const Folder folder;
    {
        ConfigFile file = open(folder);
        file.writeEntry(u"MediaControlItem"_s, u"VolumeLevel"_s, 200);
        file.writeEntry(u"MediaControlItem"_s, u"SearchOrder"_s, u"Phone,Memory Card"_s);
        file.writeEntry(u"pl-50% [best]"_s, u"1"_s, u"/mmc/mmca1/a;b \u65E5.mp3"_s);
        file.writeEntry(u"pl-50% [best]"_s, u"counter"_s, 1);
    }
    EXPECT_EQ(folder.bytes(name), "#marvola=1 0000000133 3f81542f 00000000\n"
                                  "[MediaControlItem]\n"
                                  "VolumeLevel=200\n"
                                  "SearchOrder=Phone,Memory Card\n"
                                  "\n"
                                  "[pl-50%25 %5Bbest%5D]\n"
                                  "1=/mmc/mmca1/a\\x003b\\x0062 \xE6\x97\xA5.mp3\n"
                                  "counter=1\n");
}

TEST(ConfigFile, EveryTextComesBackAsGroupKeyAndValue)
{
    const Folder folder;
    const QStringList texts = hardTexts();
    {
        ConfigFile file = open(folder);
        for (const QString &text : texts) {
            const QString shortText = text.left(60'000);
            const int number = static_cast<int>(texts.indexOf(text));
            EXPECT_TRUE(file.writeEntry(u"values"_s, QString::number(number), text));
            EXPECT_TRUE(file.writeEntry(u"keys"_s, shortText, number));
            EXPECT_TRUE(file.writeEntry(u"pl-"_s + shortText, u"k"_s, number));
            EXPECT_TRUE(file.writeEntry(shortText, shortText, text));
        }
    }
    ConfigFile file = open(folder);
    EXPECT_EQ(file.getGroupEntriesKeyList(u"keys"_s).size(), texts.size());
    for (const QString &text : texts) {
        const QString shortText = text.left(60'000);
        const int number = static_cast<int>(texts.indexOf(text));
        EXPECT_EQ(file.readEntry(u"values"_s, QString::number(number), u"absent"_s), text) << number;
        EXPECT_EQ(file.readNumEntry(u"keys"_s, shortText, -1), number);
        EXPECT_EQ(file.readNumEntry(u"pl-"_s + shortText, u"k"_s, -1), number);
        EXPECT_EQ(file.getGroupEntriesKeyList(shortText).value(shortText), text) << number;
    }
}

TEST(ConfigFile, EveryUnitComesBackThroughTheDisk)
{
    const Folder folder;
    {
        ConfigFile file = open(folder);
        for (unsigned code = 0; code <= 0xFFFF; ++code) {
            const QString unit(QChar(static_cast<char16_t>(code)));
            ASSERT_TRUE(file.writeEntry(u"g"_s, unit + u"k"_s, u"v"_s + unit));
        }
    }
    ConfigFile file = open(folder);
    EXPECT_EQ(file.getGroupEntriesKeyList(u"g"_s).size(), 0x10000);
    for (unsigned code = 0; code <= 0xFFFF; ++code) {
        const QString unit(QChar(static_cast<char16_t>(code)));
        ASSERT_EQ(file.readEntry(u"g"_s, unit + u"k"_s), u"v"_s + unit) << code;
    }
}

TEST(ConfigFile, EmptyValueIsNotAbsent)
{
    const Folder folder;
    open(folder).writeEntry(u"g"_s, u"k"_s, QString());
    ConfigFile file = open(folder);
    EXPECT_FALSE(file.readEntry(u"g"_s, u"k"_s).isNull());
    EXPECT_EQ(file.readEntry(u"g"_s, u"k"_s, u"default"_s), QString(u""_s));
    EXPECT_TRUE(file.getGroupEntriesKeyList(u"g"_s).contains(u"k"_s));
    EXPECT_FALSE(file.getGroupEntriesKeyList(u"g"_s).value(u"k"_s).isNull());
    EXPECT_TRUE(file.readEntry(u"g"_s, u"other"_s).isNull());
}

TEST(ConfigFile, EmptyIsNotAbsentBeforeTheCommitEither)
{
    const Folder folder;
    ConfigFile file = open(folder);
    file.writeEntry(u"g"_s, u"k"_s, QString());
    EXPECT_FALSE(file.readEntry(u"g"_s, u"k"_s).isNull());
}

TEST(ConfigFile, ReadsSeeTheObjectsOwnWrites)
{
    const Folder folder;
    folder.put(name, "[g]\na=1\nb=2\nc=3\n");
    ConfigFile file = open(folder);
    file.writeEntry(u"g"_s, u"a"_s, 9);
    file.removeEntry(u"g"_s, u"b"_s);
    file.writeEntry(u"g"_s, u"d"_s, 4);
    EXPECT_EQ(file.readNumEntry(u"g"_s, u"a"_s), 9);
    EXPECT_TRUE(file.readEntry(u"g"_s, u"b"_s).isNull());
    const QMap<QString, QString> expected{{u"a"_s, u"9"_s}, {u"c"_s, u"3"_s}, {u"d"_s, u"4"_s}};
    EXPECT_EQ(file.getGroupEntriesKeyList(u"g"_s), expected);
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(file.getGroupEntriesKeyList(u"g"_s), expected);
    EXPECT_EQ(open(folder).getGroupEntriesKeyList(u"g"_s), expected);
}

TEST(ConfigFile, AClearedGroupIsEmptyAtOnceAndOnDisk)
{
    const Folder folder;
    folder.put(name, "[g]\na=1\n[h]\nb=2\n");
    {
        ConfigFile file = open(folder);
        file.writeEntry(u"g"_s, u"z"_s, 1);
        EXPECT_TRUE(file.clearGroup(u"g"_s));
        EXPECT_TRUE(file.getGroupEntriesKeyList(u"g"_s).isEmpty());
        EXPECT_TRUE(file.readEntry(u"g"_s, u"a"_s).isNull());
        file.writeEntry(u"g"_s, u"c"_s, 3);
        EXPECT_EQ(file.getGroupEntriesKeyList(u"g"_s).keys(), QStringList(u"c"_s));
        EXPECT_TRUE(file.clearGroup(u"absent"_s));
    }
    EXPECT_EQ(open(folder).getGroupEntriesKeyList(u"g"_s).keys(), QStringList(u"c"_s));
    EXPECT_EQ(open(folder).readNumEntry(u"h"_s, u"b"_s), 2);
}

TEST(ConfigFile, RemovingWhatIsNotThereIsDone)
{
    const Folder folder;
    ConfigFile file = open(folder);
    EXPECT_TRUE(file.removeEntry(u"g"_s, u"k"_s));
    EXPECT_TRUE(file.flush());
    EXPECT_TRUE(folder.names().isEmpty());
}

TEST(ConfigFile, NumbersAreIntegersInRange)
{
    const struct
    {
        QString text;
        int number;
    } table[] = {
        {u"0"_s, 0},
        {u"-5"_s, -5},
        {u"2147483647"_s, 2147483647},
        {u"-2147483648"_s, -2147483647 - 1},
        {u"2147483648"_s, 42},
        {u"99999999999999999999999"_s, 42},
        {u"12abc"_s, 42},
        {u"1.5"_s, 42},
        {u"0x10"_s, 42},
        {u"abc"_s, 42},
        {QString(), 42},
    };
    const Folder folder;
    ConfigFile file = open(folder);
    for (const auto &row : table) {
        file.writeEntry(u"g"_s, u"k"_s, row.text);
        EXPECT_EQ(file.readNumEntry(u"g"_s, u"k"_s, 42), row.number) << qPrintable(row.text);
    }
    file.writeEntry(u"g"_s, u"k"_s, -2147483647 - 1);
    EXPECT_EQ(file.readEntry(u"g"_s, u"k"_s), u"-2147483648"_s);
}

TEST(ConfigFile, TruthValuesHaveFourWordsEach)
{
    const Folder folder;
    ConfigFile file = open(folder);
    for (const QString &text : {u"1"_s, u"true"_s, u"YES"_s, u"On"_s}) {
        file.writeEntry(u"g"_s, u"k"_s, text);
        EXPECT_TRUE(file.readBoolEntry(u"g"_s, u"k"_s, false)) << qPrintable(text);
    }
    for (const QString &text : {u"0"_s, u"False"_s, u"no"_s, u"OFF"_s}) {
        file.writeEntry(u"g"_s, u"k"_s, text);
        EXPECT_FALSE(file.readBoolEntry(u"g"_s, u"k"_s, true)) << qPrintable(text);
    }
    for (const QString &text : {u"2"_s, u"y"_s, u"truee"_s, QString()}) {
        file.writeEntry(u"g"_s, u"k"_s, text);
        EXPECT_TRUE(file.readBoolEntry(u"g"_s, u"k"_s, true)) << qPrintable(text);
        EXPECT_FALSE(file.readBoolEntry(u"g"_s, u"k"_s, false)) << qPrintable(text);
    }
}

TEST(ConfigFile, TextsThatAreTooLongAreRefusedAndChangeNothing)
{
    const Folder folder;
    ConfigFile file = open(folder);
    const QString longestName(65'535, u'n');
    const QString longestValue(16'777'215, u'v');
    EXPECT_TRUE(file.writeEntry(longestName, longestName, 1));
    EXPECT_TRUE(file.writeEntry(u"g"_s, u"k"_s, longestValue));
    EXPECT_FALSE(file.writeEntry(longestName + u'x', u"k"_s, 2));
    EXPECT_FALSE(file.writeEntry(u"g"_s, longestName + u'x', 2));
    EXPECT_FALSE(file.writeEntry(u"g"_s, u"k"_s, longestValue + u'x'));
    EXPECT_FALSE(file.removeEntry(u"g"_s, longestName + u'x'));
    EXPECT_FALSE(file.clearGroup(longestName + u'x'));
    EXPECT_TRUE(file.flush());
    ConfigFile again = open(folder);
    EXPECT_EQ(again.readNumEntry(longestName, longestName), 1);
    EXPECT_EQ(again.readEntry(u"g"_s, u"k"_s), longestValue);
    EXPECT_EQ(again.getGroupEntriesKeyList(u"g"_s).size(), 1);
}

TEST(ConfigFile, WhereNoFileCanBeEveryWriteIsRefused)
{
    const Folder folder;
    folder.put(u"plain"_s, "x");
    for (const QString &path : {QString(), folder.path(QString()), folder.path(u"plain/below"_s)}) {
        ConfigFile file(path, false);
        EXPECT_FALSE(file.writeEntry(u"g"_s, u"k"_s, u"v"_s));
        EXPECT_FALSE(file.writeEntry(u"g"_s, u"k"_s, 1));
        EXPECT_FALSE(file.removeEntry(u"g"_s, u"k"_s));
        EXPECT_FALSE(file.clearGroup(u"g"_s));
        EXPECT_TRUE(file.readEntry(u"g"_s, u"k"_s).isNull());
        EXPECT_TRUE(file.flush()) << "nothing is pending";
        EXPECT_FALSE(file.lockForUpdate() && path.isEmpty());
    }
    EXPECT_EQ(folder.names(), QStringList(u"plain"_s));
}

TEST(ConfigFile, AFailedFlushKeepsTheChangesForTheNextOne)
{
    const Folder folder;
    ConfigFile file = open(folder);
    ASSERT_TRUE(file.writeEntry(u"g"_s, u"k"_s, u"v"_s));
    ASSERT_TRUE(QDir(folder.path(QString())).mkdir(name));
    EXPECT_FALSE(file.flush());
    EXPECT_EQ(file.readEntry(u"g"_s, u"k"_s), u"v"_s);
    EXPECT_FALSE(file.flush());
    ASSERT_TRUE(QDir(folder.path(QString())).rmdir(name));
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(open(folder).readEntry(u"g"_s, u"k"_s), u"v"_s);
}

TEST(ConfigFile, DestructionDoesNotRetryAFailedFlush)
{
    const Folder folder;
    {
        ConfigFile file = open(folder);
        ASSERT_TRUE(file.writeEntry(u"g"_s, u"k"_s, u"v"_s));
        ASSERT_TRUE(QDir(folder.path(QString())).mkdir(name));
        EXPECT_FALSE(file.flush());
        ASSERT_TRUE(QDir(folder.path(QString())).rmdir(name));
    }
    EXPECT_TRUE(folder.names().isEmpty());
}

TEST(ConfigFile, DestructionCommitsWhatWasChangedAfterAFailedFlush)
{
    const struct
    {
        const char *what;
        std::function<bool(ConfigFile &)> change;
        QStringList keysLeft;
    } table[] = {
        {"written", [](ConfigFile &file) { return file.writeEntry(u"g"_s, u"l"_s, 2); }, {u"k"_s, u"l"_s}},
        {"removed", [](ConfigFile &file) { return file.removeEntry(u"g"_s, u"old"_s); }, {u"k"_s}},
        {"cleared", [](ConfigFile &file) { return file.clearGroup(u"h"_s); }, {u"k"_s}},
    };
    for (const auto &row : table) {
        const Folder folder;
        {
            ConfigFile file = open(folder);
            ASSERT_TRUE(file.writeEntry(u"g"_s, u"k"_s, u"v"_s));
            ASSERT_TRUE(QDir(folder.path(QString())).mkdir(name));
            EXPECT_FALSE(file.flush());
            ASSERT_TRUE(QDir(folder.path(QString())).rmdir(name));
            EXPECT_TRUE(row.change(file)) << row.what;
        }
        EXPECT_EQ(open(folder).getGroupEntriesKeyList(u"g"_s).keys(), row.keysLeft) << row.what;
    }
}

TEST(ConfigFile, AfterAFailedFlushWritesAskAnewWhetherTheFileCanBeWritten)
{
    const Folder folder;
    ConfigFile file = open(folder);
    ASSERT_TRUE(file.writeEntry(u"g"_s, u"k"_s, u"v"_s));
    ASSERT_TRUE(QDir(folder.path(QString())).mkdir(name));
    EXPECT_FALSE(file.flush());
    EXPECT_FALSE(file.writeEntry(u"g"_s, u"l"_s, u"w"_s));
    EXPECT_TRUE(file.readEntry(u"g"_s, u"l"_s).isNull());
    ASSERT_TRUE(QDir(folder.path(QString())).rmdir(name));
}

TEST(ConfigFile, AfterALockWritesAskAnewWhetherTheFileCanBeWritten)
{
    const Folder folder;
    ASSERT_TRUE(QDir(folder.path(QString())).mkdir(name));
    ConfigFile file = open(folder);
    EXPECT_FALSE(file.writeEntry(u"g"_s, u"k"_s, u"v"_s));
    ASSERT_TRUE(QDir(folder.path(QString())).rmdir(name));
    EXPECT_TRUE(file.lockForUpdate());
    EXPECT_TRUE(file.writeEntry(u"g"_s, u"k"_s, u"v"_s));
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(open(folder).readEntry(u"g"_s, u"k"_s), u"v"_s);
}

TEST(ConfigFile, OnlyWhatCannotBeUnderstoodIsLeftOfGarbageAndItIsKept)
{
    const auto seed = std::random_device()();
    std::mt19937 random(seed);
    for (int round = 0; round < 300; ++round) {
        QByteArray garbage(static_cast<qsizetype>(random() % 3000), '\0');
        const QByteArray often("[]=\n\r#;%\\ \t\0\"k", 15);
        for (char &byte : garbage)
            byte = random() % 3 == 0 ? static_cast<char>(random()) : often[static_cast<qsizetype>(random() % 15)];
        const Folder folder;
        folder.put(name, garbage);
        {
            ConfigFile file = open(folder);
            for (const QString &group : {QString(), u"k"_s})
                file.getGroupEntriesKeyList(group);
            ASSERT_TRUE(file.writeEntry(u"new group"_s, u"k"_s, u"v"_s));
        }
        ASSERT_EQ(open(folder).readEntry(u"new group"_s, u"k"_s), u"v"_s) << "seed " << seed;
        // All lines of the garbage are still there, but for blanks at its very end.
        QByteArray kept = garbage;
        while (!kept.isEmpty() && QByteArray("\n\r\t \0", 5).contains(kept.back()))
            kept.chop(1);
        ASSERT_TRUE(folder.bytes(name).contains(kept)) << "seed " << seed;
    }
}

TEST(ConfigFile, AFileCutAnywhereReadsAsWhatIsLeft)
{
    const Folder folder;
    {
        ConfigFile file = open(folder);
        for (int number = 1; number <= 20; ++number)
            file.writeEntry(u"g"_s, QString::number(number), u"value"_s);
    }
    const QByteArray whole = folder.bytes(name);
    for (qsizetype size = 0; size < whole.size(); ++size) {
        folder.put(name, whole.first(size));
        const qsizetype complete = whole.first(size).count("=value");
        const qsizetype read = open(folder).getGroupEntriesKeyList(u"g"_s).size();
        ASSERT_TRUE(read == complete || read == complete + 1) << size;
    }
}

TEST(ConfigFile, AFlippedBitCostsNoMoreThanItsLine)
{
    const Folder folder;
    open(folder).writeEntry(u"g"_s, u"a"_s, u"1"_s);
    {
        ConfigFile file = open(folder);
        for (int number = 1; number <= 5; ++number)
            file.writeEntry(u"h"_s, QString::number(number), u"value"_s);
    }
    const QByteArray whole = folder.bytes(name);
    const qsizetype headingEnd = whole.indexOf("[h]\n") + 4;
    for (qsizetype bit = headingEnd * 8; bit < whole.size() * 8; ++bit) {
        QByteArray flipped = whole;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
        folder.put(name, flipped);
        ConfigFile file = open(folder);
        int intact = 0;
        for (int number = 1; number <= 5; ++number)
            intact += file.readEntry(u"h"_s, QString::number(number)) == u"value"_s ? 1 : 0;
        // A lost line end, or a line that turned into a heading, costs what follows as well.
        const bool isStructure = flipped[bit / 8] == '[' || whole[bit / 8] == '\n';
        ASSERT_GE(intact, isStructure ? 0 : 4) << bit;
        ASSERT_EQ(file.readEntry(u"g"_s, u"a"_s), u"1"_s) << bit;
    }
}

TEST(ConfigFile, HandMadeFilesKeepTheirCommentsAndOrder)
{
    const Folder folder;
    folder.put(name, "\xEF\xBB\xBF; settings\r\n[MediaControlItem]\r\n# how loud\r\nVolumeLevel = 7\r\nMute=1\r\n");
    {
        ConfigFile file = open(folder);
        EXPECT_EQ(file.readNumEntry(u"MediaControlItem"_s, u"VolumeLevel"_s), 7);
        EXPECT_TRUE(file.readBoolEntry(u"MediaControlItem"_s, u"Mute"_s));
        file.writeEntry(u"MediaControlItem"_s, u"VolumeLevel"_s, 8);
    }
    const QByteArray bytes = folder.bytes(name);
    EXPECT_EQ(bytes.mid(bytes.indexOf('\n') + 1),
              "; settings\r\n[MediaControlItem]\r\n# how loud\r\nVolumeLevel=8\nMute=1\r\n");
}

TEST(ConfigFile, AReservedFileOfNulsIsEmptyAndKeepsItsLength)
{
    const Folder folder;
    folder.put(name, QByteArray(50'000, '\0'));
    {
        ConfigFile file = open(folder);
        EXPECT_TRUE(file.getGroupEntriesKeyList(QString()).isEmpty());
        file.writeEntry(u"g"_s, u"k"_s, u"v"_s);
    }
    EXPECT_EQ(folder.bytes(name).size(), 50'000);
    EXPECT_FALSE(folder.bytes(name).contains('\0'));
    open(folder).clearGroup(u"g"_s);
    EXPECT_EQ(folder.bytes(name).size(), 50'000);
    EXPECT_TRUE(open(folder).getGroupEntriesKeyList(u"g"_s).isEmpty());
}

TEST(ConfigFile, AFileOfTooManyLinesReadsAsEmptyAndIsKept)
{
    const QByteArray text = "[g]\nk=v\n" + QByteArray(4'194'304, '\n') + "#\n";
    const Folder folder;
    folder.put(name, text);
    {
        ConfigFile file = open(folder);
        EXPECT_TRUE(file.readEntry(u"g"_s, u"k"_s).isNull());
        EXPECT_TRUE(file.getGroupEntriesKeyList(u"g"_s).isEmpty());
        file.writeEntry(u"g"_s, u"k"_s, u"w"_s);
        EXPECT_FALSE(file.flush());
    }
    EXPECT_EQ(folder.bytes(name), text);
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(ConfigFile, WritingTheSameAgainDoesNotTouchTheFile)
{
    const Folder folder;
    open(folder).writeEntry(u"g"_s, u"k"_s, u"v"_s);
    struct stat before = {};
    ASSERT_EQ(::stat(folder.encodedPath(name).constData(), &before), 0);
    open(folder).writeEntry(u"g"_s, u"k"_s, u"v"_s);
    struct stat after = {};
    ASSERT_EQ(::stat(folder.encodedPath(name).constData(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(before.st_ctim.tv_nsec, after.st_ctim.tv_nsec);
}

TEST(ConfigFile, SixtyFiveThousandKeysInAGroupComeBack)
{
    constexpr int Count = 65'535;
    const Folder folder;
    {
        ConfigFile file = open(folder);
        for (int number = 1; number <= Count; ++number)
            ASSERT_TRUE(file.writeEntry(u"g"_s, QString::number(number), QString::number(number * 3)));
    }
    {
        ConfigFile file = open(folder);
        for (int number = 1; number <= Count; ++number)
            ASSERT_EQ(file.readNumEntry(u"g"_s, QString::number(number)), number * 3);
        for (int number = 2; number <= Count; number += 2)
            ASSERT_TRUE(file.removeEntry(u"g"_s, QString::number(number)));
    }
    EXPECT_EQ(open(folder).getGroupEntriesKeyList(u"g"_s).size(), (Count + 1) / 2);
}

TEST(ConfigFile, NumberedEntriesAreWhatAskingForEachGives)
{
    const Folder folder;
    ConfigFile file = open(folder);
    const QStringList texts = hardTexts();
    for (qsizetype number = 0; number < texts.size(); ++number)
        ASSERT_TRUE(file.writeEntry(u"g"_s, QString::number(number + 2), texts.at(number)));
    const auto count = static_cast<int>(texts.size()) + 3;
    const auto expectSame = [count](const ConfigFile &asked) {
        const QStringList entries = asked.readNumberedEntries(u"g"_s, count);
        ASSERT_EQ(entries.size(), count);
        for (int number = 1; number <= count; ++number) {
            const QString entry = asked.readEntry(u"g"_s, QString::number(number));
            EXPECT_EQ(entries.at(number - 1), entry);
            EXPECT_EQ(entries.at(number - 1).isNull(), entry.isNull());
        }
    };
    expectSame(file); // not in the file yet
    ASSERT_TRUE(file.flush());
    expectSame(open(folder));
    file.removeEntry(u"g"_s, u"3"_s);
    ASSERT_TRUE(file.writeEntry(u"g"_s, u"1"_s, u"changed"_s));
    expectSame(file);
    EXPECT_TRUE(file.readNumberedEntries(u"none"_s, 2).at(1).isNull());
    EXPECT_TRUE(file.readNumberedEntries(u"g"_s, 0).isEmpty());
}

TEST(ConfigFile, NumberedEntriesAreAsManyAsAListMayHave)
{
    const Folder folder;
    static constexpr int Most = 65535;
    ConfigFile file = open(folder);
    ASSERT_EQ(file.writeNumberedEntries(u"g"_s, Most, {u"last"_s, u"beyond"_s}), 2);
    const auto expectBounded = [](const ConfigFile &asked) {
        for (const int count : {Most, Most + 1, 1'000'000, std::numeric_limits<int>::max()}) {
            const QStringList entries = asked.readNumberedEntries(u"g"_s, count);
            ASSERT_EQ(entries.size(), Most) << count;
            EXPECT_EQ(entries.back(), u"last"_s) << count;
        }
        EXPECT_EQ(asked.readNumberedEntries(u"g"_s, Most - 1).size(), Most - 1);
        for (const int count : {-1, std::numeric_limits<int>::min()})
            EXPECT_TRUE(asked.readNumberedEntries(u"g"_s, count).isEmpty()) << count;
    };
    expectBounded(file); // not in the file yet
    ASSERT_TRUE(file.flush());
    expectBounded(open(folder));
}

TEST(ConfigFile, NumberedEntriesAreWrittenAsEachIs)
{
    const Folder folder;
    const QStringList texts = hardTexts();
    {
        ConfigFile file = open(folder);
        ASSERT_TRUE(file.writeEntry(u"g"_s, u"2"_s, u"old"_s));
        ASSERT_TRUE(file.removeEntry(u"g"_s, u"3"_s));
        EXPECT_EQ(file.writeNumberedEntries(u"g"_s, 2, texts), texts.size());
        EXPECT_EQ(file.writeNumberedEntries(u"g"_s, 2147483647, {u"a"_s, u"b"_s}), 2);
        EXPECT_EQ(file.writeNumberedEntries(u"g"_s, -1, {u"below"_s}), 1);
        EXPECT_EQ(file.writeNumberedEntries(u"none"_s, 1, {}), 0);
    }
    QMap<QString, QString> expected{{u"2147483647"_s, u"a"_s}, {u"2147483648"_s, u"b"_s}, {u"-1"_s, u"below"_s}};
    for (qsizetype number = 0; number < texts.size(); ++number)
        expected.insert(QString::number(number + 2), texts.at(number));
    EXPECT_EQ(open(folder).getGroupEntriesKeyList(u"g"_s), expected);
    EXPECT_TRUE(open(folder).getGroupEntriesKeyList(u"none"_s).isEmpty());
}

TEST(ConfigFile, NumberedEntriesStopBeforeTheFirstThatIsRefused)
{
    const Folder folder;
    const QString tooLong(16'777'216, u'x');
    {
        ConfigFile file = open(folder);
        EXPECT_EQ(file.writeNumberedEntries(u"g"_s, 1, {u"a"_s, tooLong, u"c"_s}), 1);
        EXPECT_EQ(file.writeNumberedEntries(QString(65'536, u'g'), 1, {u"a"_s}), 0);
    }
    EXPECT_EQ(open(folder).getGroupEntriesKeyList(u"g"_s), (QMap<QString, QString>{{u"1"_s, u"a"_s}}));
    ConfigFile unwritable(folder.path(QString()), false);
    EXPECT_EQ(unwritable.writeNumberedEntries(u"g"_s, 1, {u"a"_s}), 0);
}

TEST(ConfigFile, NumberedEntriesOfWhichNoneIsTakenChangeNothing)
{
    const Folder folder;
    const QString tooLong(16'777'216, u'x');
    {
        ConfigFile file(folder.path(u"missing/"_s + name), false);
        EXPECT_EQ(file.writeNumberedEntries(u"g"_s, 1, {tooLong, u"b"_s}), 0);
        EXPECT_EQ(file.writeNumberedEntries(u"g"_s, 1, {}), 0);
        EXPECT_TRUE(file.flush());
    }
    EXPECT_EQ(folder.names(), QStringList());
    {
        ConfigFile file = open(folder);
        EXPECT_EQ(file.writeNumberedEntries(u"later"_s, 1, {tooLong}), 0);
        EXPECT_TRUE(file.writeEntry(u"first"_s, u"k"_s, u"v"_s));
        EXPECT_TRUE(file.writeEntry(u"later"_s, u"k"_s, u"v"_s));
    }
    EXPECT_TRUE(folder.bytes(name).endsWith("\n[first]\nk=v\n\n[later]\nk=v\n"));
}

TEST(ConfigFile, AFileThatCannotBeReadForAMomentIsNotOverwritten)
{
    const Folder folder;
    const QString path = folder.path(u"file"_s);
    {
        ConfigFile file(path, false);
        ASSERT_TRUE(file.writeEntry(u"g"_s, u"counter"_s, 3));
    }
    const QByteArray before = folder.bytes(u"file"_s);
    ASSERT_EQ(::truncate(folder.encodedPath(u"file"_s).constData(), marvola::TextFrame::MaxFileSize + 1), 0);
    {
        ConfigFile file(path, false);
        EXPECT_EQ(file.readNumEntry(u"g"_s, u"counter"_s), 0);
        EXPECT_TRUE(file.isUnreadable());
        ASSERT_EQ(::truncate(folder.encodedPath(u"file"_s).constData(), before.size()), 0);
        EXPECT_FALSE(file.writeEntry(u"g"_s, u"counter"_s, 1));
        EXPECT_TRUE(file.lockForUpdate());
        EXPECT_FALSE(file.isUnreadable());
        EXPECT_EQ(file.readNumEntry(u"g"_s, u"counter"_s), 3);
    }
    EXPECT_EQ(folder.bytes(u"file"_s), before);
}
