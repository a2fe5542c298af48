// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/MediaWalker.h"

#include "support/Folders.h"

#include <QtCore/QRegularExpression>

#include <gmock/gmock.h>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using marvola::LinkLimits;
using marvola::MediaWalker;
using marvola::NameFilter;

namespace {

QStringList walked(const QString &dir, const QString &patterns = u"*.mp3;"_s, const LinkLimits &limits = {})
{
    QStringList files;
    MediaWalker(NameFilter(patterns), limits).walk(dir, files);
    return files;
}

/// "d/d/.../d" with \a levels names.
QString nested(int levels)
{
    return QStringList(levels, u"d"_s).join(u'/');
}

} // namespace

TEST(MediaWalker, FolderWithAndWithoutSlashGivesTheSamePaths)
{
    const Folders folders;
    folders.addFile(u"x.mp3"_s);
    folders.addFile(u"sub/y.mp3"_s);
    const QStringList expected{folders.root() + u"/x.mp3"_s, folders.root() + u"/sub/y.mp3"_s};
    EXPECT_EQ(walked(folders.root()), expected);
    EXPECT_EQ(walked(folders.root() + u'/'), expected);
}

TEST(MediaWalker, SortsIgnoringCase)
{
    const Folders folders;
    folders.addFile(u"B.mp3"_s);
    folders.addFile(u"a.mp3"_s);
    EXPECT_EQ(folders.below(walked(folders.root())), QStringList({u"a.mp3"_s, u"B.mp3"_s}));
}

TEST(MediaWalker, FilesComeBeforeSubfoldersAndDepthFirst)
{
    const Folders folders;
    folders.addFile(u"z.mp3"_s);
    folders.addFile(u"b/2.mp3"_s);
    folders.addFile(u"b/c/3.mp3"_s);
    folders.addFile(u"B2/4.mp3"_s);
    folders.addFile(u"a/1.mp3"_s);
    EXPECT_EQ(folders.below(walked(folders.root())),
              QStringList({u"z.mp3"_s, u"a/1.mp3"_s, u"b/2.mp3"_s, u"b/c/3.mp3"_s, u"B2/4.mp3"_s}));
}

TEST(MediaWalker, AppendsToTheList)
{
    const Folders folders;
    folders.addFile(u"x.mp3"_s);
    QStringList files{u"before"_s};
    MediaWalker walker{NameFilter(u"*.mp3"_s)};
    walker.walk(folders.root(), files);
    walker.walk(folders.root(), files);
    EXPECT_EQ(files, QStringList({u"before"_s, folders.path(u"x.mp3"_s), folders.path(u"x.mp3"_s)}));
}

TEST(MediaWalker, HiddenFoldersAreNotEntered)
{
    const Folders folders;
    folders.addFile(u".thumbnails/x.mp3"_s);
    EXPECT_EQ(walked(folders.root()), QStringList());
    EXPECT_EQ(walked(folders.path(u".thumbnails"_s)).size(), 1) << "unless asked for";
}

TEST(MediaWalker, EmptyPathIsNotWalked)
{
    EXPECT_EQ(walked(QString(), u"*"_s), QStringList());
    EXPECT_EQ(walked(u""_s, u"*"_s), QStringList());
}

TEST(MediaWalker, WithoutPatternsNothingIsFound)
{
    const Folders folders;
    folders.addFile(u"x.mp3"_s);
    EXPECT_EQ(walked(folders.root(), QString()), QStringList());
}

TEST(MediaWalker, MissingFolderListsNothing)
{
    const Folders folders;
    EXPECT_EQ(walked(folders.path(u"missing"_s)), QStringList());
    EXPECT_EQ(walked(folders.addFile(u"file.mp3"_s)), QStringList());
}

TEST(MediaWalker, ThirtyTwoLevelsBelowThePlaceAreFoundAndThirtyThreeAreNot)
{
    const Folders folders;
    folders.addFile(nested(32) + u"/found.mp3"_s);
    folders.addFile(nested(33) + u"/lost.mp3"_s);
    EXPECT_EQ(folders.below(walked(folders.root())), QStringList{nested(32) + u"/found.mp3"_s});
}

TEST(MediaWalker, DepthCountsFromThePlaceNotFromTheWalkedFolder)
{
    const Folders folders;
    folders.addFile(nested(32) + u"/found.mp3"_s);
    folders.addFile(nested(33) + u"/lost.mp3"_s);
    EXPECT_EQ(folders.below(walked(folders.path(nested(10)))), QStringList{nested(32) + u"/found.mp3"_s});
    EXPECT_EQ(walked(folders.path(nested(33))), QStringList());
}

