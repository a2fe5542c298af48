// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "WaveFile.h"

#include <QtCore/QtEndian>

namespace {

QByteArray number32(qsizetype value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(static_cast<quint32>(value), bytes.data());
    return bytes;
}

QByteArray chunk(const char *id, const QByteArray &content)
{
    return QByteArray(id) + number32(content.size()) + content + QByteArray(content.size() % 2, '\0');
}

QByteArray tag(const char *id, const QString &text)
{
    return text.isEmpty() ? QByteArray() : chunk(id, text.toUtf8() + '\0');
}

} // namespace

QByteArray waveFile(const WaveTags &tags)
{
    // PCM, one channel, 8,000 samples of 16 bits a second.
    const QByteArray format = QByteArray::fromHex("01000100401f0000803e000002001000");
    const QByteArray info = "INFO" + tag("IART", tags.artist) + tag("IPRD", tags.album) + tag("IGNR", tags.genre);
    return chunk("RIFF", "WAVE" + chunk("fmt ", format) + chunk("LIST", info) + chunk("data", QByteArray(320, '\0')));
}
