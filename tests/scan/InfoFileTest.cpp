// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/InfoFile.h"

#include "InfoBytes.h"
#include "support/Folders.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

using namespace Qt::StringLiterals;
using marvola::EncodedRecord;
using marvola::InfoFileReader;
using marvola::InfoFileWriter;
using marvola::InfoRecord;
namespace InfoFile = marvola::InfoFile;

namespace {

bool mediumFails = false;
QList<QByteArray> countsAtSync; ///< what stood at the start of the file each time it was made durable

} // namespace

/// Takes the C library's place in this program.
extern "C" int fdatasync(int fd)
{
    char count[2] = {};
    if (::pread(fd, count, sizeof count, 0) == sizeof count)
        countsAtSync.append(QByteArray(count, sizeof count).toHex());
    if (mediumFails) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(::syscall(SYS_fdatasync, fd));
}

namespace {

InfoRecord recordNumber(int number, int pathLength = 10)
{
    return {static_cast<qint16>(number),
            QString::number(number).rightJustified(pathLength, u'/'),
            1,
            u"artist"_s,
            u"album"_s,
            u"genre"_s};
}

QList<InfoRecord> recordsTo(int count, int pathLength = 10)
{
    QList<InfoRecord> records;
    for (int i = 0; i < count; ++i)
        records.append(recordNumber(i, pathLength));
    return records;
}

QStringList pathsOf(const QList<InfoRecord> &records)
{
    QStringList paths;
    for (const InfoRecord &record : records)
        paths.append(record.path);
    return paths;
}

QStringList pathsIn(const QString &file)
{
    QStringList paths;
    InfoFileReader reader(file);
    for (EncodedRecord record; reader.next(record);)
        paths.append(record.path.toString());
    return paths;
}

/// The permissions of the file \a path.
mode_t modeOf(const QString &path)
{
    struct stat status = {};
    EXPECT_EQ(::stat(path.toUtf8().constData(), &status), 0);
    return status.st_mode & 0777U;
}

/// No file gets longer than this, as on a full medium.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{bytes, m_before.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
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
    void (*m_handler)(int) = nullptr;
};

class InfoFileTest : public testing::Test
{
protected:
    InfoFileTest() { countsAtSync.clear(); }
    ~InfoFileTest() override { mediumFails = false; }

    Folders folders;
    const QString path = folders.path(u".marvola.info"_s);
};

} // namespace

TEST_F(InfoFileTest, WritesTheStreamClassesBytes)
{
    const QList<InfoRecord> records = recordsTo(3);
    ASSERT_TRUE(InfoFile::resetCount(path));
    InfoFileWriter writer(path, InfoFile::FirstRecordOffset);
    quint32 size = 0;
    for (const InfoRecord &record : records)
        size += writer.append(record);
    EXPECT_EQ(writer.close(), 3);
    ASSERT_TRUE(InfoFile::publishCount(path, 3));
    EXPECT_EQ(InfoBytes::bytesOf(path).toHex(), InfoBytes::encoded(records, 3).toHex());
    EXPECT_EQ(qint64(size) + 2, QFileInfo(path).size());
}

TEST_F(InfoFileTest, BytesAreThoseOfTheDocumentedExample)
{
    const QString unknown = u"<Unknown>"_s;
    InfoFileWriter writer(path, 2);
    writer.append({0, u"/m/a.mp3"_s, 1, u"Björk"_s, u"Homo"_s, unknown});
    writer.append({1, u"/m/v.3gp"_s, 2, unknown, unknown, unknown});
    ASSERT_EQ(writer.close(), 2);
    ASSERT_TRUE(InfoFile::publishCount(path, 2));
    EXPECT_EQ(InfoBytes::bytesOf(path).toHex(), "0002"
                                                "0000"
                                                "00000010"
                                                "002f006d002f0061002e006d00700033"
                                                "01"
                                                "0000000a"
                                                "0042006a00f60072006b"
                                                "00000008"
                                                "0048006f006d006f"
                                                "00000012"
                                                "003c0055006e006b006e006f0077006e003e"
                                                "0001"
                                                "00000010"
                                                "002f006d002f0076002e003300670070"
                                                "02"
                                                "00000012"
                                                "003c0055006e006b006e006f0077006e003e"
                                                "00000012"
                                                "003c0055006e006b006e006f0077006e003e"
                                                "00000012"
                                                "003c0055006e006b006e006f0077006e003e");
}

