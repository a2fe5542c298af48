// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/DirectoryReader.h"

#include "support/Folders.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <dirent.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>

using namespace Qt::StringLiterals;
using marvola::DirectoryReader;
using marvola::Listing;
using marvola::NameFilter;
using marvola::Reached;

namespace {

/// What the file system below is made to do.
enum class Kernel { Plain, TellsNoTypes, FailsAfterFirstBlock };
Kernel kernel = Kernel::Plain;
int blocksRead = 0;

void hideTypes(char *block, long size)
{
    for (long at = 0; at < size;) {
        unsigned short length = 0;
        memcpy(&length, block + at + offsetof(dirent64, d_reclen), sizeof length);
        block[at + long(offsetof(dirent64, d_type))] = DT_UNKNOWN;
        at += length;
    }
}

} // namespace

/// Takes the C library's place in this program.
extern "C" ssize_t getdents64(int fd, void *block, size_t size) noexcept
{
    if (kernel == Kernel::FailsAfterFirstBlock && blocksRead++ > 0) {
        errno = EIO;
        return -1;
    }
    const long got = ::syscall(SYS_getdents64, fd, block, size);
    if (kernel == Kernel::TellsNoTypes)
        hideTypes(static_cast<char *>(block), got);
    return got;
}

namespace {

class DirectoryReaderTest : public testing::Test
{
protected:
    ~DirectoryReaderTest() override { kernel = Kernel::Plain; }

    Listing list(const QString &path, const QString &patterns = u"*.mp3;"_s)
    {
        const NameFilter filter(patterns);
        DirectoryReader reader(filter);
        EXPECT_TRUE(reader.open(path).has_value());
        return reader.read();
    }
    static QStringList foldersOf(const Listing &listing, Reached reached)
    {
        QStringList names;
        for (const marvola::SubFolder &folder : listing.folders) {
            if (folder.reached == reached)
                names.append(folder.name);
        }
        return names;
    }
    void addAllKinds()
    {
        folders.addFile(u"file.mp3"_s);
        folders.addFile(u"other.txt"_s);
        folders.addFile(u".hidden.mp3"_s);
        folders.addFolder(u"folder.mp3"_s);
        folders.addFolder(u".hiddenfolder"_s);
        folders.addFifo(u"fifo.mp3"_s);
        folders.addLink(u"fileLink.mp3"_s, u"file.mp3"_s);
        folders.addLink(u"otherLink.mp3"_s, u"other.txt"_s);
        folders.addLink(u"folderLink"_s, u"folder.mp3"_s);
        folders.addLink(u"fifoLink.mp3"_s, u"fifo.mp3"_s);
        folders.addLink(u"nowhere.mp3"_s, u"missing"_s);
        folders.addLink(u"itself.mp3"_s, u"itself.mp3"_s);
    }

    Folders folders;
};

const QStringList filesOfAllKinds{u"file.mp3"_s, u"fileLink.mp3"_s, u"otherLink.mp3"_s};

} // namespace

TEST_F(DirectoryReaderTest, ListsRegularFilesAndFoldersAndFollowsLinks)
{
    addAllKinds();
    const Listing listing = list(folders.root());
    EXPECT_EQ(listing.files, filesOfAllKinds);
    EXPECT_EQ(foldersOf(listing, Reached::Directly), QStringList{u"folder.mp3"_s});
    EXPECT_EQ(foldersOf(listing, Reached::ThroughLink), QStringList{u"folderLink"_s});
}

TEST_F(DirectoryReaderTest, AsksForTypesThatTheFileSystemDoesNotTell)
{
    addAllKinds();
    kernel = Kernel::TellsNoTypes;
    const Listing listing = list(folders.root());
    EXPECT_EQ(listing.files, filesOfAllKinds);
    EXPECT_EQ(foldersOf(listing, Reached::Directly), QStringList{u"folder.mp3"_s});
    EXPECT_EQ(foldersOf(listing, Reached::ThroughLink), QStringList{u"folderLink"_s});
}

TEST_F(DirectoryReaderTest, FolderOfSeveralBlocksIsReadWholeOrUntilAnError)
{
    for (int i = 0; i < 1200; ++i)
        folders.addFile(u"a file with a long name so that one block cannot hold all %1.mp3"_s.arg(i));
    const qsizetype all = list(folders.root()).files.size();
    EXPECT_EQ(all, 1200);
    kernel = Kernel::FailsAfterFirstBlock;
    blocksRead = 0;
    const qsizetype some = list(folders.root()).files.size();
    EXPECT_GT(some, 0);
    EXPECT_LT(some, all);
}

