// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// Two players, each a process of its own, on the playlists of one list file.

#include "support/NullEngine.h"
#include "support/TestPhone.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include <QtCore/QSet>

#include <gtest/gtest.h>

#include <functional>

#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

#ifdef NDEBUG
constexpr int Saves = 1000;
#else
constexpr int Saves = 100; // without optimisation, and under sanitizers, a save takes far longer
#endif
constexpr int Rounds = 50;
constexpr UINT8 Done = 0;

struct PlaylistSharing : testing::Test
{
    TestPhone phone;

    void SetUp() override
    {
        ConfigFile file(phone.settingsFile(), false);
        ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfMediaFile"_s, 100));
        ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfList"_s, 2 * Saves));
        ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfItem"_s, 100));
    }

    QMap<QString, QString> group(const QString &name) const
    {
        return ConfigFile(phone.listFile(), false).getGroupEntriesKeyList(name);
    }
    /// That the group has as many entries as it says, and nothing left of another list.
    QStringList wholeList(const QString &name) const
    {
        QMap<QString, QString> entries = group(name);
        const int count = entries.take(u"counter"_s).toInt();
        entries.remove(u"currentitem"_s);
        entries.remove(u"currentplaylistname"_s);
        EXPECT_EQ(entries.size(), count) << qPrintable(name);
        return entries.values();
    }
    /// That it is the list of one player, too.
    void expectListOfOnePlayer(const QString &name) const
    {
        const QStringList list = wholeList(name);
        for (const QString &item : list)
            EXPECT_EQ(item.section(u' ', 0, 0), list.first().section(u' ', 0, 0)) << qPrintable(name);
    }
};

/// Has two players, "here" and "there", do the same, and waits for both.
/// \return whether both gave true
bool holdsForBoth(const std::function<bool(MP_MyLibrary &library, const QString &player)> &play)
{
    const auto run = [&play](const QString &player) {
        NullEngine nobody;
        MP_MyLibrary library(&nobody);
        return play(library, player);
    };
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(run(u"there"_s) && !testing::Test::HasFailure() ? 0 : 1);
    const bool isFine = run(u"here"_s);
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return isFine && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

QStringList items(const QString &first, int count)
{
    QStringList list;
    for (int number = 0; number < count; ++number)
        list.append(first + u' ' + QString::number(number));
    return list;
}

} // namespace

TEST_F(PlaylistSharing, SavingLosesNoneOfEachOthers)
{
    EXPECT_TRUE(holdsForBoth([](MP_MyLibrary &library, const QString &player) {
        for (int number = 0; number < Saves; ++number) {
            const QString name = player + QString::number(number);
            library.setCurrentPlayingList(u"http://"_s + name);
            if (library.savePlayList(name) != Done)
                return false;
        }
        return true;
    }));
    const ConfigFile file(phone.listFile(), false);
    EXPECT_EQ(file.readNumEntry(u"allplaylist"_s, u"counter"_s), 2 * Saves);
    QStringList names = file.getGroupEntriesKeyList(u"allplaylist"_s).values();
    EXPECT_EQ(names.removeDuplicates(), 0);
    const QSet<QString> known(names.cbegin(), names.cend());
    for (const QString &player : {u"here"_s, u"there"_s}) {
        for (int number = 0; number < Saves; ++number) {
            const QString name = player + QString::number(number);
            ASSERT_TRUE(known.contains(u"pl-"_s + name)) << qPrintable(name);
            ASSERT_EQ(file.readEntry(u"pl-"_s + name, u"1"_s), u"http://"_s + name);
        }
    }
}

TEST_F(PlaylistSharing, RenamingAndDeletingTouchNoneOfEachOthers)
{
    EXPECT_TRUE(holdsForBoth([](MP_MyLibrary &library, const QString &player) {
        const QString other = player + u"-renamed"_s;
        bool isFine = true;
        for (int round = 0; round < Rounds && isFine; ++round) {
            library.setCurrentPlayingList(items(player, 1 + round % 5));
            isFine = library.savePlayList(player) == Done && library.renamePlayList(player, other) &&
                     library.hasPlayList(other) && !library.hasPlayList(player) && library.deletePlayList(other) &&
                     !library.hasPlayList(other);
        }
        library.setCurrentPlayingList(player);
        return isFine && library.savePlayList(player) == Done;
    }));
    NullEngine nobody;
    MP_MyLibrary library(&nobody);
    QStringList names = library.getAllPlayLists();
    names.sort();
    EXPECT_EQ(names, (QStringList{u"here"_s, u"there"_s}));
    EXPECT_EQ(library.loadPlayList(u"here"_s), QStringList(u"here"_s));
    EXPECT_EQ(library.loadPlayList(u"there"_s), QStringList(u"there"_s));
}

TEST_F(PlaylistSharing, OnePlaylistStoredBackByBothIsOneOfTheTwo)
{
    EXPECT_TRUE(holdsForBoth([this](MP_MyLibrary &library, const QString &player) {
        for (int round = 0; round < Rounds; ++round) {
            library.setCurrentPlayingList(items(player, player == u"here"_s ? 2 : 9));
            library.setCurrentPlayingListName(u"Rock"_s);
            if (library.newPlayList() != Done)
                return false;
            expectListOfOnePlayer(u"pl-Rock"_s);
        }
        return true;
    }));
}

TEST_F(PlaylistSharing, SavedListsStoredByBothAreThoseOfOne)
{
    EXPECT_TRUE(holdsForBoth([this](MP_MyLibrary &library, const QString &player) {
        library.setCurrentPlayingList(items(player, player == u"here"_s ? 2 : 9));
        const QStringList links = items(player, player == u"here"_s ? 5 : 1);
        for (const QString &link : links)
            library.addItemToHistory(link);
        for (int round = 0; round < Rounds; ++round) {
            library.storeAllList();
            expectListOfOnePlayer(u"currentplaylist"_s);
            wholeList(u"history"_s); // the one who starts second restores the other's links
        }
        return true;
    }));
}

TEST_F(PlaylistSharing, DeletingAllLeavesNoItemsOfAPlaylistThatItRemoved)
{
    EXPECT_TRUE(holdsForBoth([this](MP_MyLibrary &library, const QString &player) {
        library.setCurrentPlayingList(items(player, 3));
        for (int round = 0; round < Rounds; ++round) {
            const bool isDone =
                player == u"here"_s ? library.deleteAllPlayLists() : library.savePlayList(u"Rock"_s) == Done;
            if (!isDone)
                return false;
            // Read at one time: either listed with its items or neither.
            const ConfigFile file(phone.listFile(), false);
            const bool isListed = file.readNumEntry(u"allplaylist"_s, u"counter"_s) == 1;
            EXPECT_EQ(file.getGroupEntriesKeyList(u"pl-Rock"_s).size(), isListed ? 4 : 0);
        }
        return true;
    }));
}
