// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/RefreshState.h"

#include <gtest/gtest.h>

using marvola::RefreshState;

namespace {

struct RefreshStateTest : testing::Test
{
    /// A refresh whose flags were cleared while its worker is at work.
    RefreshState::Number beginUnseen()
    {
        const auto refresh = state.begin();
        EXPECT_TRUE(refresh);
        state.clearFlags();
        return refresh.value_or(0);
    }
    void expectFlags(bool running, bool cancelled) const
    {
        EXPECT_EQ(state.running, running);
        EXPECT_EQ(state.cancelled, cancelled);
    }

    RefreshState state{{}};
};

} // namespace

TEST_F(RefreshStateTest, BeginningSetsOneFlagAndClearsTheOther)
{
    expectFlags(false, false);
    state.cancelled = true;
    EXPECT_TRUE(state.begin());
    expectFlags(true, false);
}

TEST_F(RefreshStateTest, SecondBeginningIsRefusedAndChangesNothing)
{
    const auto refresh = state.begin();
    state.cancelled = true;
    EXPECT_FALSE(state.begin());
    expectFlags(true, true);
    state.end(*refresh);
    expectFlags(false, false);
}

TEST_F(RefreshStateTest, EndOfAnEarlierRefreshLeavesTheNextItsFlags)
{
    const RefreshState::Number first = beginUnseen();
    const auto second = state.begin();
    ASSERT_TRUE(second);
    state.cancelled = true;
    state.end(first);
    expectFlags(true, true);
    state.end(*second);
    expectFlags(false, false);
}

TEST_F(RefreshStateTest, EndBehindClearedFlagsLeavesNoCancellation)
{
    const RefreshState::Number refresh = beginUnseen();
    expectFlags(false, false);
    state.cancelled = true;
    state.end(refresh);
    expectFlags(false, false);
}

TEST_F(RefreshStateTest, RefreshThatIsTakenBackLeavesTheOneBeforeItsEnd)
{
    const RefreshState::Number first = beginUnseen();
    const auto second = state.begin();
    ASSERT_TRUE(second);
    state.cancelled = true;
    state.takeBack(*second);
    expectFlags(false, false);
    state.cancelled = true;
    state.end(first);
    expectFlags(false, false);
}

TEST_F(RefreshStateTest, TakingAnEarlierRefreshBackLeavesTheNextItsFlags)
{
    const RefreshState::Number first = beginUnseen();
    const auto second = state.begin();
    ASSERT_TRUE(second);
    state.takeBack(first);
    expectFlags(true, false);
    state.end(*second);
    expectFlags(false, false);
}
