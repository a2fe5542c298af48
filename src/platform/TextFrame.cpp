// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/TextFrame.h"

#include "platform/ConfigSyntax.h"
#include "platform/Crc32.h"
#include "platform/TextJournal.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace marvola {

namespace {

constexpr QByteArrayView ByteOrderMark("\xEF\xBB\xBF");

} // namespace

TextFrame::TextFrame(QByteArray file) : m_bytes(std::move(file))
{
    // The journal comes first: once it is on the medium the change counts as made, even where nothing of the change
    // itself was written and the old seal still holds.
    if (const auto journal = TextJournal::fromFile(m_bytes)) {
        if (auto image = journal->applied(m_bytes)) {
            m_bytes = std::move(*image);
            m_seal = journal->seal;
            m_state = State::Journaled;
        }
    }
    const auto seal = m_state == State::Journaled ? std::nullopt : TextSeal::fromFile(m_bytes);
    if (seal && seal->holdsFor(m_bytes)) {
        m_seal = *seal;
        m_state = State::Sealed;
    }
    if (isWhole()) {
        m_begin = TextSeal::Size;
        m_end = m_begin + static_cast<qsizetype>(m_seal.length);
    } else {
        findContent();
    }
}

void TextFrame::findContent()
{
    if (endOfText(m_bytes) == 0)
        return;
    m_state = State::Unsealed;
    if (m_bytes.startsWith(ByteOrderMark))
        m_begin = ByteOrderMark.size();
    QByteArrayView text = QByteArrayView(m_bytes).sliced(m_begin);
    if (text.startsWith(TextSeal::Mark)) {
        const qsizetype newline = text.indexOf('\n');
        m_begin = newline < 0 ? m_bytes.size() : m_begin + newline + 1;
        text = QByteArrayView(m_bytes).sliced(m_begin);
    }
    text = text.first(endOfText(text));
    // A journal that cannot be applied is of no use to anybody.
    const qsizetype lastLine = text.chopped(text.endsWith('\n') ? 1 : 0).lastIndexOf('\n') + 1;
    if (text.sliced(lastLine).startsWith(TextJournal::Mark))
        text = text.first(endOfText(text.first(lastLine)));
    m_end = m_begin + text.size();
}

quint32 TextFrame::identity() const
{
    return isWhole() ? m_seal.check : crc32(m_bytes);
}

TextFrame TextFrame::sealed(QByteArray file, quint32 replaced, qsizetype size)
{
    TextFrame frame;
    const QByteArrayView content = QByteArrayView(file).sliced(TextSeal::Size);
    frame.m_seal = {static_cast<quint32>(content.size()), crc32(content), replaced};
    frame.m_state = State::Sealed;
    frame.m_begin = TextSeal::Size;
    frame.m_end = file.size();
    std::memcpy(file.data(), frame.m_seal.toLine().constData(), TextSeal::Size);
    frame.m_bytes = std::move(file);
    return frame.m_bytes.size() < size ? frame.ofSize(size) : frame;
}

TextFrame TextFrame::ofSize(qsizetype size) const
{
    TextFrame frame = *this;
    frame.m_bytes.resize(size, '\n');
    return frame;
}

} // namespace marvola
