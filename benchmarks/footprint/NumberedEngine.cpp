// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "NumberedEngine.h"

#include <utility>

NumberedEngine::NumberedEngine(int perArtist) : m_perArtist(perArtist)
{
}

int NumberedEngine::exchangeScanSettingA(int value)
{
    return std::exchange(m_settingA, value);
}

int NumberedEngine::exchangeScanSettingB(int value)
{
    return std::exchange(m_settingB, value);
}

bool NumberedEngine::getMediaKind(const QByteArray &, UINT8 &hasAudio, UINT8 &hasVideo)
{
    hasAudio = 1;
    hasVideo = 0;
    return true;
}

bool NumberedEngine::getClipInfo(const QByteArray &utf8Path, ClipInfo &info)
{
    constexpr int DigitsOfNumber = 5;
    const QByteArray name = utf8Path.mid(utf8Path.lastIndexOf('/') + 1);
    const int artist = name.left(DigitsOfNumber).toInt() / m_perArtist;
    info.title = QStringLiteral("Title of %1").arg(QString::fromUtf8(name));
    info.artist = QStringLiteral("Artist number %1").arg(artist);
    info.album = QStringLiteral("Album number %1").arg(artist);
    info.genre = QStringLiteral("Genre number %1").arg(artist);
    return true;
}
