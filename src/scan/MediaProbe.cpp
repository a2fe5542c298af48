// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/MediaProbe.h"

#include <marvola/PlayerEngine.h>

namespace marvola {

namespace {

constexpr int ScanSetting = 0;

MP_MEDIA_FILE_TYPE_T typeOf(PlayerEngine &engine, const QByteArray &path)
{
    UINT8 hasAudio = 0;
    UINT8 hasVideo = 0;
    if (!engine.getMediaKind(path, hasAudio, hasVideo))
        return MP_MEDIA_FILE_TYPE_UNKNOWN;
    if (hasVideo != 0)
        return MP_MEDIA_FILE_TYPE_VIDEO;
    return hasAudio != 0 ? MP_MEDIA_FILE_TYPE_AUDIO : MP_MEDIA_FILE_TYPE_UNKNOWN;
}

} // namespace

MediaProbe::MediaProbe(PlayerEngine *engine, const QString &unknownText) : m_engine(engine), m_unknownText(unknownText)
{
    if (m_engine == nullptr)
        return;
    m_settingA = m_engine->exchangeScanSettingA(ScanSetting);
    m_settingB = m_engine->exchangeScanSettingB(ScanSetting);
}

MediaDescription MediaProbe::describe(const QString &path) const
{
    MediaDescription description;
    ClipInfo info;
    if (m_engine != nullptr) {
        const QByteArray utf8Path = path.toUtf8();
        description.type = typeOf(*m_engine, utf8Path);
        if (!m_engine->getClipInfo(utf8Path, info))
            info = ClipInfo();
    }
    description.artist = indexed(info.artist);
    description.album = indexed(info.album);
    description.genre = indexed(info.genre);
    return description;
}

void MediaProbe::end()
{
    if (m_engine == nullptr)
        return;
    m_engine->exchangeScanSettingA(m_settingA);
    m_engine->exchangeScanSettingB(m_settingB);
    m_engine->finishScan();
}

/// \a text with its blanks simplified, cut to length, or the unknown text.
QString MediaProbe::indexed(const QString &text) const
{
    const QString simplified = text.simplified();
    // Whole whatever its length, so that the files without a text are found by the unknown text.
    if (simplified.isEmpty())
        return m_unknownText;
    // Deliberate: the cut counts UTF-16 units, so it may keep half of a surrogate pair; readers compare texts by units.
    return simplified.left(MaxTextLength);
}

} // namespace marvola
