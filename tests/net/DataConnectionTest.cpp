// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "net/DataConnection.h"

#include "support/FakeSessionManager.h"

#include <gmock/gmock.h>

using marvola::DataConnection;

namespace {

struct Connection : testing::Test
{
    FakeSessionManager::Log log;
    std::unique_ptr<DataConnection> connection =
        std::make_unique<DataConnection>(std::make_unique<FakeSessionManager>(log));

    QStringList callsOfDestruction()
    {
        log.calls.clear();
        connection.reset();
        return log.calls;
    }
    void open(int id)
    {
        log.nextId = id;
        connection->startOpening(QStringLiteral("Operator"));
    }
};

} // namespace

TEST_F(Connection, InitialisesTheLinkServiceWithFalse)
{
    EXPECT_EQ(log.calls, QStringList({QStringLiteral("made"), QStringLiteral("init 0")}));
}

TEST_F(Connection, StartsWithoutALink)
{
    EXPECT_EQ(connection->linkId(), -1);
    EXPECT_FALSE(connection->isWaiting());
}

TEST_F(Connection, DestructionWithoutALinkClosesNothing)
{
    EXPECT_EQ(callsOfDestruction(), QStringList(QStringLiteral("deleted")));
}

TEST_F(Connection, DestructionWithLinkIdZeroDeliberatelyClosesNothing)
{
    open(0);
    EXPECT_EQ(callsOfDestruction(), QStringList(QStringLiteral("deleted")));
}

TEST_F(Connection, DestructionClosesAnOpenLinkBeforeDeletingTheService)
{
    open(7);
    EXPECT_EQ(callsOfDestruction(), QStringList({QStringLiteral("close 7"), QStringLiteral("deleted")}));
}

TEST_F(Connection, ConnectedEndsTheWaitAndKeepsTheLink)
{
    open(7);
    EXPECT_TRUE(connection->isWaiting());
    connection->linkConnected(7);
    EXPECT_FALSE(connection->isWaiting());
    EXPECT_EQ(connection->linkId(), 7);
}

TEST_F(Connection, OpenFailedEndsTheWaitAndForgetsTheLink)
{
    open(7);
    connection->linkOpenFailed(7);
    EXPECT_FALSE(connection->isWaiting());
    EXPECT_EQ(connection->linkId(), -1);
}

TEST_F(Connection, EventsOfOtherLinksChangeNothing)
{
    open(7);
    connection->linkConnected(8);
    connection->linkOpenFailed(6);
    EXPECT_TRUE(connection->isWaiting());
    EXPECT_EQ(connection->linkId(), 7);
}
