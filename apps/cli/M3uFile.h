// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_M3UFILE_H
#define MARVOLA_CLI_M3UFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

namespace marvola {

/// A longer file is no playlist: the longest one takes less with paths of two hundred bytes.
inline constexpr qint64 MaxM3uBytes = qint64(16) * 1024 * 1024;

enum class Overwrite { No, Yes };

/// The bytes of the regular file \a path.
/// \param problem receives a line for the user when there is no result
std::optional<QByteArray> readM3uFile(const QString &path, QString &problem);

/// Writes \a bytes to \a path, all or nothing. Only a regular file is ever replaced.
/// \param problem receives a line for the user on failure
[[nodiscard]] bool writeM3uFile(const QString &path, const QByteArray &bytes, Overwrite overwrite, QString &problem);

} // namespace marvola

#endif
