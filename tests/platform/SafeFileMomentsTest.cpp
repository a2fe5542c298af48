// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/SafeFile.h"

#include "Folder.h"
#include "SealedBytes.h"
#include "platform/Crc32.h"
#include "platform/FileDescriptor.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <functional>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

/// Called before each read() of this program; whether that is to fail with EIO.
std::function<bool(int fd)> onRead;

/// Called once, before the next lstat() of this program.
std::function<void()> onLook;

/// How often this program had something made durable, and which of these calls fails, counted from 1.
std::atomic<int> syncs = 0;
std::atomic<int> failingSync = 0;

bool isSyncFailing()
{
    if (++syncs != failingSync)
        return false;
    errno = EIO;
    return true;
}

} // namespace

extern "C" {

// These names are the linker's: it sends a call of read() to __wrap_read(), and of __real_read() to read().
// NOLINTBEGIN(bugprone-reserved-identifier)
ssize_t __real_read(int fd, void *buffer, size_t size);

ssize_t __wrap_read(int fd, void *buffer, size_t size)
{
    if (!onRead || !onRead(fd))
        return __real_read(fd, buffer, size);
    errno = EIO;
    return -1;
}

int __real_fsync(int fd);
int __real_fdatasync(int fd);

int __wrap_fsync(int fd)
{
    return isSyncFailing() ? -1 : __real_fsync(fd);
}

int __wrap_fdatasync(int fd)
{
    return isSyncFailing() ? -1 : __real_fdatasync(fd);
}

int __real_lstat(const char *path, struct stat *status);

int __wrap_lstat(const char *path, struct stat *status)
{
    // Other tests look in several threads, where nothing may be written.
    if (onLook)
        std::exchange(onLook, nullptr)();
    return __real_lstat(path, status);
}
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

const QString name = u"file"_s;
const QString copyName = u"file.new"_s;
const QByteArray oldContent = "[g]\nk=old\n";
const QByteArray newContent = "[g]\nk=new\n";
constexpr qsizetype FileSize = 3000;

/// What happens at one moment of a SafeFile's work, beside a whole copy that a power cut has left.
class SafeFileMoments : public testing::Test
{
protected:
    void SetUp() override { putCopy(); }
    void TearDown() override
    {
        onRead = nullptr;
        onLook = nullptr;
        failingSync = 0;
    }

    void putCopy() const { folder.put(copyName, sealedBytes(newContent, FileSize, crc32(oldContent))); }
    SafeFile file() const { return SafeFile(folder.path(name)); }

    /// From now on the medium does not give the copy's bytes.
    void makeCopyUnreadable() const
    {
        onRead = [copy = folder.encodedPath(copyName)](int fd) {
            char target[PATH_MAX];
            const QByteArray entry = "/proc/self/fd/" + QByteArray::number(fd);
            const ssize_t size = ::readlink(entry.constData(), target, sizeof target);
            return QByteArrayView(target, std::max<ssize_t>(size, 0)) == copy;
        };
    }
    static bool commit(SafeFile &file)
    {
        const auto merge = [](const TextFrame &now, QByteArray &bytes) {
            bytes += now.content().toByteArray() + "l=1\n";
            return true;
        };
        return file.commit(merge).has_value();
    }

    const Folder folder;
};

} // namespace

TEST_F(SafeFileMoments, CopyThatMayBeAllThereIsStaysWhereItCannotBeRead)
{
    const QByteArray blank(FileSize, '\0');
    const QByteArray torn = sealedBytes(oldContent, FileSize).replace("old", "o#d");
    for (const QByteArray &main : {QByteArray(), blank, torn}) {
        if (!main.isNull())
            folder.put(name, main);
        putCopy();
        makeCopyUnreadable();
        SafeFile unlucky = file();
        EXPECT_FALSE(commit(unlucky));
        EXPECT_EQ(unlucky.read().content(), "");
        EXPECT_TRUE(unlucky.isUnread());
        EXPECT_FALSE(commit(unlucky));
        onRead = nullptr;
        EXPECT_EQ(file().read().content(), newContent);
    }
}

TEST_F(SafeFileMoments, CopyThatCannotBeReadIsNoHindranceToAWholeFile)
{
    folder.put(name, sealedBytes(oldContent, FileSize));
    makeCopyUnreadable();
    SafeFile whole = file();
    EXPECT_EQ(whole.read().content(), oldContent);
    EXPECT_FALSE(whole.isUnread());
    EXPECT_TRUE(commit(whole));
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST_F(SafeFileMoments, CopyThatTakesTheFilesPlaceMeanwhileIsSeen)
{
    bool hasBeenTaken = false;
    onLook = [&] { hasBeenTaken = file().read().content() == newContent; };
    EXPECT_EQ(file().read().content(), newContent);
    EXPECT_TRUE(hasBeenTaken);
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST_F(SafeFileMoments, CommitThatMakesTheFileLongerWaitsForTheSpaceAndTheLengthAndTheJournal)
{
    const QByteArray tight = sealedBytes(oldContent);
    folder.put(u"probe"_s, "");
    const FileDescriptor probe = FileDescriptor::open(folder.encodedPath(u"probe"_s).constData(), O_WRONLY);
    const bool canReserve = ::fallocate(probe.get(), FALLOC_FL_KEEP_SIZE, 0, 1) == 0;
    const int needed = canReserve ? 3 : 2;
    // The change itself and the clearing of the journal come behind: the journal tells the change until they are made.
    for (failingSync = 1; failingSync <= needed + 2; ++failingSync) {
        syncs = 0;
        folder.put(name, tight);
        SafeFile growing(folder.path(name), SafeFile::Way::InPlace);
        EXPECT_EQ(commit(growing), failingSync > needed) << failingSync;
        EXPECT_GE(syncs, failingSync);
    }
    syncs = 0;
    folder.put(name, tight);
    SafeFile growing(folder.path(name), SafeFile::Way::InPlace);
    EXPECT_TRUE(commit(growing));
    EXPECT_EQ(syncs, needed + 2);
}
