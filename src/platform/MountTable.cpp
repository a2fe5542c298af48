// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/MountTable.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <poll.h>

namespace marvola {

namespace {

constexpr int MountPointField = 4;
constexpr qsizetype KiB = 1024;
constexpr qsizetype ReadSize = 64 * KiB;
/// No machine has mounts beyond this; what lies behind is not looked at.
constexpr qsizetype MaxTableSize = qsizetype(16) * 1024 * KiB;

bool isOctal(char c)
{
    return c >= '0' && c <= '7';
}

/// The kernel writes blanks, tabs, line feeds, backslashes and '#' as a backslash and three octal digits.
QByteArray withoutEscapes(QByteArrayView text)
{
    QByteArray plain;
    plain.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '\\' && i + 3 < text.size() && text[i + 1] >= '0' && text[i + 1] <= '3' &&
                            isOctal(text[i + 2]) && isOctal(text[i + 3]);
        if (escape) {
            plain += static_cast<char>((text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0'));
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

/// Field \a number of \a line, counted from 0, where single blanks part the fields; empty when there are fewer.
QByteArrayView fieldOf(QByteArrayView line, int number)
{
    for (; number > 0; --number) {
        const qsizetype blank = line.indexOf(' ');
        if (blank < 0)
            return {};
        line = line.sliced(blank + 1);
    }
    const qsizetype end = line.indexOf(' ');
    return end < 0 ? line : line.first(end);
}

QByteArray readFromStart(int fd)
{
    QByteArray text;
    if (::lseek(fd, 0, SEEK_SET) != 0)
        return text;
    ssize_t got = 0;
    do {
        const qsizetype end = text.size();
        text.resize(end + ReadSize);
        got = ::read(fd, text.data() + end, ReadSize);
        const bool interrupted = got < 0 && errno == EINTR;
        text.resize(end + std::max<ssize_t>(got, 0));
        if (interrupted)
            got = 1;
    } while (got > 0 && text.size() < MaxTableSize);
    return text;
}

} // namespace

std::vector<QString> MountTable::parse(QByteArrayView mountInfo)
{
    std::vector<QString> points;
    while (!mountInfo.isEmpty()) {
        const qsizetype newline = mountInfo.indexOf('\n');
        const QByteArrayView line = newline < 0 ? mountInfo : mountInfo.first(newline);
        mountInfo = newline < 0 ? QByteArrayView() : mountInfo.sliced(newline + 1);
        QByteArray point = withoutEscapes(fieldOf(line, MountPointField));
        if (!point.startsWith('/'))
            continue;
        while (point.endsWith('/'))
            point.chop(1);
        points.push_back(QString::fromUtf8(point));
    }
    std::sort(points.begin(), points.end());
    points.erase(std::unique(points.begin(), points.end()), points.end());
    return points;
}

std::optional<QStringView> MountTable::pointOf(QStringView path)
{
    refresh();
    if (!path.startsWith(QLatin1Char('/')))
        return std::nullopt;
    while (path.endsWith(QLatin1Char('/')))
        path.chop(1);
    while (!path.isEmpty()) {
        const auto found = std::lower_bound(m_points.begin(), m_points.end(), path);
        if (found != m_points.end() && *found == path)
            return QStringView(*found);
        path.truncate(path.lastIndexOf(QLatin1Char('/')));
    }
    // The root holds everything, also where it is no mount of its own.
    return QStringView(u"");
}

void MountTable::refresh()
{
    if (!m_mountInfo.isOpen()) {
        m_mountInfo = FileDescriptor::open("/proc/self/mountinfo", O_RDONLY);
        if (m_mountInfo.isOpen())
            m_points = parse(readFromStart(m_mountInfo.get()));
        return;
    }
    // The kernel answers with POLLPRI and POLLERR once after each change; the file itself is always readable.
    pollfd changes{m_mountInfo.get(), POLLPRI, 0};
    if (::poll(&changes, 1, 0) > 0)
        m_points = parse(readFromStart(m_mountInfo.get()));
}

} // namespace marvola
