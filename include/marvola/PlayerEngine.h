// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLAYERENGINE_H
#define MARVOLA_PLAYERENGINE_H

#include <marvola/Export.h>
#include <marvola/Types.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// What an engine knows about one media file. The library index uses only artist, album and genre.
///
/// A text that the file does not carry is empty. Numbers that are not known are 0.
struct ClipInfo
{
    QString title;         ///< of the piece
    QString artist;        ///< who performs it
    QString album;         ///< what it was published on
    QString genre;         ///< what kind of music it is
    QString composer;      ///< who wrote it
    QString copyright;     ///< whose it is
    qint64 durationMs = 0; ///< playing time in milliseconds
    int bitrate = 0;       ///< bits per second
    int sampleRate = 0;    ///< hertz
    int channels = 0;      ///< of sound
    int width = 0;         ///< pixels
    int height = 0;        ///< pixels
    QString comment;       ///< free text
};

/// The player's engine as the library sees it: it says what a media file holds.
///
/// The library calls an engine on its refresh worker thread (and on its own thread from within
/// MP_MyLibrary::refreshMediaList(), never both), one call at a time. It never owns the engine: the
/// engine must outlive every MP_MyLibrary that was given it and every refresh that they started (a refresh outlives its
/// library object; MP_MyLibrary::cancelRefreshMyLibrary() waits for it).
class MARVOLA_EXPORT PlayerEngine
{
public:
    PlayerEngine() = default;
    PlayerEngine(const PlayerEngine &) = delete;
    PlayerEngine &operator=(const PlayerEngine &) = delete;
    virtual ~PlayerEngine();

    /// Sets the first of two scan settings to \a value and returns the previous value. A scan sets it to 0 before its
    /// first file and puts the previous value back after its last. What the setting governs is the engine's own.
    virtual int exchangeScanSettingA(int value) = 0;

    /// The same for the second scan setting.
    virtual int exchangeScanSettingB(int value) = 0;

    /// Tells whether the file at \a utf8Path has audio and whether it has video (1 yes, 0 no).
    /// \return false when the file cannot be read; the library then counts both as 0.
    virtual bool getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo) = 0;

    /// Fills \a info for the file at \a utf8Path.
    /// \return false when the file cannot be read; the library then ignores \a info.
    virtual bool getClipInfo(const QByteArray &utf8Path, ClipInfo &info) = 0;

    /// Called once after the last file of a storage place.
    virtual void finishScan() = 0;
};

#endif