TEST_F(InfoFileTest, CountIsBigEndianAndUnsigned)
{
    ASSERT_TRUE(InfoFile::publishCount(path, 0xfffe));
    EXPECT_EQ(InfoBytes::bytesOf(path).toHex(), "fffe");
    ASSERT_TRUE(InfoFile::publishCount(path, 258));
    EXPECT_EQ(InfoBytes::bytesOf(path).toHex(), "0102");
}

TEST_F(InfoFileTest, AnotherFileInItsPlaceGetsNeitherRecordsNorTheirNumber)
{
    const auto held = InfoFile::resetCount(path);
    ASSERT_TRUE(held.has_value());
    const auto file = std::optional(held->id);
    ASSERT_TRUE(QFile::remove(path)) << "what is held open keeps its number to itself";
    const QByteArray other = QByteArray::fromHex("0001") + QByteArray(100, 'x');
    InfoBytes::write(path, other);
    InfoFileWriter writer(path, 2, file);
    writer.append(recordNumber(0));
    EXPECT_EQ(writer.close(), 0);
    EXPECT_FALSE(InfoFile::publishCount(path, 1, file));
    EXPECT_EQ(InfoBytes::bytesOf(path), other);
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_FALSE(InfoFile::publishCount(path, 1, file));
    EXPECT_FALSE(QFile::exists(path)) << "nor is one made";
}

TEST_F(InfoFileTest, RecordsAreDurableBeforeTheirNumberIs)
{
    InfoBytes::write(path, QByteArray::fromHex("0005"));
    ASSERT_TRUE(InfoFile::resetCount(path));
    EXPECT_EQ(countsAtSync, QList<QByteArray>{"0000"});
    InfoFileWriter writer(path, 2);
    writer.append(recordNumber(0));
    EXPECT_EQ(writer.close(), 1);
    countsAtSync.clear();
    ASSERT_TRUE(InfoFile::publishCount(path, 1));
    EXPECT_EQ(countsAtSync, (QList<QByteArray>{"0000", "0001"}));
}

TEST_F(InfoFileTest, RecordsThatCannotBeMadeDurableAreNotCounted)
{
    ASSERT_TRUE(InfoFile::resetCount(path));
    InfoFileWriter writer(path, 2);
    writer.append(recordNumber(0));
    EXPECT_EQ(writer.close(), 1);
    mediumFails = true;
    EXPECT_FALSE(InfoFile::publishCount(path, 1));
    EXPECT_EQ(pathsIn(path), QStringList());
    EXPECT_FALSE(InfoFile::resetCount(path));
}

TEST_F(InfoFileTest, NothingIsTruncated)
{
    const QByteArray before(150000, 'x');
    InfoBytes::write(path, before);
    ASSERT_TRUE(InfoFile::resetCount(path));
    InfoFileWriter writer(path, 2);
    const quint32 size = writer.append(recordNumber(0));
    EXPECT_EQ(writer.close(), 1);
    ASSERT_TRUE(InfoFile::publishCount(path, 1));
    const QByteArray after = InfoBytes::bytesOf(path);
    EXPECT_EQ(after.size(), before.size());
    EXPECT_EQ(after.mid(qsizetype(size) + 2), before.mid(qsizetype(size) + 2));
}

TEST_F(InfoFileTest, PublishingLetsEverybodyReadAndWrite)
{
    const mode_t mask = ::umask(077);
    ASSERT_TRUE(InfoFile::publishCount(path, 0));
    ::umask(mask);
    EXPECT_EQ(modeOf(path), 0666U);
}

TEST_F(InfoFileTest, FailedPublishingLetsEverybodyReadAndWriteToo)
{
    ASSERT_TRUE(InfoFile::resetCount(path));
    ASSERT_EQ(::chmod(path.toUtf8().constData(), 0600), 0);
    mediumFails = true;
    EXPECT_FALSE(InfoFile::publishCount(path, 1));
    EXPECT_EQ(modeOf(path), 0666U);
}

