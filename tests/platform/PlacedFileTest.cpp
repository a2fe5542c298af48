// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/PlacedFile.h"

#include "support/OpenFiles.h"

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/resource.h>

using namespace Qt::StringLiterals;
using marvola::PlacedFile;

namespace {

/// A file in a card's folder, and what happens to that folder.
class PlacedFileTest : public testing::Test
{
protected:
    PlacedFileTest() { QDir().mkpath(card); }

    void pull() { ASSERT_TRUE(QDir().rename(card, away)); }
    void putOtherIn() { ASSERT_TRUE(QDir().mkpath(card)); }
    void changeForOther()
    {
        pull();
        putOtherIn();
    }
    void putBack() { ASSERT_TRUE(QDir().rmdir(card) && QDir().rename(away, card)); }
    bool isCardEmpty() const { return QDir(card).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot); }
    static bool save(const PlacedFile &file)
    {
        ConfigFile open = file.open();
        open.writeEntry(u"group"_s, u"key"_s, u"value"_s);
        return open.flush();
    }

    QTemporaryDir root;
    QString card = root.filePath(u"card"_s);
    QString away = root.filePath(u"away"_s);
    QString path = card + u"/list"_s;
};

} // namespace

TEST_F(PlacedFileTest, IsWrittenInItsFolder)
{
    const PlacedFile file = PlacedFile::here(path);
    EXPECT_EQ(file.path(), path);
    EXPECT_TRUE(file.isInPlace());
    EXPECT_TRUE(save(file));
    EXPECT_EQ(ConfigFile(path, false).readEntry(u"group"_s, u"key"_s), u"value"_s);
}

TEST_F(PlacedFileTest, IsNotWrittenInAnotherFolder)
{
    const PlacedFile file = PlacedFile::here(path);
    changeForOther();
    EXPECT_FALSE(file.isInPlace());
    EXPECT_FALSE(save(file));
    EXPECT_TRUE(isCardEmpty());
    putBack();
    EXPECT_TRUE(file.isInPlace());
    EXPECT_TRUE(save(file));
}

TEST_F(PlacedFileTest, FolderThatIsRemovedAndMadeAgainIsAnother)
{
    const PlacedFile file = PlacedFile::here(path);
    // A number that is free again is often the next one to be given.
    for (int time = 0; time < 3; ++time) {
        ASSERT_TRUE(QDir().rmdir(card) && QDir().mkdir(card));
        EXPECT_FALSE(file.isInPlace());
        EXPECT_FALSE(save(file));
    }
}

TEST_F(PlacedFileTest, HoldsItsFolderUntilItLetsGo)
{
    const PlacedFile file = PlacedFile::here(path);
    const PlacedFile copy = file;
    EXPECT_EQ(openAt(card), 1);
    copy.letGo();
    EXPECT_EQ(openAt(card), 0);
    EXPECT_TRUE(file.isInPlace());
    EXPECT_TRUE(save(file));
}

TEST_F(PlacedFileTest, KnowsItsFolderWithAllDescriptorsInUse)
{
#ifdef MARVOLA_SANITIZED
    GTEST_SKIP() << "a sanitizer needs descriptors too, to look at objects";
#endif
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none = {0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const PlacedFile file = PlacedFile::here(path);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_TRUE(file.medium());
    EXPECT_TRUE(file.isInPlace());
    changeForOther();
    EXPECT_FALSE(file.isInPlace());
    EXPECT_FALSE(save(file));
}

TEST_F(PlacedFileTest, KnowsItsMediumUnlessItHasNoFolder)
{
    EXPECT_TRUE(PlacedFile::here(path).medium());
    EXPECT_EQ(PlacedFile::here(path).medium(), PlacedFile::here(card + u"/../card/list"_s).medium());
    EXPECT_FALSE(PlacedFile(path).medium());
    EXPECT_FALSE(PlacedFile::here(u"/proc/self/nothing/list"_s).medium());
    EXPECT_FALSE(PlacedFile::here(u"/proc/list"_s).medium() == PlacedFile::here(path).medium());
}

TEST_F(PlacedFileTest, DoesNotMakeItsFolderAgain)
{
    const PlacedFile file = PlacedFile::here(path);
    pull();
    EXPECT_FALSE(save(file));
    ConfigFile locked = file.open();
    EXPECT_FALSE(locked.lockForUpdate());
    EXPECT_FALSE(QFile::exists(card));
}

TEST_F(PlacedFileTest, IsNotWrittenInAFolderThatComesAfterTheLock)
{
    ConfigFile locked = PlacedFile::here(path).open();
    EXPECT_TRUE(locked.lockForUpdate());
    locked.writeEntry(u"group"_s, u"key"_s, u"value"_s);
    changeForOther();
    EXPECT_FALSE(locked.flush());
    EXPECT_TRUE(isCardEmpty());
    putBack();
    EXPECT_TRUE(locked.flush()) << "what was to be written is kept";
}

TEST_F(PlacedFileTest, OfAPathAloneIsWrittenWhereverThatLeads)
{
    const PlacedFile file(path);
    changeForOther();
    EXPECT_TRUE(file.isInPlace());
    EXPECT_TRUE(save(file));
    EXPECT_TRUE(save(PlacedFile(card + u"/new/list"_s))) << "its folders are made";
}

TEST_F(PlacedFileTest, OfALinkIsInTheFolderThatTheLinkLeadsTo)
{
    const QString link = root.filePath(u"link"_s);
    ASSERT_TRUE(QFile::link(path, link));
    const PlacedFile file = PlacedFile::here(link);
    EXPECT_TRUE(save(file));
    changeForOther();
    EXPECT_FALSE(save(file));
    EXPECT_TRUE(isCardEmpty());
}

TEST_F(PlacedFileTest, OfNoPathIsNone)
{
    EXPECT_TRUE(PlacedFile::here({}).isEmpty());
    EXPECT_FALSE(PlacedFile::here({}).open().writeEntry(u"group"_s, u"key"_s, u"value"_s));
}