TEST(MediaWalker, DepthCountsFromThePlaceInsideAnother)
{
    const Folders folders;
    const QString file = folders.addFile(nested(40) + u"/found.mp3"_s);
    EXPECT_EQ(walked(folders.root()), QStringList());
    qputenv("CARD1_MOUNT_PATH", folders.path(nested(20)).toUtf8());
    EXPECT_EQ(walked(folders.root()), QStringList{file});
    qunsetenv("CARD1_MOUNT_PATH");
}

TEST(MediaWalker, LinksToFilesAndFoldersAreFollowed)
{
    const Folders folders;
    folders.addFile(u"real/x.mp3"_s);
    folders.addLink(u"link"_s, u"real"_s);
    folders.addLink(u"y.mp3"_s, u"real/x.mp3"_s);
    EXPECT_EQ(folders.below(walked(folders.root())), QStringList({u"y.mp3"_s, u"link/x.mp3"_s, u"real/x.mp3"_s}));
}

TEST(MediaWalker, CycleIsEndedByTheDepthLimitAlone)
{
    const Folders folders;
    folders.addFile(u"x.mp3"_s);
    folders.addLink(u"loop"_s, u"."_s);
    const QStringList files = folders.below(walked(folders.root()));
    ASSERT_EQ(files.size(), 33);
    for (int level = 0; level <= 32; ++level)
        EXPECT_EQ(files.at(level), u"loop/"_s.repeated(level) + u"x.mp3"_s);
}

TEST(MediaWalker, TwoLinksToAFolderAboveDoNotMultiply)
{
    const Folders folders;
    folders.addFile(u"x.mp3"_s);
    folders.addLink(u"loop1"_s, u"."_s);
    folders.addLink(u"loop2"_s, u"."_s);
    EXPECT_EQ(walked(folders.root()).size(), 1 + LinkLimits().perFolderAbove);
}

TEST(MediaWalker, LinksToAllFoldersAboveDoNotMultiply)
{
    const Folders folders;
    for (int level = 0; level < 33; ++level) {
        QString folder = nested(level);
        folder += level > 0 ? u"/"_s : QString();
        folders.addFile(folder + u"x.mp3"_s);
        for (int above = 0; above <= level; ++above)
            folders.addLink(folder + u"up%1"_s.arg(above), QDir(folders.path(nested(level - above))).path());
    }
    const auto enteredByLink = [&folders](const LinkLimits &limits) {
        const QStringList files = folders.below(walked(folders.root(), u"*.mp3"_s, limits));
        return files.filter(QRegularExpression(u"(^|/)up[0-9]+/x\\.mp3$"_s)).size();
    };
    LinkLimits limits;
    limits.allFoldersAbove = 100;
    EXPECT_EQ(enteredByLink(limits), 100);
    limits.allFoldersAbove = 0;
    EXPECT_EQ(enteredByLink(limits), 0);
    limits = LinkLimits();
    limits.perFolderAbove = 1'000'000; // so that no folder reaches its own limit
    EXPECT_EQ(enteredByLink(limits), 1024);
}

TEST(MediaWalker, FoldersAboveAreCountedEachAndTogether)
{
    const Folders folders;
    folders.addFile(u"x.mp3"_s);
    folders.addFile(u"a/y.mp3"_s);
    folders.addLink(u"a/self"_s, u"."_s);
    folders.addLink(u"a/up"_s, u".."_s);
    LinkLimits limits;
    limits.perFolderAbove = 3;
    limits.allFoldersAbove = 5;
    const QStringList files = walked(folders.root(), u"*.mp3"_s, limits);
    EXPECT_EQ(files.filter(u"/self/y.mp3"_s).size(), 3) << "the limit of one folder";
    EXPECT_EQ(files.filter(u"/up/x.mp3"_s).size(), 2) << "what the limit of all leaves";
}

TEST(MediaWalker, ChainsOfDoubleLinksDoNotMultiply)
{
    const Folders folders;
    const Folders store;
    qputenv("TROVE_DATA_PATH", folders.root().toUtf8());
    const int length = 15;
    for (int i = 0; i < length; ++i) {
        store.addFile(u"%1/%1.mp3"_s.arg(i));
        for (const QString &name : {u"a"_s, u"b"_s})
            store.addLink(u"%1/"_s.arg(i) + name, store.path(QString::number(i + 1)));
    }
    folders.addLink(u"chain"_s, store.path(u"0"_s));
    folders.addFile(u"real/behind.mp3"_s);
    const QStringList files = folders.below(walked(folders.root()));
    for (int i = 0; i < length; ++i)
        EXPECT_EQ(files.filter(u"/%1.mp3"_s.arg(i)).size(), std::min(1 << i, 4096)) << i;
    EXPECT_EQ(files.constLast(), u"real/behind.mp3"_s) << "real folders are always entered";
}

