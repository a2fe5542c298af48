// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CACHINGPLAYERENGINE_H
#define MARVOLA_CACHINGPLAYERENGINE_H

#include <marvola/Export.h>
#include <marvola/PlayerEngine.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <functional>
#include <memory>

/// A player engine that remembers what another one has answered, in a file, so that the other one opens only files that
/// are new or have changed in the next scan.
///
/// It answers as the other engine does, to the byte. A file is known by its path, its size and the times of its last
/// modification and status change, in nanoseconds. Asked again is about a file that has another stamp; about one whose
/// stamp is less than about three seconds old, or in the future, since a further change might not show in it; about one
/// that changed while it was asked about; about what is no regular file; and whatever was answered with false. Answers
/// hold for the scan settings under which they were given, and are remembered from the first exchange of both settings
/// on, which every scan begins with. A caller that does not hand in blank variables (0, a new ClipInfo) is answered by
/// the other engine. Both questions about a file within ten milliseconds get by with one look at it.
///
/// What shows neither in the size nor in the times is not noticed: on media of the FAT family, which keep no time of a
/// status change, a change of contents whose author set the time of modification back, or another card that has a file
/// of the same path, size and times; anywhere, that the medium or this process's rights no longer let the file be read,
/// and a change through a memory mapping in a page that the same program had changed seconds before. Removing the file
/// of answers has everything asked again.
///
/// At most 65,535 answers and 16 MiB of them are remembered, none above 64 KiB; those that were not asked for the
/// longest go first. What cannot be read or written is no cache and no failure.
///
/// Threads are as with every PlayerEngine: one call at a time, on whichever thread the other engine may be called.
class MARVOLA_EXPORT CachingPlayerEngine : public PlayerEngine
{
public:
    /// Remembers what an engine answers; from now on that one is asked and set through this object alone.
    /// \param engine the engine, which is not owned and must outlive this object
    /// \param cacheFile path of the cache, in a folder that exists; read at the first question. It may be missing, and
    ///        lost at any time. A file that is something else is left alone; so is a link. An empty path: nothing is
    ///        remembered beyond the life of this object.
    /// \param identity all that answers depend on besides the file and the scan settings, such as the kind of the
    ///        engine, its version and its text codec. What was remembered with another identity is not used.
    CachingPlayerEngine(PlayerEngine &engine, const QString &cacheFile, const QString &identity);
    ~CachingPlayerEngine() override;

    /// Sets what answers depend on from now on, after the other engine was set up differently.
    void setIdentity(const QString &identity);

    /// Has \a isLasting called after each answer that might be remembered, on the same thread; when it gives false the
    /// answer is not, because it depended on the moment: a read that failed, or a time that ran out. An empty function,
    /// as at the start: all are.
    void setLastingCheck(std::function<bool()> isLasting);

    /// Handed on to the other engine.
    int exchangeScanSettingA(int value) override;
    /// Handed on to the other engine.
    int exchangeScanSettingB(int value) override;
    bool getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo) override;
    bool getClipInfo(const QByteArray &utf8Path, ClipInfo &info) override;

    /// Handed on to the other engine; then the cache is written if something new was learned, all or nothing. When
    /// several objects or processes share a file, the last one to write it has all of it.
    void finishScan() override;

private:
    struct Q_DECL_HIDDEN Private;
    std::unique_ptr<Private> d;
};

#endif
