// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Session.h"

#include <QtCore/QDir>

using namespace Qt::StringLiterals;

namespace marvola {

Session::Session(const Places &places, OutputStyle style)
    : m_places(places), m_style(style), m_isCodecAvailable(m_ffmpeg.setTextCodec(m_library.getCodecForClip()))
{
    FFmpegPlayerEngine::registerExtensions();
}

bool Session::noteCrashes()
{
    // Without a home, or in one that nobody may write to, a refresh goes on as it would without.
    const QString note = crashNote();
    return note.isEmpty() || !QDir().mkpath(m_places.state) || m_ffmpeg.setCrashNote(note);
}

QString Session::crashNote() const
{
    return m_places.state.isEmpty() ? QString() : m_places.state + u"/crash-note"_s;
}

void Session::rememberAnswers()
{
    const QString &directory = m_places.cache;
    if (directory.isEmpty() || !QDir().mkpath(directory)) {
        return;
    }
    m_cache.emplace(m_ffmpeg, directory + u"/answers"_s, m_ffmpeg.identity());
    m_cache->setLastingCheck([this] { return m_ffmpeg.isAnswerLasting(); });
    m_engine.setEngine(*m_cache);
}

QStringList Session::suspects() const
{
    QStringList paths;
    for (const QByteArray &path : m_ffmpeg.suspects()) {
        paths.append(QString::fromUtf8(path));
    }
    return paths;
}

QString Session::settingsFileBelow(const QString &work)
{
    return work + (work.endsWith(u'/') ? u""_s : u"/"_s) + u"setup/juv_marvola.cfg"_s;
}

} // namespace marvola
