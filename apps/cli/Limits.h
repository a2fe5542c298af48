// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_LIMITS_H
#define MARVOLA_CLI_LIMITS_H

#include <QtCore/QLatin1String>
#include <QtCore/QString>

#include <array>

namespace marvola {

/// The limits that hold in the library, as its settings file gives them.
struct Limits
{
    int lists = 0;
    int items = 0;
    int bookmarks = 0;
    int history = 0;
    int mediaFiles = 0;
};

/// The settings file's group of limits.
inline constexpr QLatin1String LimitGroup("MediaLimitationItem");

/// One limit: what people call it, its key in the settings file, and where it is kept.
struct LimitField
{
    QLatin1String word;
    QLatin1String key;
    int Limits::*value;
};

inline constexpr std::array<LimitField, 5> LimitFields = {
    {{QLatin1String("lists"), QLatin1String("MaxNumOfList"), &Limits::lists},
     {QLatin1String("items"), QLatin1String("MaxNumOfItem"), &Limits::items},
     {QLatin1String("bookmarks"), QLatin1String("MaxNumOfBookmark"), &Limits::bookmarks},
     {QLatin1String("history"), QLatin1String("MaxNumOfHistory"), &Limits::history},
     {QLatin1String("media-files"), QLatin1String("MaxNumOfMediaFile"), &Limits::mediaFiles}}};

/// The limits that the library takes from \a settingsFile: the first of its two groups that allows any media file,
/// else the built-in ones.
Limits readLimits(const QString &settingsFile);

/// Writes a settings file with limits fit for a card of thousands of files, when there is none. A file that exists, in
/// whatever state, is left alone.
/// \return false when the file cannot be written
[[nodiscard]] bool provideSettingsFile(const QString &settingsFile);

} // namespace marvola

#endif
