// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/TextPool.h"

#include <QtCore/QByteArray>

#include <gtest/gtest.h>

#include <utility>

using namespace marvola;

TEST(TextPool, KeepsACopy)
{
    TextPool pool;
    QByteArray text("first");
    const QByteArrayView kept = pool.keep(text);
    text.fill('x');
    EXPECT_EQ(kept, QByteArrayView("first"));
}

TEST(TextPool, TextsStayWhereTheyAreWhateverComesLater)
{
    TextPool pool;
    std::vector<QByteArrayView> kept;
    for (int number = 0; number < 20'000; ++number)
        kept.push_back(pool.keep(QByteArray::number(number)));
    const TextPool moved = std::move(pool);
    for (int number = 0; number < 20'000; ++number)
        ASSERT_EQ(kept[static_cast<std::size_t>(number)], QByteArray::number(number));
}

TEST(TextPool, AnEmptyTextIsNoMissingOne)
{
    TextPool pool;
    EXPECT_TRUE(pool.keep("").isEmpty());
    EXPECT_TRUE(pool.keep(QByteArrayView()).isEmpty());
    EXPECT_EQ(pool.keep("x"), QByteArrayView("x"));
}

TEST(TextPool, ATextLongerThanABlockIsKeptWhole)
{
    TextPool pool;
    const QByteArrayView before = pool.keep("before");
    const QByteArray large(1'000'000, 'l');
    const QByteArrayView kept = pool.keep(large);
    EXPECT_EQ(pool.keep("after"), QByteArrayView("after"));
    EXPECT_EQ(kept, QByteArrayView(large));
    EXPECT_EQ(before, QByteArrayView("before"));
}
