// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef FOLDERENGINE_H
#define FOLDERENGINE_H

#include <marvola/PlayerEngine.h>

#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

#include <utility>

/// A player engine for collections kept as ARTIST/ALBUM/SONG: it believes the folders and opens no file.
class FolderEngine : public PlayerEngine
{
public:
    // Two settings that a scan sets to 0 and puts back. An engine gives them a meaning, such as how long to look.
    int exchangeScanSettingA(int value) override { return std::exchange(m_settingA, value); }
    int exchangeScanSettingB(int value) override { return std::exchange(m_settingB, value); }

    bool getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo) override
    {
        const QString suffix = QFileInfo(QString::fromUtf8(utf8Path)).suffix().toLower();
        hasVideo = suffix == QLatin1String("mp4") || suffix == QLatin1String("3gp") ? 1 : 0;
        hasAudio = 1;
        return true;
    }

    bool getClipInfo(const QByteArray &utf8Path, ClipInfo &info) override
    {
        const QStringList parts = QString::fromUtf8(utf8Path).split(QLatin1Char('/'));
        if (parts.size() < 4)
            return false; // the library then shows the file without artist and album
        info.album = parts.at(parts.size() - 2);
        info.artist = parts.at(parts.size() - 3);
        return true;
    }

    void finishScan() override {} // the place to let go of what a scan has cached

private:
    int m_settingA = 1;
    int m_settingB = 1;
};

#endif
