// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NET_LINKSTATUSFILE_H
#define MARVOLA_NET_LINKSTATUSFILE_H

#include "platform/FileDescriptor.h"

#include <QtCore/QByteArray>
#include <QtCore/QLatin1String>
#include <QtCore/QString>

#include <optional>

namespace marvola {

/// Where the streaming player looks for the network interface of the link.
inline constexpr QLatin1String LinkStatusFileName("/tmp/Marvola_GPRS_Link");

/// What the file holds for \a interfaceName, in UTF-8 and without a line break: "MyInterface=" and the name, or
/// "No Interface" when there is none or what there is cannot be a name: it has a character that ends or hides a line,
/// or is longer than 4096 bytes.
QByteArray linkStatusLine(const std::optional<QString> &interfaceName);

/// The link status file, made anew and open for one line. Whoever reads it finds it empty until the line is there, and
/// then the whole line.
///
/// It lies in a folder that everybody can write to. What was there is replaced only when it is a regular file of this
/// user's own with no other name. Whatever else has the path is left alone and not opened: symbolic and hard links,
/// other users' files, pipes, devices and folders.
class LinkStatusFile
{
public:
    /// Makes the file, empty, in place of the one that was there. Never blocks.
    /// \return nothing when that is not possible, or not safe
    static std::optional<LinkStatusFile> open(const QString &path);

    /// Writes \a line, whole; when that fails, the file is left empty. Called once.
    [[nodiscard]] bool write(const QByteArray &line);

private:
    LinkStatusFile(FileDescriptor file, QByteArray name);

    FileDescriptor m_file;
    QByteArray m_name;
};

} // namespace marvola

#endif
