// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Limits.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr QLatin1String LimitGroupWithoutCard("MediaLimitationItemWithoutMMC");
constexpr QLatin1String WithoutCardSuffix("WithoutMMC");

/// A limit that is out of range counts as absent.
constexpr int LargestLimit = 65535;

constexpr Limits BuiltInLimits = {2, 50, 20, 20, 100};

/// More media files than the space reserved for the index can describe, so that the space alone decides, and
/// lists long enough for a large collection.
constexpr Limits FirstLimits = {100, 5000, 200, 200, 10000};

Limits readGroup(const ConfigFile &file, QLatin1String group, QLatin1String suffix)
{
    Limits limits;
    for (const LimitField &field : LimitFields) {
        const int number = file.readNumEntry(group, field.key + suffix);
        limits.*field.value = number >= 0 && number <= LargestLimit ? number : 0;
    }
    return limits;
}

/// An entry of any kind counts, also one that is a link to nowhere: it is the user's.
bool isThere(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

} // namespace

Limits readLimits(const QString &settingsFile)
{
    const ConfigFile file(settingsFile, false);
    Limits limits = readGroup(file, LimitGroup, QLatin1String());
    if (limits.mediaFiles == 0) {
        limits = readGroup(file, LimitGroupWithoutCard, WithoutCardSuffix);
    }
    return limits.mediaFiles == 0 ? BuiltInLimits : limits;
}

bool provideSettingsFile(const QString &settingsFile)
{
    if (isThere(settingsFile)) {
        return true;
    }
    ConfigFile file(settingsFile, false);
    // Another program may be starting for the first time as well; the lock decides who writes.
    if (file.lockForUpdate() && isThere(settingsFile)) {
        return true;
    }
    for (const LimitField &field : LimitFields) {
        if (!file.writeEntry(LimitGroup, field.key, FirstLimits.*field.value)) {
            return false;
        }
    }
    return file.flush();
}

} // namespace marvola
