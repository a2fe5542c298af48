// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_INPLACECOMMIT_H
#define MARVOLA_PLATFORM_INPLACECOMMIT_H

#include "platform/TextFrame.h"

#include <optional>

namespace marvola {

/// May the file be made longer, so that the change fits?
enum class Growth { Allowed, Forbidden };

/// Commits inside the file itself, for media without room for a second copy, or where the rename of a second copy is
/// not safe. The change goes into a journal in the blank space at the file's end first; from then on the file reads as
/// meant, whatever happens.
/// \param now what the file \a path holds
/// \param next what it shall hold
/// \return the file as it is then; nothing when there is no room for the journal, or it cannot be written: the file
/// then reads as it did
[[nodiscard]] std::optional<TextFrame> commitInPlace(const QByteArray &path, const TextFrame &now,
                                                     const TextFrame &next, Growth growth);

} // namespace marvola

#endif
