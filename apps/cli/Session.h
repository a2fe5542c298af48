// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_SESSION_H
#define MARVOLA_CLI_SESSION_H

#include "CountingEngine.h"
#include "Output.h"
#include "Places.h"

#include <marvola/CachingPlayerEngine.h>
#include <marvola/FFmpegPlayerEngine.h>
#include <marvola/MP_MyLibrary.h>

#include <optional>

namespace marvola {

/// One run of the program: the library with its engine, over the places that were found. Every subcommand works on one.
class Session
{
public:
    /// \a places must have been exported to the environment.
    Session(const Places &places, OutputStyle style);

    MP_MyLibrary &library() { return m_library; }
    const CountingEngine &engine() const { return m_engine; }
    const Places &places() const { return m_places; }
    bool wantsJson() const { return m_style == OutputStyle::Json; }
    /// Whether the text codec that the settings name exists here.
    bool isCodecAvailable() const { return m_isCodecAvailable; }
    /// Has files over which a process died left alone, and notes those that are read from now on.
    /// \return false when there is a note that cannot be used.
    [[nodiscard]] bool noteCrashes();
    /// Where that is noted; empty for a user without a home.
    QString crashNote() const;
    /// Has the engine asked about files alone that are new or have changed, as far as its answers can be kept.
    void rememberAnswers();
    /// The files that were left alone; not while a refresh runs.
    QStringList suspects() const;
    QString settingsFile() const { return settingsFileBelow(m_places.work); }

    static QString settingsFileBelow(const QString &work);

private:
    Places m_places;
    OutputStyle m_style;
    FFmpegPlayerEngine m_ffmpeg;
    std::optional<CachingPlayerEngine> m_cache;
    CountingEngine m_engine{m_ffmpeg};
    MP_MyLibrary m_library{&m_engine};
    bool m_isCodecAvailable;
};

} // namespace marvola

#endif
