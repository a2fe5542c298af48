// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "PullableCard.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>

#include <fcntl.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// EXT4_IOC_SHUTDOWN; 2: nothing more goes to the medium, not even the journal.
constexpr unsigned long ShutDownRequest = _IOR('X', 125, quint32);
constexpr quint32 NoLogFlush = 2;

bool mountsAreOurs()
{
    static const bool areOurs = [] {
        const int space = ::geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
        return ::unshare(space) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    }();
    return areOurs;
}

bool run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

QByteArray encoded(const QString &path)
{
    return QFile::encodeName(path);
}

void makeFolder(const QString &path)
{
    EXPECT_TRUE(QDir().mkpath(path)) << qPrintable(path);
}

class FolderCard : public PullableCard
{
public:
    explicit FolderCard(const QString &folder) : PullableCard(folder) { makeFolder(path()); }

    bool keepsWhatIsWritten() const override { return false; }
    void remember() override { std::filesystem::copy(native(path()), native(copy()), Everything); }
    void pull() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(native(path()), ignored);
    }
    void putBack(Return how) override
    {
        pull(); // what was made there meanwhile
        // Nobody is kept from writing to a folder here: root may always.
        if (how == Return::Empty)
            makeFolder(path());
        else
            std::filesystem::copy(native(copy()), native(path()), Everything);
    }

private:
    static constexpr auto Everything = std::filesystem::copy_options::recursive;
    static std::filesystem::path native(const QString &path) { return encoded(path).toStdString(); }
    QString copy() const { return inFolder("copy"); }
};

/// The filesystem stays mounted elsewhere, as in another reader.
class DetachedCard : public PullableCard
{
public:
    explicit DetachedCard(const QString &folder) : PullableCard(folder)
    {
        for (const QString &place : {path(), elsewhere(), empty()})
            makeFolder(place);
        EXPECT_EQ(::mount("card", encoded(elsewhere()).constData(), "tmpfs", 0, "size=4m"), 0);
        EXPECT_EQ(::mount("empty", encoded(empty()).constData(), "tmpfs", 0, "size=4m"), 0);
        bind(elsewhere());
    }
    ~DetachedCard() override
    {
        for (const QString &place : {path(), elsewhere(), empty()})
            ::umount2(encoded(place).constData(), MNT_DETACH);
    }

    void pull() override { EXPECT_EQ(::umount2(encoded(path()).constData(), MNT_DETACH), 0); }
    void putBack(Return how) override
    {
        bind(how == Return::Empty ? empty() : elsewhere());
        if (how == Return::ReadOnly) {
            EXPECT_EQ(::mount(nullptr, encoded(path()).constData(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr),
                      0);
        }
    }

private:
    QString elsewhere() const { return inFolder("elsewhere"); }
    QString empty() const { return inFolder("empty"); }
    void bind(const QString &from) const
    {
        EXPECT_EQ(::mount(encoded(from).constData(), encoded(path()).constData(), nullptr, MS_BIND, nullptr), 0);
    }
};

class ShutDownCard : public PullableCard
{
public:
    explicit ShutDownCard(const QString &folder) : PullableCard(folder)
    {
        makeFolder(path());
        for (const QString &image : {inFolder("image"), inFolder("empty")})
            EXPECT_TRUE(makeImage(image));
        EXPECT_TRUE(mountImage(inFolder("image"), u"loop"_s));
    }
    ~ShutDownCard() override { ::umount2(encoded(path()).constData(), MNT_DETACH); }

    static bool makeImage(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.resize(qint64(4) * 1024 * 1024) &&
               run(u"mke2fs"_s, {u"-q"_s, u"-F"_s, u"-t"_s, u"ext4"_s, u"-J"_s, u"size=1"_s, path});
    }
    bool mountImage(const QString &image, const QString &options) const
    {
        return run(u"mount"_s, {u"-t"_s, u"ext4"_s, u"-o"_s, options, image, path()});
    }

    void remember() override { EXPECT_TRUE(run(u"sync"_s, {u"-f"_s, path()})); }
    void pull() override
    {
        const int fd = ::open(encoded(path()).constData(), O_RDONLY | O_CLOEXEC);
        quint32 how = NoLogFlush;
        EXPECT_EQ(::ioctl(fd, ShutDownRequest, &how), 0);
        ::close(fd);
    }
    void putBack(Return how) override
    {
        EXPECT_EQ(::umount2(encoded(path()).constData(), 0), 0) << "something on the card is still open";
        EXPECT_TRUE(mountImage(inFolder(how == Return::Empty ? "empty" : "image"), u"loop"_s));
        if (how != Return::ReadOnly)
            return;
        // The journal is gone through first, which a medium that cannot be written does not allow.
        EXPECT_EQ(::umount2(encoded(path()).constData(), 0), 0);
        EXPECT_TRUE(mountImage(inFolder("image"), u"loop,ro"_s));
    }
};

} // namespace

PullableCard::PullableCard(const QString &folder) : m_folder(folder)
{
}

std::unique_ptr<PullableCard> PullableCard::make(Kind kind, const QString &folder)
{
    switch (kind) {
    case Kind::Folder:
        return std::make_unique<FolderCard>(folder);
    case Kind::Detached:
        return std::make_unique<DetachedCard>(folder);
    case Kind::ShutDown:
        return std::make_unique<ShutDownCard>(folder);
    }
    return nullptr;
}

QString PullableCard::whyNot(Kind kind)
{
    if (kind == Kind::Folder)
        return {};
    if (!mountsAreOurs())
        return u"this machine lets the test have no mounts of its own"_s;
    const QTemporaryDir folder;
    const QByteArray place = encoded(folder.path());
    if (kind == Kind::Detached) {
        const bool isMounted = ::mount("probe", place.constData(), "tmpfs", 0, nullptr) == 0;
        return isMounted && ::umount2(place.constData(), MNT_DETACH) == 0 ? QString() : u"tmpfs cannot be mounted"_s;
    }
    const QString image = folder.filePath(u"image"_s);
    const QString mountPoint = folder.filePath(u"mount"_s);
    makeFolder(mountPoint);
    const bool isMounted =
        ShutDownCard::makeImage(image) && run(u"mount"_s, {u"-t"_s, u"ext4"_s, u"-o"_s, u"loop"_s, image, mountPoint});
    const bool isGone = isMounted && ::umount2(encoded(mountPoint).constData(), 0) == 0;
    return isGone ? QString() : u"an ext4 image cannot be mounted"_s;
}