TEST_F(DirectoryReaderTest, SortsIgnoringCase)
{
    for (const QString &name : {u"b.mp3"_s, u"C.mp3"_s, u"a.mp3"_s, u"Ä.mp3"_s, u"ä1.mp3"_s, u"_.mp3"_s})
        folders.addFile(name);
    // "_" stands between upper and lower case letters: letters are folded to the lower ones.
    EXPECT_EQ(list(folders.root()).files,
              QStringList({u"_.mp3"_s, u"a.mp3"_s, u"b.mp3"_s, u"C.mp3"_s, u"Ä.mp3"_s, u"ä1.mp3"_s}));
}

TEST_F(DirectoryReaderTest, NamesThatDifferByCaseAloneHaveOneOrder)
{
    for (const QString &name : {u"aB.mp3"_s, u"AB.mp3"_s, u"ab.mp3"_s, u"Ab.mp3"_s})
        folders.addFile(name);
    EXPECT_EQ(list(folders.root()).files, QStringList({u"AB.mp3"_s, u"Ab.mp3"_s, u"aB.mp3"_s, u"ab.mp3"_s}));
}

TEST_F(DirectoryReaderTest, SortsFoldersToo)
{
    for (const QString &name : {u"b"_s, u"C"_s, u"a"_s})
        folders.addFolder(name);
    EXPECT_EQ(foldersOf(list(folders.root()), Reached::Directly), QStringList({u"a"_s, u"b"_s, u"C"_s}));
}

TEST_F(DirectoryReaderTest, SkipsNamesThatAreNotUtf8)
{
    folders.addFileNamed("a\xff.mp3");
    folders.addFileNamed("b\xc3.mp3");
    folders.addFileNamed("c.mp3\xe9\x9f");
    folders.addFileNamed("\xed\xa0\x80.mp3"); // half of a surrogate pair
    folders.addFileNamed("\xc0\xaf.mp3");     // overlong
    folders.addFile(u"d.mp3"_s);
    EXPECT_EQ(list(folders.root(), u"*"_s).files, QStringList{u"d.mp3"_s});
}

TEST_F(DirectoryReaderTest, KeepsEveryNameThatIsUtf8)
{
    const QStringList names{u"\ufeffbom.mp3"_s,  u"音乐.mp3"_s,   u"line\nbreak.mp3"_s,
                            u"\U0001f3b5.mp3"_s, u"\ufffd.mp3"_s, u"e\u0301.mp3"_s,
                            u"é.mp3"_s};
    for (const QString &name : names)
        folders.addFileNamed(name.toUtf8());
    QStringList found = list(folders.root()).files;
    QStringList expected = names;
    found.sort();
    expected.sort();
    EXPECT_EQ(found, expected);
}

TEST_F(DirectoryReaderTest, SocketsAreNoFiles)
{
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const QByteArray path = folders.path(u"s.mp3"_s).toUtf8();
    ASSERT_LT(size_t(path.size()), sizeof address.sun_path);
    memcpy(address.sun_path, path.constData(), size_t(path.size()));
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    EXPECT_EQ(list(folders.root()).files, QStringList());
    ::close(socket);
}

TEST_F(DirectoryReaderTest, WhatIsNoFolderDoesNotOpen)
{
    const NameFilter filter(u"*"_s);
    DirectoryReader reader(filter);
    EXPECT_FALSE(reader.open(folders.path(u"missing"_s)).has_value());
    EXPECT_FALSE(reader.open(folders.addFile(u"file"_s)).has_value());
    EXPECT_FALSE(reader.open(folders.addFifo(u"fifo"_s)).has_value());
    EXPECT_FALSE(reader.open(folders.root() + QChar(0) + u"x"_s).has_value());
    EXPECT_FALSE(reader.open(QString()).has_value());
}

TEST_F(DirectoryReaderTest, OneFolderHasOneIdentity)
{
    folders.addFolder(u"a"_s);
    folders.addFolder(u"b"_s);
    folders.addLink(u"link"_s, u"a"_s);
    const NameFilter filter(u"*"_s);
    DirectoryReader reader(filter);
    const auto a = reader.open(folders.path(u"a"_s));
    const auto link = reader.open(folders.path(u"link"_s));
    const auto b = reader.open(folders.path(u"b"_s));
    ASSERT_TRUE(a && b && link);
    EXPECT_TRUE(*a == *link);
    EXPECT_FALSE(*a == *b);
    EXPECT_NE(*a < *b, *b < *a);
}
