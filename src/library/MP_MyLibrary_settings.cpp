// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/State.h"

#include <marvola/ConfigFile.h>

void MP_MyLibrary::restoreConfig()
{
    const ConfigFile file(d->settingsFile, false);
    const QStringList placeNames = {tr("TXT_RID_DTITLE_PHONE", "Phone"),
                                    tr("TXT_RID_DTITLE_MEMORY_CARD", "Memory Card")};
    d->settings = marvola::readSettings(file, placeNames);
    d->isSettingsFileUnread = file.isUnreadable();
    const bool isAdopted = d->adoptWorkDirectory(d->settings.defaultStorageDir) ||
                           (d->workDirectory.path().isEmpty() && d->adoptWorkDirectory(d->places.writePath));
    if (isAdopted)
        restoreMyLibrary();
}

void MP_MyLibrary::storeConfig()
{
    // What could not be read may still be there, and must not be replaced by defaults.
    if (d->isSettingsFileUnread)
        return;
    ConfigFile file(d->settingsFile, false);
    marvola::writeSettings(file, d->settings, d->workDirectory.path());
}

void MP_MyLibrary::storeMyLibrary()
{
    storeConfig();
    storeAllList();
}

void MP_MyLibrary::setMute(bool mute)
{
    d->settings.mute = mute;
}

bool MP_MyLibrary::getMute() const
{
    return d->settings.mute;
}

void MP_MyLibrary::setVolume(unsigned char volume)
{
    d->settings.volume = volume;
}

unsigned char MP_MyLibrary::getVolume() const
{
    return d->settings.volume;
}

void MP_MyLibrary::setRepeat(bool repeat)
{
    d->settings.repeat = repeat;
}

bool MP_MyLibrary::getRepeat() const
{
    return d->settings.repeat;
}

void MP_MyLibrary::setShuffle(bool shuffle)
{
    d->list.setShuffle(marvola::shuffleOf(d->settings.shuffle), marvola::shuffleOf(shuffle));
    d->settings.shuffle = shuffle;
}

bool MP_MyLibrary::getShuffle() const
{
    return d->settings.shuffle;
}

void MP_MyLibrary::setVideoMode(unsigned char mode)
{
    d->settings.videoMode = mode;
}

unsigned char MP_MyLibrary::getVideoMode() const
{
    return d->settings.videoMode;
}

QString MP_MyLibrary::getCodecForClip() const
{
    return d->settings.codecName;
}

void MP_MyLibrary::setProxy(bool enabled)
{
    d->settings.proxy = enabled;
}

bool MP_MyLibrary::getProxy() const
{
    return d->settings.proxy;
}

void MP_MyLibrary::setProxyIp(const QString &address)
{
    d->settings.proxyAddress = address;
}

QString MP_MyLibrary::getProxyIp() const
{
    return d->settings.proxyAddress;
}

void MP_MyLibrary::setProxyPort(unsigned short port)
{
    d->settings.proxyPort = port;
}

unsigned short MP_MyLibrary::getProxyPort() const
{
    return d->settings.proxyPort;
}

void MP_MyLibrary::setProfileName(const QString &name)
{
    d->settings.profileName = name;
}

QString MP_MyLibrary::getProfileName() const
{
    return d->settings.profileName;
}

QString MP_MyLibrary::getMusicShopURL() const
{
    return d->settings.musicShopUrl;
}