TEST_F(InfoFileTest, ManyRecordsGoThroughTheBuffer)
{
    const QList<InfoRecord> records = recordsTo(1200, 100); // some 300 kB
    InfoFileWriter writer(path, 2);
    for (const InfoRecord &record : records)
        writer.append(record);
    EXPECT_EQ(writer.close(), 1200);
    ASSERT_TRUE(InfoFile::publishCount(path, 1200));
    EXPECT_EQ(InfoBytes::bytesOf(path), InfoBytes::encoded(records, 1200));
    EXPECT_EQ(pathsIn(path), pathsOf(records));
}

TEST_F(InfoFileTest, FileThatCannotBeOpenedTakesRecordsThatGoNowhere)
{
    for (const QString &bad : {QString(), folders.root(), folders.path(u"missing/x"_s), folders.addFifo(u"fifo"_s)}) {
        EXPECT_FALSE(InfoFile::resetCount(bad));
        InfoFileWriter writer(bad, 2);
        EXPECT_EQ(writer.append(recordNumber(0)), quint32(InfoBytes::encoded(recordNumber(0)).size()));
        EXPECT_EQ(writer.close(), 0);
        EXPECT_FALSE(InfoFile::publishCount(bad, 1));
        EXPECT_EQ(pathsIn(bad), QStringList());
    }
}

TEST_F(InfoFileTest, LinkInItsPlaceIsNotFollowed)
{
    const QByteArray content = InfoBytes::encoded(recordsTo(2), 2);
    const QString victim = folders.addFile(u"victim"_s, content);
    ASSERT_EQ(::chmod(victim.toUtf8().constData(), 0600), 0);
    folders.addLink(u".marvola.info"_s, victim);
    EXPECT_FALSE(InfoFile::resetCount(path));
    InfoFileWriter writer(path, 2);
    writer.append(recordNumber(7));
    EXPECT_EQ(writer.close(), 0);
    EXPECT_FALSE(InfoFile::publishCount(path, 1));
    EXPECT_EQ(InfoBytes::bytesOf(victim), content);
    EXPECT_EQ(modeOf(victim), 0600U);
    EXPECT_EQ(pathsIn(path), QStringList());
    EXPECT_EQ(pathsIn(victim).size(), 2) << "by its own name it is read";
}

TEST_F(InfoFileTest, HardLinkGetsAFileOfItsOwn)
{
    const QByteArray content = InfoBytes::encoded(recordsTo(2), 2) + QByteArray(1000, 'r');
    const QString victim = folders.addFile(u"victim"_s, content);
    ASSERT_EQ(::chmod(victim.toUtf8().constData(), 0600), 0);
    const auto link = [&] {
        QFile::remove(path);
        ASSERT_EQ(::link(victim.toUtf8().constData(), path.toUtf8().constData()), 0);
    };
    link();
    EXPECT_EQ(pathsIn(path).size(), 2) << "reading does no harm";
    EXPECT_TRUE(InfoFile::resetCount(path));
    EXPECT_EQ(InfoBytes::bytesOf(path), QByteArray(2, '\0') + content.mid(2)) << "what is left over stays";
    link();
    InfoFileWriter writer(path, 2);
    writer.append(recordNumber(7));
    EXPECT_EQ(writer.close(), 1);
    EXPECT_EQ(pathsIn(path).first(), recordNumber(7).path);
    link();
    EXPECT_TRUE(InfoFile::publishCount(path, 1));
    EXPECT_EQ(modeOf(path), 0666U);
    EXPECT_EQ(pathsIn(path).size(), 1);

    EXPECT_EQ(InfoBytes::bytesOf(victim), content);
    EXPECT_EQ(modeOf(victim), 0600U);
    EXPECT_EQ(QDir(folders.root()).entryList(QDir::Files | QDir::Hidden).size(), 2) << "no copy is left";
}

