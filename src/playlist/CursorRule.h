// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLAYLIST_CURSORRULE_H
#define MARVOLA_PLAYLIST_CURSORRULE_H

namespace marvola {

/// Stands for "no such index", "no such place" and, as the cursor, for "no active item".
inline constexpr int NoPosition = -1;

/// What the cursor's new place depends on when an item is removed.
struct Removal
{
    int cursor = NoPosition;       ///< before the removal
    int removedPlace = NoPosition; ///< the removed item's place in the play order, NoPosition when it had none
    int countBefore = 0;           ///< items before the removal
    int countAfter = 0;            ///< items after it
};

/// The cursor after a removal: the active item keeps its place; when it is the active item that goes, the cursor moves
/// so that the item that followed is played next, except at the front, where the one that followed becomes active at
/// once.
constexpr int cursorAfterRemoval(const Removal &removal)
{
    if (removal.removedPlace == NoPosition || removal.removedPlace > removal.cursor)
        return removal.cursor;
    if (removal.removedPlace < removal.cursor)
        return removal.cursor - 1;
    if (removal.countAfter == 0)
        return NoPosition;
    const bool wasLast = removal.removedPlace == removal.countBefore - 1;
    return wasLast || removal.removedPlace == 0 ? 0 : removal.removedPlace - 1;
}

} // namespace marvola

#endif
