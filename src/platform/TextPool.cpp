// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/TextPool.h"

#include <algorithm>

namespace marvola {

namespace {

/// Most pools hold a handful of texts, some tens of thousands.
constexpr qsizetype FirstBlockSize = 128;
constexpr qsizetype LastBlockSize = qsizetype(64) * 1024;

} // namespace

QByteArrayView TextPool::keep(QByteArrayView text)
{
    if (text.size() > m_left) {
        m_nextSize = std::clamp(m_nextSize * 2, FirstBlockSize, LastBlockSize);
        m_left = std::max(m_nextSize, text.size());
        m_blocks.emplace_back(new char[static_cast<std::size_t>(m_left)]);
        m_free = m_blocks.back().get();
    }
    char *const kept = m_free;
    std::copy(text.begin(), text.end(), kept);
    m_free += text.size();
    m_left -= text.size();
    return {kept, text.size()};
}

} // namespace marvola
