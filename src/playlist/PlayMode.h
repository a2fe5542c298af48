// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLAYLIST_PLAYMODE_H
#define MARVOLA_PLAYLIST_PLAYMODE_H

/// The player's modes as the playing list takes them.
namespace marvola {

enum class Shuffle { Off, On };
enum class Repeat { Off, On };
/// Whether a chosen item also becomes the first in the play order.
enum class PickFirst { No, Yes };

constexpr Shuffle shuffleOf(bool on)
{
    return on ? Shuffle::On : Shuffle::Off;
}

constexpr Repeat repeatOf(bool on)
{
    return on ? Repeat::On : Repeat::Off;
}

constexpr PickFirst pickFirstOf(bool yes)
{
    return yes ? PickFirst::Yes : PickFirst::No;
}

} // namespace marvola

#endif
