// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/TROVE_Global.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

int levelOf(const QString &path)
{
    return TROVE_Global::instance()->getPartiFolderLevel(path);
}

class TROVE_GlobalTest : public testing::Test
{
protected:
    TROVE_GlobalTest() { setPlaces({}, {}, {}); }
    ~TROVE_GlobalTest() override { setPlaces({}, {}, {}); }

    static void setPlaces(const QByteArray &data, const QByteArray &card1, const QByteArray &card2)
    {
        qputenv("TROVE_DATA_PATH", data);
        qputenv("CARD1_MOUNT_PATH", card1);
        qputenv("CARD2_MOUNT_PATH", card2);
    }
};

} // namespace

TEST_F(TROVE_GlobalTest, IsOneObject)
{
    EXPECT_NE(TROVE_Global::instance(), nullptr);
    EXPECT_EQ(TROVE_Global::instance(), TROVE_Global::instance());
}

TEST_F(TROVE_GlobalTest, LevelIsTheNumberOfSlashesInTheRoot)
{
    setPlaces("/no/such/place", "/nosuchcard", "/no/such/third/card");
    EXPECT_EQ(levelOf(u"/no/such/place/x/y"_s), 3);
    EXPECT_EQ(levelOf(u"/nosuchcard/x/y"_s), 1);
    EXPECT_EQ(levelOf(u"/no/such/third/card/x"_s), 4);
}

TEST_F(TROVE_GlobalTest, RootItselfIsHeldWithAndWithoutSlash)
{
    setPlaces("/no/such/place", {}, {});
    EXPECT_EQ(levelOf(u"/no/such/place"_s), 3);
    EXPECT_EQ(levelOf(u"/no/such/place/"_s), 3);
}

TEST_F(TROVE_GlobalTest, SlashesAtTheEndOfAPlaceDoNotCount)
{
    setPlaces("/no/such/place/", "/nosuchcard//", {});
    EXPECT_EQ(levelOf(u"/no/such/place/x"_s), 3);
    EXPECT_EQ(levelOf(u"/nosuchcard/x"_s), 1);
}

TEST_F(TROVE_GlobalTest, PlaceHoldsWholeNamesOnly)
{
    setPlaces("/no/such", {}, {});
    const int elsewhere = levelOf(u"/"_s);
    EXPECT_EQ(elsewhere, 0);
    EXPECT_EQ(levelOf(u"/no/suchlike/x"_s), elsewhere);
    EXPECT_EQ(levelOf(u"/no/suc"_s), elsewhere);
    EXPECT_EQ(levelOf(u"/no"_s), elsewhere);
}

TEST_F(TROVE_GlobalTest, LongestPlaceWins)
{
    setPlaces("/no/such", "/no/such/card/inside", "/no/such/card");
    EXPECT_EQ(levelOf(u"/no/such/card/inside/x"_s), 4);
    EXPECT_EQ(levelOf(u"/no/such/card/x"_s), 3);
    EXPECT_EQ(levelOf(u"/no/such/x"_s), 2);
}

TEST_F(TROVE_GlobalTest, SlashAloneHoldsEverythingAtLevelZero)
{
    setPlaces("/", {}, {});
    EXPECT_EQ(levelOf(u"/"_s), 0);
    EXPECT_EQ(levelOf(u"/proc/self/x"_s), 0) << "although /proc is a mount point";
}

TEST_F(TROVE_GlobalTest, FollowsTheEnvironment)
{
    setPlaces("/no/such", {}, {});
    EXPECT_EQ(levelOf(u"/no/such/place/x"_s), 2);
    setPlaces("/no/such/place", {}, {});
    EXPECT_EQ(levelOf(u"/no/such/place/x"_s), 3);
    qunsetenv("TROVE_DATA_PATH");
    EXPECT_EQ(levelOf(u"/no/such/place/x"_s), 0);
}

TEST_F(TROVE_GlobalTest, MountPointHoldsWhatNoPlaceHolds)
{
    EXPECT_EQ(levelOf(u"/"_s), 0);
    EXPECT_EQ(levelOf(u"/proc"_s), 1);
    EXPECT_EQ(levelOf(u"/proc/no/such/path"_s), 1);
    EXPECT_EQ(levelOf(u"/procession/x"_s), 0);
}

TEST_F(TROVE_GlobalTest, PlaceWinsOverALongerMountPoint)
{
    setPlaces("/", {}, {});
    EXPECT_EQ(levelOf(u"/proc/x"_s), 0);
    setPlaces("/no/such", {}, {});
    EXPECT_EQ(levelOf(u"/proc/x"_s), 1);
}

TEST_F(TROVE_GlobalTest, PathsThatNothingHoldsAreAtLevelZero)
{
    EXPECT_EQ(levelOf(QString()), 0);
    EXPECT_EQ(levelOf(u"relative/path"_s), 0);
}

TEST_F(TROVE_GlobalTest, PlacesMayHoldAnyCharacters)
{
    setPlaces("/no/\xe9\x9f\xb3\xe4\xb9\x90/a b", {}, {});
    EXPECT_EQ(levelOf(u"/no/音乐/a b/x"_s), 3);
}

TEST_F(TROVE_GlobalTest, MayBeAskedByManyThreads)
{
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    setPlaces("/no/such/place", {}, {});
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&wrong] {
            for (int round = 0; round < 500; ++round)
                wrong += levelOf(u"/no/such/place/x"_s) != 3 || levelOf(u"/proc/x"_s) != 1;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}
