// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_INPLACECOMMIT_H
#define MARVOLA_PLATFORM_INPLACECOMMIT_H

#include "platform/TextFrame.h"

namespace marvola {

/// Commits inside the space that a file already has, for media without room for a second copy. The change goes into a
/// journal in the blank space at the file's end first; from then on the file reads as meant, whatever happens.
/// \param now what the file \a path holds
/// \param next what it shall hold; of the same length
/// \return false when there is no room for the journal, or it cannot be written: the file reads as it did
[[nodiscard]] bool commitInPlace(const QByteArray &path, const TextFrame &now, const TextFrame &next);

} // namespace marvola

#endif
