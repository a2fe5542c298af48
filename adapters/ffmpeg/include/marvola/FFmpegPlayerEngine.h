// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEGPLAYERENGINE_H
#define MARVOLA_FFMPEGPLAYERENGINE_H

#include <marvola/FFmpegExport.h>
#include <marvola/PlayerEngine.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QStringList>

#include <memory>

/// A player engine on FFmpeg's libavformat, with TagLib for the texts of ID3 tags.
///
/// What a file holds decides, never what it is called: a video named .mp3 is video, and cover art is not. A file is
/// opened once for both questions: the answer to the last path asked about is kept until finishScan(), and holds as
/// long as the file's identity, size and time stamps do. Nothing but that one file is ever opened: no network, no
/// playlists, no files that a file refers to.
///
/// Files are foreign data. Each is read within a budget of bytes and of time; what is damaged, endless or no regular
/// file gives false or what could be learned within the budget.
///
/// Engines are independent of one another and may live on different threads; one engine answers one call at a time.
/// It starts no thread. The first engine of a process sets FFmpeg's log level to quiet and TagLib's debug listener to
/// one that says nothing; both are process-wide, and a program that wants them speaking sets them afterwards.
class MARVOLA_FFMPEG_EXPORT FFmpegPlayerEngine : public PlayerEngine
{
public:
    FFmpegPlayerEngine();
    ~FFmpegPlayerEngine() override;

    /// Depth. 0: kinds, texts and numbers as the file's headers give them. Any other value, as at the start (1):
    /// streams are analysed too, so that duration, bit rate and picture size are known where headers do not tell them.
    int exchangeScanSettingA(int value) override;

    /// Patience. 0: a file gets a scan's budget of 32 MiB and 3 seconds, so that one bad file cannot hold up a scan.
    /// Any other value, as at the start (1): 256 MiB and 30 seconds, for a file that the user waits for.
    int exchangeScanSettingB(int value) override;

    bool getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo) override;
    bool getClipInfo(const QByteArray &utf8Path, ClipInfo &info) override;

    /// Forgets the answer that was kept for the last path.
    void finishScan() override;

    /// Names a file in which the engine notes which media file it is just reading, so that one over which the process
    /// dies does not stop the next one too: such a file cannot be read, until it changes. The note file is made where
    /// it is not there, in a folder that exists, and shared with other processes; noting costs two small writes a file.
    /// An empty path, as at the start: nothing is noted, and no file is suspected. docs/ffmpeg-engine.md has more.
    /// \return false when nothing can be noted there: the file is somebody else's, a link, or eight processes use it.
    bool setCrashNote(const QString &path);
    /// The files that this engine was asked about and did not touch, because a process died while it read them; in the
    /// order in which they were first asked about.
    QList<QByteArray> suspects() const;

    /// All that answers depend on besides the file and the scan settings: the versions of this engine and of what it
    /// reads with, the text codec, and the files over which a process had died when setCrashNote() was called. What a
    /// CachingPlayerEngine wants as its identity.
    QString identity() const;
    /// Whether the last file that was read would give the same answer again: no read of it failed, and the time
    /// sufficed. What a CachingPlayerEngine wants as its lasting check.
    bool isAnswerLasting() const;

    /// Names the codec of texts that were never Unicode (ID3v1, ID3v2 texts said to be Latin-1, RIFF), "GBK" at the
    /// start. docs/ffmpeg-engine.md has the rule by which such bytes are told from real Latin-1 and from UTF-8.
    /// \return false when Qt has no such codec; texts that are not UTF-8 are then read as Latin-1, not guessed at.
    bool setTextCodec(const QString &name);
    /// The name last set, whether or not there is such a codec.
    QString textCodec() const;
    /// Whether Qt has the codec that was set last.
    bool isTextCodecAvailable() const;

    /// The extensions, without dots, of what this engine can describe.
    static QStringList supportedExtensions();
    /// Tells the MediaTypeRegistry that supportedExtensions() is what the media player plays.
    static void registerExtensions();

private:
    struct Q_DECL_HIDDEN Private;
    std::unique_ptr<Private> d;
};

#endif