TEST_F(InfoFileTest, HardLinkThatCannotBeSeparatedIsNotWritten)
{
    const QByteArray content = InfoBytes::encoded(recordsTo(2), 2);
    const QString victim = folders.addFile(u"victim"_s, content);
    ASSERT_EQ(::link(victim.toUtf8().constData(), path.toUtf8().constData()), 0);
    ASSERT_TRUE(QDir(folders.root()).mkpath(u".marvola.info.new/in the way"_s));
    EXPECT_FALSE(InfoFile::resetCount(path));
    InfoFileWriter writer(path, 2);
    writer.append(recordNumber(7));
    EXPECT_EQ(writer.close(), 0);
    EXPECT_FALSE(InfoFile::publishCount(path, 1));
    EXPECT_EQ(InfoBytes::bytesOf(victim), content);
    EXPECT_EQ(pathsIn(path).size(), 2) << "the index stays as it was";
}

TEST_F(InfoFileTest, CopyThatACrashLeftIsNoObstacle)
{
    const QString victim = folders.addFile(u"victim"_s, InfoBytes::encoded(recordsTo(2), 2));
    const QString other = folders.addFile(u"other"_s, "bytes");
    ASSERT_EQ(::link(victim.toUtf8().constData(), path.toUtf8().constData()), 0);
    folders.addLink(u".marvola.info.new"_s, other);
    EXPECT_TRUE(InfoFile::resetCount(path));
    EXPECT_EQ(InfoBytes::bytesOf(other), "bytes") << "nor is it followed";
    EXPECT_EQ(pathsIn(victim).size(), 2);
}

TEST_F(InfoFileTest, LinkToNothingMakesNoFile)
{
    folders.addLink(u".marvola.info"_s, folders.path(u"new"_s));
    EXPECT_FALSE(InfoFile::resetCount(path));
    EXPECT_FALSE(InfoFile::publishCount(path, 0));
    EXPECT_FALSE(QFile::exists(folders.path(u"new"_s)));
}

TEST_F(InfoFileTest, CountsOnlyRecordsThatAreWholeInTheFile)
{
    const qsizetype recordSize = InfoBytes::encoded(recordNumber(0)).size();
    for (const qsizetype room : {qsizetype(0), recordSize - 1, recordSize, 2 * recordSize + 5, 3 * recordSize}) {
        QFile::remove(path);
        InfoFileWriter writer(path, 2);
        int written = -1;
        {
            const FileSizeLimit limit(static_cast<rlim_t>(2 + room));
            for (int i = 0; i < 3; ++i)
                writer.append(recordNumber(i));
            written = writer.close();
        }
        EXPECT_EQ(written, room / recordSize) << room;
        EXPECT_LE(QFileInfo(path).size(), 2 + room);
    }
}

TEST_F(InfoFileTest, NothingIsWrittenBehindAGap)
{
    InfoFileWriter writer(path, 2);
    {
        const FileSizeLimit limit(1000);
        for (int i = 0; i < 1000; ++i) // more than the buffer holds
            writer.append(recordNumber(i, 100));
    }
    for (int i = 0; i < 1000; ++i)
        writer.append(recordNumber(i, 100));
    EXPECT_EQ(writer.close(), int(998 / InfoBytes::encoded(recordNumber(0, 100)).size()));
    EXPECT_LE(QFileInfo(path).size(), 1000);
}

TEST_F(InfoFileTest, UnusedWriterLeavesTheFileAlone)
{
    InfoBytes::write(path, "abc");
    {
        InfoFileWriter writer(path, 2);
        EXPECT_EQ(writer.close(), 0);
    }
    EXPECT_EQ(InfoBytes::bytesOf(path), "abc");
}

TEST_F(InfoFileTest, CountOfThreeOverFiveRecordsGivesThree)
{
    InfoBytes::write(path, InfoBytes::encoded(recordsTo(5), 3));
    EXPECT_EQ(pathsIn(path), pathsOf(recordsTo(3)));
}

TEST_F(InfoFileTest, CountThatLiesGivesWhatIsThere)
{
    InfoBytes::write(path, InfoBytes::encoded(recordsTo(5), 65535));
    EXPECT_EQ(pathsIn(path), pathsOf(recordsTo(5)));
}

