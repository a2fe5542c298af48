// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Answers.h"

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusObjectPath>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using marvola::Profile;

TEST(Answers, InterfaceNames)
{
    for (const QString &good : {u"wwan0"_s, u"eth0.100"_s, u"a"_s, u"abcdefghijklmno"_s, u"br-lan_1"_s, u"..."_s})
        EXPECT_TRUE(marvola::isInterfaceName(good)) << qPrintable(good);
    for (const QString &bad : {u""_s, u"."_s, u".."_s, u"abcdefghijklmnop"_s, u"a/b"_s, u"a b"_s, u"a\nb"_s, u"a:1"_s,
                               u"a\x7f"_s, QString(u"a"_s + QChar(0)), u"éééééééé"_s})
        EXPECT_FALSE(marvola::isInterfaceName(bad)) << qPrintable(bad);
}

TEST(Answers, TheSmallestUuidGoesFirstAndThenThePath)
{
    const Profile a{u"/9"_s, u"x"_s, u"a"_s};
    const Profile b{u"/1"_s, u"x"_s, u"b"_s};
    const Profile bToo{u"/2"_s, u"x"_s, u"b"_s};
    EXPECT_TRUE(a.goesBefore(b));
    EXPECT_FALSE(b.goesBefore(a));
    EXPECT_TRUE(b.goesBefore(bToo));
    EXPECT_FALSE(bToo.goesBefore(b));
}

TEST(Answers, ValuesOfAnotherTypeAreMissing)
{
    const QVariantMap values{{u"number"_s, 7U},
                             {u"signed"_s, 7},
                             {u"text"_s, u"7"_s},
                             {u"path"_s, QVariant::fromValue(QDBusObjectPath(u"/7"_s))}};
    EXPECT_EQ(marvola::numberIn(values, u"number"_s), 7U);
    for (const QString &other : {u"signed"_s, u"text"_s, u"path"_s, u"none"_s})
        EXPECT_EQ(marvola::numberIn(values, other), std::nullopt) << qPrintable(other);
    EXPECT_EQ(marvola::textIn(values, u"text"_s), u"7"_s);
    EXPECT_EQ(marvola::textIn(values, u"number"_s), QString());
    EXPECT_EQ(marvola::pathIn(values, u"path"_s), u"/7"_s);
    EXPECT_EQ(marvola::pathIn(values, u"text"_s), QString());
    EXPECT_EQ(marvola::firstPathIn(values, u"path"_s), QString());
}

TEST(Answers, AnErrorIsNoAnswer)
{
    const QDBusMessage error = QDBusMessage::createError(u"x.y"_s, u"no"_s);
    EXPECT_EQ(marvola::objectPaths(error), std::nullopt);
    EXPECT_FALSE(marvola::profileOf(u"/1"_s, error));
    EXPECT_EQ(marvola::propertiesOf(error), std::nullopt);
    EXPECT_EQ(marvola::activePathOf(error), std::nullopt);
}
