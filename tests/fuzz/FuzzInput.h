// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FUZZ_FUZZINPUT_H
#define MARVOLA_TESTS_FUZZ_FUZZINPUT_H

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

/// Takes an input apart. What steers a target is taken from the end, so that a file alone is a good seed: what is
/// missing counts as 0.
class FuzzInput
{
public:
    FuzzInput(const unsigned char *data, std::size_t size)
        : m_rest(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size))
    {
    }

    quint8 takeByte()
    {
        if (m_rest.isEmpty())
            return 0;
        const auto byte = static_cast<quint8>(m_rest.back());
        m_rest.chop(1);
        return byte;
    }
    /// Up to 15 UTF-16 units, any of them.
    QString takeText()
    {
        QString text = QStringLiteral("");
        for (int left = takeByte() % 16; left > 0; --left) {
            char16_t unit = takeByte();
            // Mostly ASCII, which is where the syntax lies.
            if (unit >= 0xF0)
                unit = static_cast<char16_t>(takeByte() * 0x100 + unit);
            text += QChar(unit);
        }
        return text;
    }
    QByteArrayView rest() const { return m_rest; }

private:
    QByteArrayView m_rest;
};

#endif
