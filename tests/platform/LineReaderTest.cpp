// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/LineReader.h"

#include <QtCore/QByteArrayList>

#include <gtest/gtest.h>

using namespace marvola;

namespace {

QList<QByteArray> linesOf(QByteArrayView text)
{
    QList<QByteArray> lines;
    LineReader reader(text);
    while (reader.next()) {
        EXPECT_EQ(reader.whole(), text.sliced(reader.begin(), reader.end() - reader.begin()));
        EXPECT_TRUE(reader.whole().startsWith(reader.line()));
        lines.append(reader.line().toByteArray());
    }
    return lines;
}

} // namespace

TEST(LineReader, GivesEveryLineOnce)
{
    EXPECT_EQ(linesOf(""), QList<QByteArray>());
    EXPECT_EQ(linesOf("a"), QList<QByteArray>({"a"}));
    EXPECT_EQ(linesOf("a\n"), QList<QByteArray>({"a"}));
    EXPECT_EQ(linesOf("\n\na\nb"), QList<QByteArray>({"", "", "a", "b"}));
}

TEST(LineReader, WholeLinesMakeUpTheText)
{
    const QByteArray text = "a\n\nbc\r\n d";
    QByteArray joined;
    LineReader reader(text);
    while (reader.next())
        joined += reader.whole().toByteArray();
    EXPECT_EQ(joined, text);
}
