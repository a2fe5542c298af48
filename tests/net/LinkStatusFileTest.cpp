// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "net/LinkStatusFile.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using marvola::LinkStatusFile;
using marvola::linkStatusLine;

namespace {

const QByteArray Line = "MyInterface=ppp0";
const QByteArray Precious = "precious content, longer than any line";

struct LinkStatus : testing::Test
{
    QTemporaryDir dir;
    QString path = dir.filePath(u"link"_s);
    QString victim = dir.filePath(u"victim"_s);
    QByteArray name = QFile::encodeName(path);
    QByteArray victimName = QFile::encodeName(victim);

    static void store(const QString &file, const QByteArray &content)
    {
        QFile target(file);
        ASSERT_TRUE(target.open(QIODevice::WriteOnly));
        ASSERT_EQ(target.write(content), content.size());
    }
    static QByteArray stored(const QString &file)
    {
        QFile source(file);
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray("(none)");
    }
    bool write(const QByteArray &line) const
    {
        std::optional<LinkStatusFile> file = LinkStatusFile::open(path);
        return file && file->write(line);
    }
};

using LinkStatusPlanted = LinkStatus;

/// Lets no file grow past some size, without the signal that usually goes with it.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_before = {};
    void (*m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

} // namespace

TEST(LinkStatusLine, IsTheNameOrNone)
{
    const struct
    {
        const char *what;
        std::optional<QString> name;
        QByteArray line;
    } rows[] = {
        {"a usual name", u"ppp0"_s, "MyInterface=ppp0"},
        {"no name", std::nullopt, "No Interface"},
        {"an empty name", QString(), "MyInterface="},
        {"UTF-8", u"接口0"_s,
         "MyInterface=\xe6\x8e\xa5\xe5\x8f\xa3"
         "0"},
        {"beyond the BMP", u"\U0001F4F6"_s, "MyInterface=\xf0\x9f\x93\xb6"},
        {"slashes", u"../../etc/passwd"_s, "MyInterface=../../etc/passwd"},
        {"blanks and percent signs", u" a %s b "_s, "MyInterface= a %s b "},
        {"as long as can be", QString(4096, u'x'), "MyInterface=" + QByteArray(4096, 'x')},
        {"one byte longer", QString(4097, u'x'), "No Interface"},
        {"longer in UTF-8 only", QString(1366, u'接'), "No Interface"},
        {"ten megabytes", QString(10 << 20, u'x'), "No Interface"},
        {"a line feed", u"ppp0\nMyInterface=x"_s, "No Interface"},
        {"a carriage return at the end", u"ppp0\r"_s, "No Interface"},
        {"a null character", u"ppp0"_s + QChar(0) + u"x"_s, "No Interface"},
        {"an escape", u"\x1b[2J"_s, "No Interface"},
        {"next line", u"a\u0085b"_s, "No Interface"},
        {"a line separator", u"a\u2028b"_s, "No Interface"},
        {"a paragraph separator", u"a\u2029b"_s, "No Interface"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(linkStatusLine(row.name), row.line) << row.what;
}

TEST_F(LinkStatus, IsMadeForItsUserToWriteAndAllToRead)
{
    const mode_t before = ::umask(0);
    EXPECT_TRUE(write(Line));
    ::umask(before);
    EXPECT_EQ(stored(path), Line);
    struct stat info = {};
    ASSERT_EQ(::stat(name.constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0644U);
}

TEST_F(LinkStatus, ReplacesALongerContent)
{
    store(path, "MyInterface=a-much-longer-name\nand more\n");
    EXPECT_TRUE(write("No Interface"));
    EXPECT_EQ(stored(path), "No Interface");
}

TEST_F(LinkStatus, ReplacesAFileThatIsReadOnly)
{
    store(path, Precious);
    ASSERT_EQ(::chmod(name.constData(), 0400), 0);
    EXPECT_TRUE(write(Line));
    EXPECT_EQ(stored(path), Line);
}

TEST_F(LinkStatus, IsEmptyFromTheOpeningOn)
{
    store(path, Line);
    EXPECT_TRUE(LinkStatusFile::open(path));
    EXPECT_EQ(stored(path), QByteArray());
}

TEST_F(LinkStatus, IsLeftEmptyWhenItCannotBeWrittenWhole)
{
    store(path, Line);
    bool written = true;
    {
        const FileSizeLimit limit(5);
        written = write("MyInterface=wlan0");
    }
    EXPECT_FALSE(written);
    EXPECT_EQ(stored(path), QByteArray());
}

TEST_F(LinkStatus, IsThereWholeOrNotAtAll)
{
    std::optional<LinkStatusFile> file = LinkStatusFile::open(path);
    ASSERT_TRUE(file);
    const marvola::FileDescriptor reader = marvola::FileDescriptor::open(name.constData(), O_RDONLY);
    EXPECT_TRUE(file->write(Line));
    char byte = 0;
    EXPECT_EQ(::read(reader.get(), &byte, 1), 0) << "the line was written into the file while others could read it";
    EXPECT_EQ(stored(path), Line);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList(u"link"_s));
}

TEST_F(LinkStatus, CopyThatADeadProcessLeftIsNoObstacle)
{
    store(path + u".new"_s, Precious);
    EXPECT_TRUE(write(Line));
    EXPECT_EQ(stored(path), Line);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList(u"link"_s));
}

TEST_F(LinkStatusPlanted, LinkInTheCopysPlaceIsNotFollowed)
{
    store(victim, Precious);
    ASSERT_EQ(::symlink(victimName.constData(), (name + ".new").constData()), 0);
    EXPECT_FALSE(write(Line));
    EXPECT_EQ(stored(victim), Precious);
    EXPECT_EQ(stored(path), QByteArray());
}

TEST_F(LinkStatus, IsNotInheritedByOtherPrograms)
{
    const std::optional<LinkStatusFile> file = LinkStatusFile::open(path);
    ASSERT_TRUE(file);
    int found = 0;
    const QString opened = QFileInfo(path).canonicalFilePath();
    const QDir descriptors(u"/proc/self/fd"_s);
    const QStringList entries = descriptors.entryList(QDir::Files | QDir::System);
    for (const QString &entry : entries) {
        if (QFile::symLinkTarget(descriptors.filePath(entry)) == opened) {
            ++found;
            EXPECT_NE(::fcntl(entry.toInt(), F_GETFD) & FD_CLOEXEC, 0);
        }
    }
    EXPECT_EQ(found, 1);
}

TEST_F(LinkStatus, CannotBeOpenedInAMissingFolder)
{
    EXPECT_FALSE(LinkStatusFile::open(dir.filePath(u"missing/link"_s)));
    EXPECT_FALSE(QFileInfo::exists(dir.filePath(u"missing"_s)));
}

TEST_F(LinkStatusPlanted, DirectoryIsLeftAlone)
{
    ASSERT_EQ(::mkdir(name.constData(), 0755), 0);
    EXPECT_FALSE(write(Line));
}

TEST_F(LinkStatusPlanted, SymbolicLinkIsNotFollowed)
{
    store(victim, Precious);
    ASSERT_EQ(::symlink(victimName.constData(), name.constData()), 0);
    EXPECT_FALSE(write(Line));
    EXPECT_EQ(stored(victim), Precious);
    EXPECT_TRUE(QFileInfo(path).isSymLink());
}

TEST_F(LinkStatusPlanted, DanglingSymbolicLinkMakesNoFile)
{
    ASSERT_EQ(::symlink(victimName.constData(), name.constData()), 0);
    EXPECT_FALSE(write(Line));
    EXPECT_FALSE(QFileInfo::exists(victim));
}

TEST_F(LinkStatusPlanted, HardLinkOfAnOwnFileIsLeftAlone)
{
    store(victim, Precious);
    ASSERT_EQ(::link(victimName.constData(), name.constData()), 0);
    EXPECT_FALSE(write(Line));
    EXPECT_EQ(stored(victim), Precious);
}

TEST_F(LinkStatusPlanted, OtherUsersFileIsLeftAlone)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can make a file of another user's";
    store(path, Precious);
    constexpr uid_t Other = 12345;
    ASSERT_EQ(::chown(name.constData(), Other, static_cast<gid_t>(-1)), 0);
    EXPECT_FALSE(write(Line));
    EXPECT_EQ(stored(path), Precious);
}

TEST_F(LinkStatusPlanted, PipeWithoutAReaderDoesNotBlock)
{
    ASSERT_EQ(::mkfifo(name.constData(), 0666), 0);
    EXPECT_FALSE(write(Line));
}

TEST_F(LinkStatusPlanted, PipeWithAReaderGetsNothing)
{
    ASSERT_EQ(::mkfifo(name.constData(), 0666), 0);
    const marvola::FileDescriptor reader = marvola::FileDescriptor::open(name.constData(), O_RDONLY | O_NONBLOCK);
    ASSERT_TRUE(reader.isOpen());
    EXPECT_FALSE(write(Line));
    char byte = 0;
    EXPECT_EQ(::read(reader.get(), &byte, 1), 0);
}

// Whoever plants a second name of a file may take it away between any two looks at it.
TEST_F(LinkStatusPlanted, HardLinkThatComesAndGoesIsNeverWrittenThrough)
{
    store(victim, Precious);
    std::atomic<bool> stop = false;
    std::thread attacker([this, &stop] {
        while (!stop) {
            (void)::link(victimName.constData(), name.constData());
            (void)::unlink(name.constData());
        }
    });
    QElapsedTimer clock;
    clock.start();
    QByteArray content = Precious;
    while (content == Precious && clock.elapsed() < 500) {
        for (int attempt = 0; attempt < 100; ++attempt)
            (void)write(Line);
        content = stored(victim);
    }
    stop = true;
    attacker.join();
    EXPECT_EQ(content, Precious);
}
