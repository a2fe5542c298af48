// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "net/LinkStatusFile.h"

#include <QtCore/QFile>

#include <algorithm>
#include <cstdio>
#include <utility>

#include <sys/stat.h>

namespace marvola {

namespace {

constexpr qsizetype MaxNameBytes = 4096;
constexpr mode_t FileMode = 0644;
constexpr char CopySuffix[] = ".new";
// Another process may make the file at the same moment; one that keeps on doing so wins.
constexpr int OpenAttempts = 3;

bool breaksTheLine(QChar unit)
{
    switch (unit.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

// Whether the path is free, or is the one name of a regular file of this user's, which is then removed.
bool makeFree(const char *path)
{
    struct stat named = {};
    if (::lstat(path, &named) != 0)
        return errno == ENOENT;
    const bool isReplaceable = S_ISREG(named.st_mode) && named.st_uid == ::geteuid() && named.st_nlink == 1;
    return isReplaceable && (::unlink(path) == 0 || errno == ENOENT);
}

bool writeWhole(int fd, const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t written = ::pwrite(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done), done);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

} // namespace

QByteArray linkStatusLine(const std::optional<QString> &interfaceName)
{
    QByteArray none = QByteArrayLiteral("No Interface");
    // Looked at before it is converted: a UTF-16 unit takes at least one byte.
    if (!interfaceName || interfaceName->size() > MaxNameBytes ||
        std::any_of(interfaceName->begin(), interfaceName->end(), breaksTheLine))
        return none;
    const QByteArray name = interfaceName->toUtf8();
    return name.size() > MaxNameBytes ? none : "MyInterface=" + name;
}

LinkStatusFile::LinkStatusFile(FileDescriptor file, QByteArray name) : m_file(std::move(file)), m_name(std::move(name))
{
}

std::optional<LinkStatusFile> LinkStatusFile::open(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    for (int attempt = 0; attempt < OpenAttempts && makeFree(name.constData()); ++attempt) {
        // Always a new file. One that is there could be opened and then looked at, but a second name of another file
        // can come and go between any two looks.
        FileDescriptor file =
            FileDescriptor::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, FileMode);
        if (file.isOpen())
            return LinkStatusFile(std::move(file), name);
        if (errno != EEXIST)
            break;
    }
    return std::nullopt;
}

// By a copy that takes the name at once: half a name of an interface would be taken for another interface.
bool LinkStatusFile::write(const QByteArray &line)
{
    const QByteArray copy = m_name + CopySuffix;
    if (!makeFree(copy.constData()))
        return false;
    FileDescriptor file = FileDescriptor::open(copy.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, FileMode);
    if (!file.isOpen())
        return false;
    if (writeWhole(file.get(), line) && file.close() && std::rename(copy.constData(), m_name.constData()) == 0)
        return true;
    ::unlink(copy.constData());
    return false;
}

} // namespace marvola
