// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/NumberedGroup.h"

#include "Folder.h"

#include <marvola/ConfigFile.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

class NumberedGroupTest : public testing::Test
{
protected:
    Folder m_folder;
    ConfigFile m_file{m_folder.path(u"list"_s), false};
    NumberedGroup m_group{m_file, u"g"_s};

    QStringList stored() const
    {
        QStringList all;
        const auto entries = m_file.getGroupEntriesKeyList(u"g"_s);
        for (auto entry = entries.begin(); entry != entries.end(); ++entry)
            all.append(entry.key() + u'=' + entry.value());
        return all;
    }
};

} // namespace

TEST_F(NumberedGroupTest, AnAbsentGroupIsEmpty)
{
    EXPECT_EQ(m_group.count(), 0);
    EXPECT_TRUE(m_group.entry(1).isNull());
}

TEST_F(NumberedGroupTest, ReplacingWritesCounterAndNumbersFromOne)
{
    EXPECT_TRUE(m_group.replace({u"a"_s, QString(), u"c"_s}));
    EXPECT_EQ(stored(), QStringList({u"1=a"_s, u"2="_s, u"3=c"_s, u"counter=3"_s}));
    EXPECT_FALSE(m_group.entry(2).isNull()) << "empty is not missing";
    EXPECT_TRUE(m_group.entry(4).isNull());
}

TEST_F(NumberedGroupTest, ReplacingByFewerRemovesTheRest)
{
    EXPECT_TRUE(m_group.replace({u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s}));
    EXPECT_TRUE(m_group.replace({u"x"_s, u"y"_s}));
    EXPECT_EQ(stored(), QStringList({u"1=x"_s, u"2=y"_s, u"counter=2"_s}));
    EXPECT_TRUE(m_group.replace({}));
    EXPECT_EQ(stored(), QStringList({u"counter=0"_s}));
}

TEST_F(NumberedGroupTest, KeysBehindTheCounterAndOtherKeysStay)
{
    ASSERT_TRUE(m_file.writeEntry(u"g"_s, u"counter"_s, 1));
    ASSERT_TRUE(m_file.writeEntry(u"g"_s, u"1"_s, u"a"_s));
    ASSERT_TRUE(m_file.writeEntry(u"g"_s, u"2"_s, u"hidden"_s));
    ASSERT_TRUE(m_file.writeEntry(u"g"_s, u"note"_s, u"n"_s));
    m_group.removeEntries();
    EXPECT_EQ(stored(), QStringList({u"2=hidden"_s, u"counter=1"_s, u"note=n"_s}));
}

TEST_F(NumberedGroupTest, EntriesAreAsManyAsTheCounterSaysNullWhereAKeyIsMissing)
{
    EXPECT_TRUE(m_group.entries().isEmpty());
    ASSERT_TRUE(m_group.replace({u"a"_s, QString(), u"c"_s, u"d"_s}));
    ASSERT_TRUE(m_group.removeEntry(3));
    ASSERT_TRUE(m_group.writeEntry(6, u"behind"_s));
    ASSERT_TRUE(m_group.writeCount(5));
    const QStringList entries = m_group.entries();
    EXPECT_EQ(entries, QStringList({u"a"_s, QString(), QString(), u"d"_s, QString()}));
    EXPECT_FALSE(entries.at(1).isNull()) << "empty is not missing";
    EXPECT_TRUE(entries.at(2).isNull());
    EXPECT_TRUE(entries.at(4).isNull());
    ASSERT_TRUE(m_group.writeCount(-1));
    EXPECT_TRUE(m_group.entries().isEmpty());
}

TEST_F(NumberedGroupTest, TheCountersKeyIsNoEntrysKey)
{
    EXPECT_EQ(NumberedGroup::CounterKey, QLatin1String("counter"));
    ASSERT_TRUE(m_file.writeEntry(u"g"_s, NumberedGroup::CounterKey, 2));
    EXPECT_EQ(m_group.count(), 2);
    m_group.removeEntries();
    EXPECT_EQ(m_group.count(), 2);
}

TEST_F(NumberedGroupTest, ACounterThatIsNoCountIsBounded)
{
    const struct
    {
        QString text;
        int count;
    } table[] = {
        {u"3"_s, 3},
        {u"-1"_s, 0},
        {u"junk"_s, 0},
        {u"65535"_s, 65535},
        {u"65536"_s, NumberedGroup::MaxEntries},
        {u"99999999999"_s, 0},
        {QString(), 0},
    };
    for (const auto &row : table) {
        ASSERT_TRUE(m_file.writeEntry(u"g"_s, u"counter"_s, row.text));
        EXPECT_EQ(m_group.count(), row.count) << qPrintable(row.text);
    }
}

TEST_F(NumberedGroupTest, AListOfTheLongestLengthComesBackAndTheRestIsLeftOut)
{
    QStringList entries;
    for (int number = 1; number <= NumberedGroup::MaxEntries + 2; ++number)
        entries.append(QString::number(number * 7));
    ASSERT_TRUE(m_group.replace(entries));
    ASSERT_TRUE(m_file.flush());
    ConfigFile file(m_folder.path(u"list"_s), false);
    const NumberedGroup group(file, u"g"_s);
    ASSERT_EQ(group.count(), NumberedGroup::MaxEntries);
    for (int number = 1; number <= NumberedGroup::MaxEntries; ++number)
        ASSERT_EQ(group.entry(number), QString::number(number * 7));
    EXPECT_TRUE(group.entry(NumberedGroup::MaxEntries + 1).isNull());
}

TEST_F(NumberedGroupTest, ARefusedWriteIsTold)
{
    ConfigFile nowhere(m_folder.path(QString()), false);
    NumberedGroup group(nowhere, u"g"_s);
    EXPECT_FALSE(group.replace({u"a"_s}));
    EXPECT_FALSE(group.writeCount(1));
    EXPECT_FALSE(group.writeEntry(1, u"a"_s));
    EXPECT_FALSE(group.removeEntry(1));
}
