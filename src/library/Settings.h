// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_LIBRARY_SETTINGS_H
#define MARVOLA_LIBRARY_SETTINGS_H

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>

class ConfigFile;

namespace marvola {

/// How much the library keeps. What each limit means when it is reached is for those who test it.
struct Limits
{
    quint16 playlists = 2;
    quint16 items = 50; ///< in one playlist
    quint16 bookmarks = 20;
    quint16 history = 20;
    quint16 mediaFiles = 100;
};

/// The player's settings as the settings file holds them, each with its default.
struct Settings
{
    bool mute = false;
    quint8 volume = 10;
    bool shuffle = false;
    bool repeat = false;
    quint8 videoMode = 1;
    QString codecName = QStringLiteral("GBK");
    bool proxy = false;
    QString proxyAddress;
    quint16 proxyPort = 8080;
    QString profileName;
    std::array<QString, 3> presetUrls;
    QString musicShopUrl;
    QString defaultStorageDir; ///< the work directory that was stored; not kept up to date
    QStringList searchOrder;   ///< names of places
    Limits limits;
};

/// Reads all settings. A value that is absent, no number or out of its range is the default.
/// \a placeNames are the places that a search order may name, in their default order.
Settings readSettings(const ConfigFile &file, const QStringList &placeNames);

/// Writes what the user can change, with \a workDirectory as the directory to start with next time.
void writeSettings(ConfigFile &file, const Settings &settings, const QString &workDirectory);

} // namespace marvola

#endif
