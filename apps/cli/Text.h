// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_TEXT_H
#define MARVOLA_CLI_TEXT_H

#include <QtCore/QString>

/// Texts made fit for where they go. File names and tags are anybody's text: what they hold must neither command the
/// terminal nor break a JSON reader.
namespace marvola {

/// \a text for people, on one line: control and formatting characters and halves of surrogate pairs are written as
/// escapes ("\n", "\x1b", "\u202e"). All else stays.
QString printable(const QString &text);

/// \a text for JSON: halves of surrogate pairs, which no UTF-8 can hold, become U+FFFD.
QString wellFormed(const QString &text);

/// Has the C library know all characters, also where the user's locale does not exist or is not UTF-8. Call it at the
/// start, after Qt has set the locale; without it displayWidth() counts wide characters as one column.
void useWideCharacters();

/// The number of terminal columns that the printable \a text takes.
int displayWidth(const QString &text);

/// \a text with blanks behind it up to \a width columns.
QString padded(const QString &text, int width);

} // namespace marvola

#endif
