// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_CLIPTEXTS_H
#define MARVOLA_FFMPEG_CLIPTEXTS_H

#include <QtCore/QString>

/// What holds for the texts of clips whatever tag they come from.
namespace marvola {

/// Several values of one kind (two artists) are one text with this between them, as libavformat joins them too.
inline constexpr char16_t ValueSeparator = u';';

/// The name of genre \a number in the list that ID3 tags use; empty when there is none.
QString genreName(int number);

/// \a genre with numbers in place of a name ("13", "(13)", "(13)Pop") turned into names.
QString genreText(const QString &genre);

/// Sets \a field to \a text, made fit to be shown: without control characters at its ends, and not endless. A field
/// that has a text keeps it.
void fillText(QString &field, const QString &text);

} // namespace marvola

#endif
