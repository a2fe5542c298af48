// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/FFmpegPlayerEngine.h>

#include "CrashNote.h"
#include "FileInspection.h"
#include "MediaFile.h"
#include "TextDecoder.h"

#include <marvola/MediaTypeRegistry.h>

#include <taglib/taglib.h>
#include <taglib/tdebuglistener.h>

#include <mutex>
#include <optional>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libavutil/log.h>
}

namespace {

using marvola::Depth;
using marvola::FileFacts;
using marvola::FileIdentity;
using marvola::MediaFile;
using marvola::MiB;
using marvola::ReadBudget;

constexpr ReadBudget ScanBudget = {32 * MiB, std::chrono::seconds(3)};
constexpr ReadBudget PatientBudget = {256 * MiB, std::chrono::seconds(30)};

constexpr const char Extensions[] =
    "mp3 mp2 m4a m4b aac ogg oga opus flac wav wma amr mka aif aiff ape wv caf "
    "mp4 m4v 3gp 3g2 mkv webm avi mov mpg mpeg vob ts mts m2ts wmv asf flv f4v ogv rm rmvb";

class SilentListener : public TagLib::DebugListener
{
public:
    // TagLib outlives this library's objects and would go on using the pointer.
    ~SilentListener() override { TagLib::setDebugListener(nullptr); }

    void printMessage(const TagLib::String &) override {}
};

/// Both libraries print what they find odd in a file, for the whole process and without regard to who asked.
void silenceLibraries()
{
    static std::once_flag once;
    std::call_once(once, [] {
        av_log_set_level(AV_LOG_QUIET);
        static SilentListener listener;
        TagLib::setDebugListener(&listener);
    });
}

} // namespace

struct FFmpegPlayerEngine::Private
{
    /// What the file at \a path holds: remembered, or learned now.
    const std::optional<FileFacts> &facts(const QByteArray &path)
    {
        if (identity && path == rememberedPath && FileIdentity::of(path) == identity)
            return remembered;
        forget();
        MediaFile file(path, settingB == 0 ? ScanBudget : PatientBudget);
        if (!file.isOpen())
            return remembered;
        rememberedPath = path;
        identity = file.identity();
        if (note.isCulprit(path, *identity)) {
            if (!suspects.contains(path))
                suspects.append(path);
            return remembered;
        }
        note.begin(path, *identity);
        remembered = marvola::inspectFile(file, settingA == 0 ? Depth::Headers : Depth::Streams, decoder);
        note.end();
        isDisturbed = file.isDisturbed();
        return remembered;
    }

    void forget()
    {
        rememberedPath.clear();
        identity.reset();
        remembered.reset();
        isDisturbed = false;
    }

    int exchange(int &setting, int value)
    {
        if (setting != value)
            forget();
        return std::exchange(setting, value);
    }

    int settingA = 1;
    int settingB = 1;
    marvola::TextDecoder decoder;
    marvola::CrashNote note;
    QList<QByteArray> suspects; ///< no more than the note has culprits
    QByteArray rememberedPath;
    std::optional<FileIdentity> identity;
    std::optional<FileFacts> remembered;
    bool isDisturbed = false; ///< what is remembered depended on the moment
};

FFmpegPlayerEngine::FFmpegPlayerEngine() : d(std::make_unique<Private>())
{
    silenceLibraries();
}

FFmpegPlayerEngine::~FFmpegPlayerEngine() = default;

int FFmpegPlayerEngine::exchangeScanSettingA(int value)
{
    return d->exchange(d->settingA, value);
}

int FFmpegPlayerEngine::exchangeScanSettingB(int value)
{
    return d->exchange(d->settingB, value);
}

bool FFmpegPlayerEngine::getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo)
{
    const std::optional<FileFacts> &facts = d->facts(utf8Path);
    if (!facts)
        return false;
    hasAudio = facts->hasAudio ? 1 : 0;
    hasVideo = facts->hasVideo ? 1 : 0;
    return true;
}

bool FFmpegPlayerEngine::getClipInfo(const QByteArray &utf8Path, ClipInfo &info)
{
    const std::optional<FileFacts> &facts = d->facts(utf8Path);
    if (!facts)
        return false;
    info = facts->info;
    return true;
}

void FFmpegPlayerEngine::finishScan()
{
    d->forget();
}

bool FFmpegPlayerEngine::setCrashNote(const QString &path)
{
    d->forget();
    return d->note.open(path);
}

bool FFmpegPlayerEngine::isAnswerLasting() const
{
    return !d->isDisturbed;
}

QString FFmpegPlayerEngine::identity() const
{
    // FFmpeg is replaced without this library being built anew, and distributions mend it under one version.
    const QStringList parts = {
        QStringLiteral("ffmpeg-engine " MARVOLA_VERSION),
        QString::fromUtf8(av_version_info()),
        QString::number(avformat_version()),
        QString::number(avcodec_version()),
        QString::number(avutil_version()),
        QStringLiteral("taglib %1.%2.%3").arg(TAGLIB_MAJOR_VERSION).arg(TAGLIB_MINOR_VERSION).arg(TAGLIB_PATCH_VERSION),
        QString::fromLatin1(qVersion()),
        textCodec(),
        QString::number(isTextCodecAvailable() ? 1 : 0),
        QString::fromLatin1(d->note.fingerprint())};
    return parts.join(QLatin1Char('\n'));
}

QList<QByteArray> FFmpegPlayerEngine::suspects() const
{
    return d->suspects;
}

bool FFmpegPlayerEngine::setTextCodec(const QString &name)
{
    d->forget();
    return d->decoder.setCodec(name);
}

QString FFmpegPlayerEngine::textCodec() const
{
    return d->decoder.codec();
}

bool FFmpegPlayerEngine::isTextCodecAvailable() const
{
    return d->decoder.isCodecAvailable();
}

QStringList FFmpegPlayerEngine::supportedExtensions()
{
    return QString::fromLatin1(Extensions).split(QLatin1Char(' '));
}

void FFmpegPlayerEngine::registerExtensions()
{
    MediaTypeRegistry::setSupportedExtensions(MediaTypeRegistry::MediaPlayer, supportedExtensions());
}
