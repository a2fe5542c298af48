// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_M3UTEXT_H
#define MARVOLA_CLI_M3UTEXT_H

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/// Playlists as other programs exchange them: a text with a line for each item, a path or a link; lines that begin with
/// "#" are comments. What is read is anybody's bytes.
namespace marvola {

/// A line, or an item, that was left out.
struct M3uSkipped
{
    qsizetype number; ///< of the line or the item, from 1
    QString text;     ///< cut when it is very long
    QString reason;
};

/// What a text gives.
struct M3uEntries
{
    /// More entries than a playlist can hold are left out.
    static constexpr qsizetype MaxItems = 65535;
    /// What is skipped beyond these is only counted.
    static constexpr qsizetype MaxReports = 1000;

    QStringList items; ///< absolute paths and links, none twice
    QList<M3uSkipped> skipped;
    qsizetype skippedCount = 0;
};

/// What becomes of a list.
struct M3uBytes
{
    QByteArray bytes;
    qsizetype itemCount = 0;
    QList<M3uSkipped> skipped;
};

/// The text of \a bytes: by the byte order mark, else UTF-8 if it is valid, else by the codec \a codecName.
/// \return none when there is no such codec
std::optional<QString> decodeM3u(const QByteArray &bytes, const QString &codecName);

/// The items that \a text names; relative paths start in \a folder, an absolute path. Whether files exist is not asked:
/// a card may be out.
M3uEntries parseM3u(const QString &text, const QString &folder);

/// \a items as a text for a file in \a folder, UTF-8 with line feeds. A path is relative to the folder when the longest
/// of the storage places \a roots that holds it is also the one that holds the folder. Items that parseM3u() would not
/// give back are left out.
M3uBytes formatM3u(const QStringList &items, const QString &folder, const QStringList &roots);

} // namespace marvola

#endif
