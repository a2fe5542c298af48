// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FOOTPRINT_NUMBEREDENGINE_H
#define MARVOLA_FOOTPRINT_NUMBEREDENGINE_H

#include <marvola/PlayerEngine.h>

/// Takes every file for audio and opens none: texts are made of the number that a file's name begins with. Files
/// \a perArtist in a row share artist, album and genre.
class NumberedEngine : public PlayerEngine
{
public:
    explicit NumberedEngine(int perArtist);

    int exchangeScanSettingA(int value) override;
    int exchangeScanSettingB(int value) override;
    bool getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo) override;
    bool getClipInfo(const QByteArray &utf8Path, ClipInfo &info) override;
    void finishScan() override {}

private:
    int m_perArtist;
    int m_settingA = 1;
    int m_settingB = 1;
};

#endif
