// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// What the medium and the kernel refuse, and filesystems that a test cannot mount.

#include "platform/DiskFile.h"

#include "Folder.h"
#include "platform/FileDescriptor.h"
#include "platform/SafeFile.h"
#include "support/RefusedCall.h"

#include <cerrno>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

/// What every folder's filesystem is taken for; 0: for what it is.
unsigned int filesystemType = 0;

} // namespace

extern "C" int __real_statfs(const char *path, struct statfs *status);
extern "C" int __wrap_statfs(const char *path, struct statfs *status);
extern "C" int __wrap_statfs(const char *path, struct statfs *status)
{
    const int result = __real_statfs(path, status);
    if (filesystemType != 0)
        status->f_type = static_cast<decltype(status->f_type)>(filesystemType);
    return result;
}

namespace {

constexpr qsizetype MaxSize = 1000;

#ifdef SYS_mkdir
constexpr unsigned int MakingDirectory = SYS_mkdir;
#else
constexpr unsigned int MakingDirectory = SYS_mkdirat;
#endif
constexpr auto ReadFlags = static_cast<std::uint32_t>(O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
constexpr auto DirectoryFlags = static_cast<std::uint32_t>(O_RDONLY | O_DIRECTORY | O_CLOEXEC);

RefusedCall opening(std::uint32_t flags, int error)
{
    return {SYS_openat, error, 2, flags};
}

/// Every folder's filesystem is taken for another one meanwhile.
class TakenFor
{
public:
    explicit TakenFor(unsigned int type) { filesystemType = type; }
    ~TakenFor() { filesystemType = 0; }
    TakenFor(const TakenFor &) = delete;
    TakenFor &operator=(const TakenFor &) = delete;
};

ino_t inodeOf(const QByteArray &path)
{
    struct stat status = {};
    EXPECT_EQ(::stat(path.constData(), &status), 0);
    return status.st_ino;
}

SafeFile::Merge becoming(const QByteArray &content)
{
    return [content](const TextFrame &, QByteArray &file) {
        file += content;
        return true;
    };
}

} // namespace

TEST(DiskFileFaults, WhatTheMediumCannotReadIsDamaged)
{
    const Folder folder;
    folder.put(u"file"_s, QByteArray(777, 'x'));
    const QByteArray path = folder.encodedPath(u"file"_s);
    const auto outcomeIs = [&](DiskFile::Outcome outcome) {
        return [&path, outcome] {
            const DiskFile file = readDiskFile(path, MaxSize);
            return file.outcome == outcome && file.bytes.isEmpty();
        };
    };
    EXPECT_TRUE(holdsWithout({SYS_read, EIO, 2, 777}, outcomeIs(DiskFile::Outcome::Damaged)));
    EXPECT_TRUE(holdsWithout({SYS_read, ENOMEM, 2, 777}, outcomeIs(DiskFile::Outcome::Refused)));
    EXPECT_TRUE(holdsWithout(opening(ReadFlags, EIO), outcomeIs(DiskFile::Outcome::Damaged)));
    EXPECT_TRUE(holdsWithout(opening(ReadFlags, EMFILE), outcomeIs(DiskFile::Outcome::Refused)));
    EXPECT_EQ(readDiskFile(path, MaxSize).bytes.size(), 777) << "with nothing refused";
}

TEST(DiskFileFaults, ANewFileThatIsNotDurableIsNotLeft)
{
    const Folder folder;
    const QByteArray path = folder.encodedPath(u"new"_s);
    EXPECT_TRUE(holdsWithout({SYS_fdatasync, EIO}, [&] { return createDiskFile(path, "bytes", path) == EIO; }));
    EXPECT_TRUE(holdsWithout({SYS_pwrite64, ENOSPC}, [&] { return createDiskFile(path, "bytes", path) == ENOSPC; }));
    EXPECT_EQ(folder.names(), QStringList());
}

TEST(DiskFileFaults, WhoMayNotGiveFilesAwayStillGivesThemTheGroup)
{
    const Folder folder;
    folder.put(u"model"_s, "x");
    const QByteArray model = folder.encodedPath(u"model"_s);
    const QByteArray path = folder.encodedPath(u"new"_s);
    constexpr uid_t Owner = 12345;
    constexpr gid_t Group = 54321;
    if (::chown(model.constData(), Owner, Group) != 0)
        GTEST_SKIP() << "only root makes a file of others";
    EXPECT_TRUE(holdsWithout({SYS_fchown, EPERM, 1, Owner}, [&] { return createDiskFile(path, "x", model) == 0; }));
    struct stat status = {};
    ASSERT_EQ(::stat(path.constData(), &status), 0);
    EXPECT_EQ(status.st_uid, ::geteuid());
    EXPECT_EQ(status.st_gid, Group);
}

TEST(DiskFileFaults, ADirectoryThatIsNotDurableIsNotMade)
{
    const Folder folder;
    const QByteArray path = folder.encodedPath(u"a/b"_s);
    EXPECT_TRUE(holdsWithout({MakingDirectory, EROFS}, [&] { return !makeDirectories(path); }));
    EXPECT_EQ(folder.names(), QStringList());
    EXPECT_TRUE(holdsWithout({SYS_fsync, EIO}, [&] { return !makeDirectories(path); }));
    EXPECT_TRUE(makeDirectories(path));
}

TEST(DiskFileFaults, WhereDirectoriesCannotBeSynchronisedItIsNotMissed)
{
    const Folder folder;
    folder.put(u"file"_s, "x");
    const QByteArray path = folder.encodedPath(u"file"_s);
    for (const int error : {EINVAL, ENOTSUP, ENOSYS, EROFS})
        EXPECT_TRUE(holdsWithout({SYS_fsync, error}, [&] { return syncRenamed(path); })) << error;
    for (const int error : {EIO, ENOSPC, EDQUOT})
        EXPECT_TRUE(holdsWithout({SYS_fsync, error}, [&] { return !syncRenamed(path); })) << error;
    EXPECT_TRUE(holdsWithout(opening(DirectoryFlags, EACCES), [&] { return syncRenamed(path); }));
    EXPECT_TRUE(holdsWithout(opening(DirectoryFlags, EIO), [&] { return !syncRenamed(path); }));
}

TEST(DiskFileFaults, AFileThatCannotGrowKeepsItsLength)
{
    const Folder folder;
    folder.put(u"file"_s, "abc");
    const QByteArray path = folder.encodedPath(u"file"_s);
    const auto grows = [&path] {
        const FileDescriptor file = FileDescriptor::open(path.constData(), O_RDWR);
        return growDiskFile(file.get(), 8);
    };
    for (const int call : {SYS_fsync, SYS_pwrite64})
        EXPECT_TRUE(holdsWithout({static_cast<unsigned int>(call), EIO}, [&] { return !grows(); })) << call;
    EXPECT_EQ(folder.bytes(u"file"_s), "abc");
    EXPECT_FALSE(growDiskFile(-1, 8));
    EXPECT_TRUE(holdsWithout({SYS_fallocate, EOPNOTSUPP}, grows)) << "then writing finds the space";
    EXPECT_EQ(folder.bytes(u"file"_s), "abc\n\n\n\n\n");
}

TEST(DiskFileFaults, RenamesAreFragileOnTheFilesystemsOfCards)
{
    const Folder folder;
    const QByteArray path = folder.encodedPath(QString());
    for (const unsigned int type : {0x4d44U, 0x2011BAB0U, 0x65735546U}) {
        const TakenFor filesystem(type);
        EXPECT_TRUE(hasFragileRenames(path)) << type;
    }
    for (const unsigned int type : {0xEF53U, 0x01021994U, 0x9123683EU}) {
        const TakenFor filesystem(type);
        EXPECT_FALSE(hasFragileRenames(path)) << type;
    }
    EXPECT_TRUE(hasFragileRenames(folder.encodedPath(u"missing"_s))) << "what is not known may be one of them";
}

TEST(DiskFileFaults, WhereRenamesAreFragileTheRenamedFileIsMadeDurable)
{
    const Folder folder;
    folder.put(u"file"_s, "x");
    const QByteArray path = folder.encodedPath(u"file"_s);
    const TakenFor card(MSDOS_SUPER_MAGIC);
    EXPECT_TRUE(syncRenamed(path));
    // An error that a directory is forgiven, but a file is not.
    EXPECT_TRUE(holdsWithout({SYS_fsync, EINVAL}, [&] { return !syncRenamed(path); }));
    EXPECT_TRUE(syncRenamed(folder.encodedPath(u"gone"_s))) << "what is gone meanwhile needs no more";
}

TEST(DiskFileFaults, WhereRenamesAreFragileAFileIsChangedInPlace)
{
    const Folder folder;
    const TakenFor card(MSDOS_SUPER_MAGIC);
    SafeFile file(folder.path(u"file"_s));
    ASSERT_TRUE(file.commit(becoming("[a]\nb=1\n")).has_value());
    const ino_t inode = inodeOf(folder.encodedPath(u"file"_s));
    ASSERT_TRUE(file.commit(becoming("[a]\nb=2\n")).has_value());
    EXPECT_EQ(inodeOf(folder.encodedPath(u"file"_s)), inode);
    EXPECT_EQ(file.read().content(), "[a]\nb=2\n");
}

TEST(DiskFileFaults, LinksThatGoRoundEndSomewhere)
{
    const Folder folder;
    ASSERT_TRUE(QFile::link(u"loop"_s, folder.path(u"loop"_s)));
    EXPECT_EQ(resolvedPath(folder.encodedPath(u"loop"_s)), folder.encodedPath(u"loop"_s));
}