TEST(MediaWalker, AnyNumberOfFoldersMayHaveALinkEach)
{
    constexpr int Count = 4200;
    const Folders folders;
    const Folders store;
    qputenv("TROVE_DATA_PATH", folders.root().toUtf8());
    for (int i = 0; i < Count; ++i) {
        store.addFile(u"%1/x.mp3"_s.arg(i));
        folders.addLink(QString::number(i), store.path(QString::number(i)));
    }
    EXPECT_EQ(walked(folders.root()).size(), Count);
}

TEST(MediaWalker, NoLinkIsEnteredAfterTooManyFilesBelowLinks)
{
    const Folders folders;
    const Folders store;
    qputenv("TROVE_DATA_PATH", folders.root().toUtf8());
    for (int i = 1; i <= 3; ++i)
        folders.addFile(u"%1.mp3"_s.arg(i));
    store.addFile(u"one/1.mp3"_s);
    store.addFile(u"one/sub/2.mp3"_s);
    store.addFile(u"one/sub/3.mp3"_s);
    folders.addLink(u"a"_s, store.path(u"one"_s));
    folders.addLink(u"b"_s, store.path(u"one"_s));
    folders.addFile(u"c/real.mp3"_s);
    folders.addLink(u"d"_s, store.path(u"one"_s));
    const QStringList own{u"1.mp3"_s, u"2.mp3"_s, u"3.mp3"_s};
    const QStringList inA{u"a/1.mp3"_s, u"a/sub/2.mp3"_s, u"a/sub/3.mp3"_s};
    const QStringList inB{u"b/1.mp3"_s, u"b/sub/2.mp3"_s, u"b/sub/3.mp3"_s};
    const QStringList inC{u"c/real.mp3"_s};
    const auto found = [&folders](qsizetype limit) {
        LinkLimits limits;
        limits.filesBelowLinks = limit;
        return folders.below(walked(folders.root(), u"*.mp3"_s, limits));
    };
    EXPECT_EQ(found(0), own + inC);
    EXPECT_EQ(found(1), own + inA + inC) << "real folders below a link are entered to the end";
    EXPECT_EQ(found(3), own + inA + inC) << "those in a real folder below a link count too";
    EXPECT_EQ(found(4), own + inA + inB + inC);
    EXPECT_EQ(found(6), own + inA + inB + inC) << "those beside the links do not count";
    EXPECT_EQ(found(7).size(), 13) << "all";
}

TEST(MediaWalker, FilesBelowLinksAreBoundedUnlessToldOtherwise)
{
    const Folders folders;
    const Folders store;
    qputenv("TROVE_DATA_PATH", folders.root().toUtf8());
    for (int i = 0; i < 256; ++i)
        store.addFile(u"%1.mp3"_s.arg(i));
    for (int i = 0; i < 1030; ++i)
        folders.addLink(QString::number(i), store.root());
    EXPECT_EQ(walked(folders.root()).size(), 262144);
}

TEST(MediaWalker, NoLinkIsEnteredAfterTooManyEntriesBelowLinks)
{
    const Folders folders;
    const Folders store;
    qputenv("TROVE_DATA_PATH", folders.root().toUtf8());
    store.addFile(u"one/x.mp3"_s);
    store.addFile(u"one/no media.txt"_s);
    store.addFile(u"one/sub/.hidden"_s);
    for (const QString &name : {u"a"_s, u"b"_s, u"c"_s})
        folders.addLink(name, store.path(u"one"_s));
    folders.addFile(u"real/y.mp3"_s);
    for (int i = 0; i < 20; ++i)
        folders.addFile(u"real/%1.txt"_s.arg(i));
    const auto entered = [&folders](qsizetype limit) {
        LinkLimits limits;
        limits.entriesBelowLinks = limit;
        QStringList files = folders.below(walked(folders.root(), u"*.mp3"_s, limits));
        EXPECT_EQ(files.takeLast(), u"real/y.mp3"_s) << "real folders are always entered";
        return files.size();
    };
    EXPECT_EQ(entered(0), 0);
    EXPECT_EQ(entered(1), 1);
    const int each = 2 + 3 + 1; // folders and what they hold
    EXPECT_EQ(entered(each + 1), entered(each + 4)) << "\".\" and \"..\" of each folder may count";
    EXPECT_EQ(entered(2 * (each + 4)), 2) << "those beside the links do not count";
    EXPECT_EQ(entered(2 * (each + 4) + 1), 3);
}

