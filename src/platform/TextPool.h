// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_TEXTPOOL_H
#define MARVOLA_PLATFORM_TEXTPOOL_H

#include <QtCore/QByteArrayView>

#include <memory>
#include <vector>

namespace marvola {

/// Keeps copies of byte strings in a few large blocks, where tens of thousands of them take a fraction of the time that
/// as many allocations take. A copy stays where it is until the pool goes; none goes alone.
class TextPool
{
public:
    QByteArrayView keep(QByteArrayView text);

private:
    std::vector<std::unique_ptr<char[]>> m_blocks;
    char *m_free = nullptr;   ///< in the last block
    qsizetype m_left = 0;     ///< bytes from there
    qsizetype m_nextSize = 0; ///< of a block
};

} // namespace marvola

#endif
