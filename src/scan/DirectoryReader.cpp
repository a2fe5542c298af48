// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/DirectoryReader.h"

#include <QtCore/QStringConverter>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>

namespace marvola {

/// A name with the key it is sorted by.
struct DirectoryReader::Found
{
    QString folded;
    QString name;
    Reached reached = Reached::Directly;

    bool operator<(const Found &other) const
    {
        const int order = folded.compare(other.folded);
        // Names that differ by case alone keep one order from scan to scan.
        return order != 0 ? order < 0 : name < other.name;
    }
};

namespace {

constexpr qsizetype BlockSize = qsizetype(64) * 1024;

/// \a bytes as a text, byte order marks included; null when they are not UTF-8.
QString decoded(QByteArrayView bytes)
{
    if (std::all_of(bytes.begin(), bytes.end(), [](char byte) { return static_cast<signed char>(byte) >= 0; }))
        return QString::fromLatin1(bytes);
    QStringDecoder utf8(QStringConverter::Utf8,
                        QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    QString text = utf8(bytes);
    return utf8.hasError() ? QString() : text;
}

/// What names are sorted by. That of plain ASCII is made here, because the general way takes a quarter of a walk.
QString sortKey(const QString &name)
{
    QString key(name.size(), Qt::Uninitialized);
    char16_t units = 0;
    std::transform(name.begin(), name.end(), key.begin(), [&units](QChar c) {
        units |= c.unicode();
        return c >= u'A' && c <= u'Z' ? QChar(c.unicode() + (u'a' - u'A')) : c;
    });
    return units < 0x80 ? key : name.toCaseFolded();
}

unsigned char typeOf(const struct stat &status)
{
    return static_cast<unsigned char>(IFTODT(status.st_mode));
}

} // namespace

DirectoryReader::DirectoryReader(const NameFilter &filter) : m_filter(filter), m_block(BlockSize, Qt::Uninitialized)
{
}

std::optional<FileId> DirectoryReader::open(const QString &path)
{
    m_folder.close();
    m_path = path.toUtf8();
    if (m_path.contains('\0'))
        return std::nullopt;
    m_folder = FileDescriptor::open(m_path.constData(), O_RDONLY | O_DIRECTORY | O_NONBLOCK);
    struct stat status = {};
    if (!m_folder.isOpen() || ::fstat(m_folder.get(), &status) != 0)
        return std::nullopt;
    if (!m_path.endsWith('/'))
        m_path += '/';
    return FileId{status.st_dev, status.st_ino};
}

Listing DirectoryReader::read()
{
    Listing listing;
    std::vector<Found> files;
    std::vector<Found> folders;
    ssize_t size = 0;
    while ((size = ::getdents64(m_folder.get(), m_block.data(), static_cast<size_t>(m_block.size()))) > 0)
        listing.entries += readBlock(size, files, folders);
    m_folder.close();

    std::sort(files.begin(), files.end());
    std::sort(folders.begin(), folders.end());
    listing.files.reserve(static_cast<qsizetype>(files.size()));
    for (const Found &file : files)
        listing.files.append(file.name);
    listing.folders.reserve(folders.size());
    for (const Found &folder : folders)
        listing.folders.push_back({folder.name, folder.reached});
    return listing;
}

/// \return how many entries the block holds
qsizetype DirectoryReader::readBlock(qsizetype size, std::vector<Found> &files, std::vector<Found> &folders)
{
    const char *const block = m_block.constData();
    qsizetype entries = 0;
    for (qsizetype at = 0; at < size; ++entries) {
        unsigned short length = 0;
        std::memcpy(&length, block + at + offsetof(dirent64, d_reclen), sizeof length);
        const char *const name = block + at + offsetof(dirent64, d_name);
        const auto type = static_cast<unsigned char>(block[at + qsizetype(offsetof(dirent64, d_type))]);
        if (name[0] != '.')
            addEntry(name, type, files, folders);
        at += length;
    }
    return entries;
}

void DirectoryReader::addEntry(const char *name, unsigned char type, std::vector<Found> &files,
                               std::vector<Found> &folders)
{
    const QByteArrayView bytes(name);
    // Nothing can open a longer path.
    if (m_path.size() + bytes.size() >= PATH_MAX)
        return;
    Reached reached = Reached::Directly;
    type = typeOf(name, type, reached);
    if (type != DT_REG && type != DT_DIR)
        return;
    const QString text = decoded(bytes);
    if (text.isNull())
        return;
    if (type == DT_DIR)
        folders.push_back({sortKey(text), text, reached});
    else if (m_filter.matches(text))
        files.push_back({sortKey(text), text, reached});
}

/// What the entry is, for links what they lead to; DT_UNKNOWN when that cannot be told or leads nowhere.
unsigned char DirectoryReader::typeOf(const char *name, unsigned char type, Reached &reached)
{
    struct stat status = {};
    if (type == DT_UNKNOWN && ::fstatat(m_folder.get(), name, &status, AT_SYMLINK_NOFOLLOW) == 0)
        type = marvola::typeOf(status);
    if (type != DT_LNK)
        return type;
    reached = Reached::ThroughLink;
    if (::fstatat(m_folder.get(), name, &status, 0) != 0)
        return DT_UNKNOWN;
    return marvola::typeOf(status);
}

} // namespace marvola