TEST(MediaWalker, FoldersWithoutMediaThatLinkToOneAnotherAreBounded)
{
    const Folders folders;
    const Folders store;
    qputenv("TROVE_DATA_PATH", folders.root().toUtf8());
    const int count = 8;
    for (int from = 0; from < count; ++from) {
        store.addFolder(QString::number(from));
        for (int to = 0; to < count; ++to)
            store.addLink(u"%1/%2"_s.arg(from).arg(to), store.path(QString::number(to)));
    }
    store.addFile(u"0/x.mp3"_s);
    folders.addLink(u"mesh"_s, store.path(u"0"_s));
    LinkLimits limits;
    limits.perFolderAbove = limits.allFoldersAbove = limits.perFolderElsewhere = 1'000'000'000;
    limits.entriesBelowLinks = 10'000;
    EXPECT_LT(walked(folders.root(), u"*.mp3"_s, limits).size(), 10'000 / count);
    EXPECT_GT(walked(folders.root(), u"*.mp3"_s, limits).size(), 50);
}

TEST(MediaWalker, EntriesBelowLinksAreBoundedUnlessToldOtherwise)
{
    const Folders folders;
    const Folders store;
    qputenv("TROVE_DATA_PATH", folders.root().toUtf8());
    store.addFile(u"x.mp3"_s);
    for (int i = 0; i < 2045; ++i)
        store.addFile(u".%1"_s.arg(i));
    for (int i = 0; i < 520; ++i)
        folders.addLink(QString::number(i), store.root());
    // With "." and ".." where the filesystem tells them: 2,049 with the folder itself, else 2,047.
    EXPECT_THAT(walked(folders.root()).size(), testing::AllOf(testing::Ge(512), testing::Le(513)));
}

TEST(MediaWalker, EachWalkCountsItsOwnLinks)
{
    const Folders folders;
    folders.addFile(u"x.mp3"_s);
    folders.addLink(u"loop1"_s, u"."_s);
    folders.addLink(u"loop2"_s, u"."_s);
    folders.addLink(u"other/link"_s, folders.addFolder(u"other/target"_s));
    folders.addFile(u"other/target/y.mp3"_s);
    LinkLimits limits;
    limits.perFolderElsewhere = 1;
    limits.filesBelowLinks = 50;
    limits.entriesBelowLinks = 250;
    MediaWalker walker(NameFilter(u"*.mp3"_s), limits);
    QStringList first;
    QStringList second;
    walker.walk(folders.root(), first);
    walker.walk(folders.root(), second);
    EXPECT_EQ(first, second);
}

/// Folders below one another whose path is longer than the kernel takes, made and removed step by step.
class LongPath
{
public:
    LongPath(const QString &root, int levels, const char *file)
    {
        m_folders.push_back(::open(root.toUtf8().constData(), O_RDONLY | O_DIRECTORY));
        for (int i = 0; i < levels; ++i) {
            EXPECT_EQ(::mkdirat(m_folders.back(), m_name.constData(), 0777), 0);
            m_folders.push_back(::openat(m_folders.back(), m_name.constData(), O_RDONLY | O_DIRECTORY));
            ::close(::openat(m_folders.back(), file, O_CREAT | O_WRONLY, 0666));
        }
        m_file = file;
    }
    ~LongPath()
    {
        while (m_folders.size() > 1) {
            ::unlinkat(m_folders.back(), m_file, 0);
            ::close(m_folders.back());
            m_folders.pop_back();
            EXPECT_EQ(::unlinkat(m_folders.back(), m_name.constData(), AT_REMOVEDIR), 0);
        }
        ::close(m_folders.back());
    }
    LongPath(const LongPath &) = delete;
    LongPath &operator=(const LongPath &) = delete;

private:
    const QByteArray m_name{250, 'n'};
    const char *m_file = nullptr;
    std::vector<int> m_folders;
};

TEST(MediaWalker, PathsLongerThanTheKernelTakesArePassedOver)
{
    const Folders folders;
    const LongPath path(folders.root(), 20, "in long.mp3");
    folders.addFile(u"zzz/behind.mp3"_s);
    const QStringList files = walked(folders.root());
    EXPECT_EQ(files.size(), (PATH_MAX - 1 - folders.root().size() - int(strlen("/in long.mp3"))) / 251 + 1);
    for (const QString &file : files)
        EXPECT_TRUE(QFile::exists(file)) << file.size();
    EXPECT_EQ(files.constLast(), folders.path(u"zzz/behind.mp3"_s));
}
