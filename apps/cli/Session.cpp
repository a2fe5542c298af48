// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Session.h"

using namespace Qt::StringLiterals;

namespace marvola {

Session::Session(const Places &places, OutputStyle style)
    : m_places(places), m_style(style), m_isCodecAvailable(m_ffmpeg.setTextCodec(m_library.getCodecForClip()))
{
    FFmpegPlayerEngine::registerExtensions();
}

QString Session::settingsFileBelow(const QString &work)
{
    return work + (work.endsWith(u'/') ? u""_s : u"/"_s) + u"setup/juv_marvola.cfg"_s;
}

} // namespace marvola
