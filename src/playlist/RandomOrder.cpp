// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/RandomOrder.h"

#include <cstdlib>
#include <ctime>

namespace marvola {

Draw reseedFromClock()
{
    std::srand(static_cast<unsigned int>(std::time(nullptr)));
    return [] { return static_cast<quint32>(std::rand()); };
}

void randomizeList(QList<quint32> &list, const Reseed &reseed)
{
    swapHeadAtRandom(static_cast<quint16>(list.size()), reseed, [&list](quint16 other) {
        if (other == 0)
            return;
        const quint32 head = list.at(0);
        list[0] = list.at(other);
        // Deliberate: only the value that leaves the head is cut to 16 bits, as positions in a list always fit.
        list[other] = static_cast<quint16>(head);
    });
}

} // namespace marvola
