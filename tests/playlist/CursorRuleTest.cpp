// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CursorRule.h"

#include <gtest/gtest.h>

using marvola::cursorAfterRemoval;
using marvola::NoPosition;
using marvola::Removal;

namespace {

struct Row
{
    const char *name;
    Removal removal; ///< cursor, removed place, count before, count after
    int cursor;
};

} // namespace

TEST(CursorRule, EveryCaseOfARemoval)
{
    const Row rows[] = {
        {"before the active one", {3, 1, 5, 4}, 2},
        {"just before the active one", {3, 2, 5, 4}, 2},
        {"before the active one at the end", {4, 0, 5, 4}, 3},
        {"first, second active", {1, 0, 2, 1}, 0},
        {"after the active one", {1, 3, 5, 4}, 1},
        {"last, first active", {0, 4, 5, 4}, 0},
        {"the only one", {0, 0, 1, 0}, NoPosition},
        {"the active one, all copies of it gone", {1, 1, 3, 0}, NoPosition},
        {"the active one at the end wraps", {4, 4, 5, 4}, 0},
        {"the active one at the end of two", {1, 1, 2, 1}, 0},
        {"the active one in front", {0, 0, 5, 4}, 0},
        {"the active one in the middle", {2, 2, 5, 4}, 1},
        {"the active one second", {1, 1, 5, 4}, 0},
        {"the active one next to last", {3, 3, 5, 4}, 2},
        {"none active", {NoPosition, 0, 5, 4}, NoPosition},
        {"none active, the only one goes", {NoPosition, 0, 1, 0}, NoPosition},
        {"leftover cursor", {9, 2, 5, 4}, 8},
        {"removed has no place", {2, NoPosition, 5, 4}, 2},
        {"none active and removed has no place", {NoPosition, NoPosition, 5, 4}, NoPosition},
        {"before the active one, copies gone with it", {1, 0, 2, 0}, 0},
        {"active one past the items", {4, 4, 3, 2}, 3},
    };
    for (const Row &row : rows)
        EXPECT_EQ(cursorAfterRemoval(row.removal), row.cursor) << row.name;
}
