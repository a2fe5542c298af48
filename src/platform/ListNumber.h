// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_LISTNUMBER_H
#define MARVOLA_PLATFORM_LISTNUMBER_H

#include <QtCore/QByteArrayView>

namespace marvola {

/// The number that \a key is the decimal spelling of, as entries of lists are keyed, if that is from 1 to \a most;
/// else 0.
inline std::size_t listNumber(QByteArrayView key, std::size_t most)
{
    std::size_t number = 0;
    for (const char digit : key) {
        const bool isDigit = digit >= '0' && digit <= '9';
        if (!isDigit || (number == 0 && digit == '0'))
            return 0;
        number = number * 10 + static_cast<std::size_t>(digit - '0');
        if (number > most)
            return 0;
    }
    return number;
}

} // namespace marvola

#endif
