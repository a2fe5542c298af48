// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/MountPoint.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <optional>

#include <sys/stat.h>

namespace marvola {

namespace {

std::optional<dev_t> deviceOf(const QByteArray &path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 ? std::optional(status.st_dev) : std::nullopt;
}

} // namespace

MountPoint::MountPoint(const QString &dir)
{
    QByteArray path = QFile::encodeName(QFileInfo(dir).canonicalFilePath());
    const auto device = deviceOf(path);
    while (device && path.size() > 1) {
        const QByteArray above = path.first(std::max<qsizetype>(path.lastIndexOf('/'), 1));
        if (deviceOf(above) != device) {
            m_path = path;
            return;
        }
        path = above;
    }
}

bool MountPoint::isMounted() const
{
    if (m_path.isEmpty())
        return true;
    const auto device = deviceOf(m_path);
    return device && device != deviceOf(m_path + "/..");
}

} // namespace marvola