TEST_F(InfoFileTest, FreshlyReservedFileIsEmpty)
{
    InfoBytes::write(path, QByteArray(150000, '\0'));
    EXPECT_EQ(pathsIn(path), QStringList());
}

TEST_F(InfoFileTest, FilesThatAreTooShortOrMissingAreEmpty)
{
    EXPECT_EQ(pathsIn(path), QStringList());
    for (int size = 0; size < 3; ++size) {
        InfoBytes::write(path, QByteArray(size, '\x01'));
        EXPECT_EQ(pathsIn(path), QStringList()) << size;
    }
}

TEST_F(InfoFileTest, CutAtEveryByteGivesTheWholeRecords)
{
    const QList<InfoRecord> records = recordsTo(4);
    const QByteArray bytes = InfoBytes::encoded(records, 4);
    const qsizetype recordSize = InfoBytes::encoded(recordNumber(0)).size();
    InfoBytes::write(path, bytes);
    for (qsizetype cut = bytes.size() - 1; cut >= 0; --cut) {
        ASSERT_TRUE(QFile::resize(path, cut));
        const qsizetype whole = qMax<qsizetype>(0, cut - 2) / recordSize;
        EXPECT_EQ(pathsIn(path), pathsOf(records.first(whole))) << cut;
    }
}

TEST_F(InfoFileTest, EveryByteMayBeWrong)
{
    const QByteArray bytes = InfoBytes::encoded(recordsTo(3), 3);
    InfoBytes::write(path, bytes);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    for (qsizetype at = 0; at < bytes.size(); ++at) {
        for (const int flip : {0x01, 0x80, 0xff, 0x00}) { // the last one mends the byte
            file.seek(at);
            ASSERT_TRUE(file.putChar(static_cast<char>(bytes.at(at) ^ flip)));
            EXPECT_LE(pathsIn(path).join(QString()).size() * 2, bytes.size()) << at;
        }
    }
    EXPECT_EQ(pathsIn(path).size(), 3);
}

TEST_F(InfoFileTest, RecordsReachOverTheReadersChunks)
{
    const QList<InfoRecord> records = recordsTo(60, 10007); // 20 kB each, 1.2 MB
    InfoBytes::write(path, InfoBytes::encoded(records, 60));
    EXPECT_EQ(pathsIn(path), pathsOf(records));
}

TEST_F(InfoFileTest, AllCountsUpTo65535AreRead)
{
    QByteArray bytes = InfoBytes::encoded({}, 65535);
    const QByteArray record = InfoBytes::encoded(recordNumber(7));
    bytes += record.repeated(65535 + 3);
    InfoBytes::write(path, bytes);
    EXPECT_EQ(pathsIn(path).size(), 65535);
}

TEST_F(InfoFileTest, HugeSparseFileIsReadWithinBounds)
{
    // Records that claim more than a record may be, in a file that really has the bytes.
    QByteArray bytes = InfoBytes::encoded(recordsTo(2), 65535);
    bytes += QByteArray::fromHex("0000 7ffffffe");
    InfoBytes::write(path, bytes);
    ASSERT_EQ(::truncate(path.toUtf8().constData(), qint64(8) << 30), 0);
    EXPECT_EQ(pathsIn(path), pathsOf(recordsTo(2)));
}

TEST_F(InfoFileTest, NotMoreThan256MiBOfAFileAreRead)
{
    // Paths of 8 MiB of zero bytes: 33 of them would be 264 MiB.
    const QByteArray head = QByteArray::fromHex("0000 00800000");
    const qint64 recordSize = head.size() + 0x800000 + 1 + 12;
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray::fromHex("ffff"));
    for (int i = 0; i < 40; ++i) {
        ASSERT_TRUE(file.seek(2 + i * recordSize));
        file.write(head);
    }
    ASSERT_TRUE(file.resize(2 + 40 * recordSize));
    file.close();
    int records = 0;
    InfoFileReader reader(path);
    for (EncodedRecord record; reader.next(record);)
        ++records;
    EXPECT_EQ(records, 31);
}
