// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLAYLIST_RANDOMORDER_H
#define MARVOLA_PLAYLIST_RANDOMORDER_H

#include <QtCore/QList>

#include <functional>

namespace marvola {

/// Gives the next random number.
using Draw = std::function<quint32()>;

/// Starts a sequence of random numbers anew and gives its draws. Called once for each shuffle that has something to do.
using Reseed = std::function<Draw()>;

/// The C library's generator, seeded with the time in seconds: two shuffles of one length within a second are the same.
Draw reseedFromClock();

/// The one shuffle of the library: \a count passes, each calling \a swapHeadWith with a random position below \a count.
/// The generator is not touched when there is nothing to shuffle.
///
/// Deliberate: this is not a uniform shuffle. The head takes part in every exchange, and players rely on the orders
/// that this scheme gives for a known generator.
template<typename SwapHeadWith>
void swapHeadAtRandom(quint16 count, const Reseed &reseed, SwapHeadWith swapHeadWith)
{
    if (count == 0)
        return;
    const Draw draw = reseed();
    for (int pass = 0; pass < count; ++pass)
        swapHeadWith(static_cast<quint16>(draw() % count));
}

/// Puts \a list into random order in place. Lists are counted with 16 bits, so only the first (size modulo 65,536)
/// entries take part, and values beyond 65,535 lose their upper bits when they leave the head.
void randomizeList(QList<quint32> &list, const Reseed &reseed = reseedFromClock);

} // namespace marvola

#endif
