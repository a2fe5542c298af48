// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_TEXTJOURNAL_H
#define MARVOLA_PLATFORM_TEXTJOURNAL_H

#include "platform/TextSeal.h"

namespace marvola {

/// A change that is about to be made inside a sealed text file, written beforehand as one comment line into the blank
/// space at the file's end. A power cut between the two leaves a file that is whole again once the change is applied.
///
/// The line holds no "=" outside its mark: where a power cut leaves only a part of it, no reader takes the part for an
/// entry.
struct TextJournal
{
    TextSeal seal;        ///< the seal of the file when the change is made
    qsizetype offset = 0; ///< where in the file the changed bytes go
    QByteArray changed;   ///< the changed bytes

    static constexpr QByteArrayView Mark{"#journal=1 "};

    /// The change that turns \a before into the sealed \a after.
    static TextJournal between(QByteArrayView before, QByteArrayView after, const TextSeal &seal);

    QByteArray toLine() const;
    /// The journal in the last line of \a file that is not blank; nothing when that is no journal, or one that is not
    /// whole or does not fit the file.
    static std::optional<TextJournal> fromFile(QByteArrayView file);
    /// \a file with the change made and the space behind its content blank; nothing when that does not give the
    /// content that the seal speaks of.
    std::optional<QByteArray> applied(QByteArrayView file) const;
};

} // namespace marvola

#endif
