// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_TEXTFRAME_H
#define MARVOLA_PLATFORM_TEXTFRAME_H

#include "platform/TextSeal.h"

namespace marvola {

/// The bytes of a text file and where its content lies in them: behind the seal and before the blank space at the end.
/// A file without a seal, or with one that does not hold, is content from its first line to its last.
class TextFrame
{
public:
    enum class State {
        Blank,     ///< no file, or one of nothing but blanks
        Sealed,    ///< the seal holds
        Journaled, ///< whole once the journal at its end is applied, which bytes() already is
        Unsealed   ///< made or changed by others, or damaged
    };

    /// Files longer than this are not read.
    static constexpr qsizetype MaxFileSize = qsizetype(256) * 1024 * 1024;

    TextFrame() = default;
    /// Takes apart the bytes of a file.
    explicit TextFrame(QByteArray file);

    State state() const { return m_state; }
    /// Whether the content is known to be as it was once committed.
    bool isWhole() const { return m_state == State::Sealed || m_state == State::Journaled; }
    /// Whether there is a first line that claims to be a seal.
    bool hasSealLine() const { return m_bytes.startsWith(TextSeal::Mark); }

    /// The whole file, journal applied.
    const QByteArray &bytes() const { return m_bytes; }
    QByteArrayView content() const { return QByteArrayView(m_bytes).sliced(m_begin, m_end - m_begin); }
    /// Where the content ends in bytes().
    qsizetype contentEnd() const { return m_end; }
    /// The seal of a whole file.
    const TextSeal &seal() const { return m_seal; }
    /// What others call this file by: the check of its content if that is sealed, else that of all its bytes.
    quint32 identity() const;

    /// Seals \a file, whose content begins at TextSeal::Size and reaches to its end, and fills it with line ends to
    /// \a size bytes if it is shorter.
    static TextFrame sealed(QByteArray file, quint32 replaced, qsizetype size);

    /// The same with the blank space at its end made or cut so that the file has \a size bytes, which the content fits
    /// in.
    TextFrame ofSize(qsizetype size) const;

private:
    void findContent();

    QByteArray m_bytes;
    qsizetype m_begin = 0;
    qsizetype m_end = 0;
    TextSeal m_seal;
    State m_state = State::Blank;
};

} // namespace marvola

#endif
