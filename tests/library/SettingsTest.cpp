// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/Settings.h"

#include "platform/TextFrame.h"
#include "support/NullEngine.h"
#include "support/TestPhone.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include <gmock/gmock.h>

#include <unistd.h>

using namespace Qt::StringLiterals;
using marvola::Settings;

namespace {

const QString Control = u"MediaControlItem"_s;
const QString Proxy = u"MediaProxyItem"_s;
const QString Limit = u"MediaLimitationItem"_s;
const QString LimitWithoutCard = u"MediaLimitationItemWithoutMMC"_s;
const QStringList Places = {u"Phone"_s, u"Memory Card"_s};

struct SettingsFile : testing::Test
{
    TestPhone phone;

    void write(const QString &group, const QString &key, const QString &value) const
    {
        ConfigFile file(phone.settingsFile(), false);
        ASSERT_TRUE(file.writeEntry(group, key, value));
        ASSERT_TRUE(file.flush());
    }
    QString read(const QString &group, const QString &key) const
    {
        return ConfigFile(phone.settingsFile(), false).readEntry(group, key, u"(absent)"_s);
    }
    Settings restore() const { return marvola::readSettings(ConfigFile(phone.settingsFile(), false), Places); }
    void store(const Settings &settings, const QString &workDirectory = {}) const
    {
        ConfigFile file(phone.settingsFile(), false);
        marvola::writeSettings(file, settings, workDirectory);
    }
    std::array<int, 5> limits() const
    {
        const marvola::Limits limits = restore().limits;
        return {limits.playlists, limits.items, limits.bookmarks, limits.history, limits.mediaFiles};
    }
};

void expectDefaults(const Settings &settings)
{
    EXPECT_EQ(settings.volume, 10);
    EXPECT_EQ(settings.videoMode, 1);
    EXPECT_EQ(settings.codecName, u"GBK"_s);
    EXPECT_EQ(settings.proxyPort, 8080);
    EXPECT_FALSE(settings.mute);
    EXPECT_FALSE(settings.shuffle);
    EXPECT_FALSE(settings.repeat);
    EXPECT_FALSE(settings.proxy);
    EXPECT_TRUE(settings.proxyAddress.isEmpty());
    EXPECT_TRUE(settings.profileName.isEmpty());
    EXPECT_TRUE(settings.musicShopUrl.isEmpty());
    EXPECT_TRUE(settings.defaultStorageDir.isEmpty());
    for (const QString &url : settings.presetUrls)
        EXPECT_TRUE(url.isEmpty());
    EXPECT_EQ(settings.searchOrder, Places);
    EXPECT_EQ(settings.limits.playlists, 2);
    EXPECT_EQ(settings.limits.items, 50);
    EXPECT_EQ(settings.limits.bookmarks, 20);
    EXPECT_EQ(settings.limits.history, 20);
    EXPECT_EQ(settings.limits.mediaFiles, 100);
}

} // namespace

TEST_F(SettingsFile, MissingFileGivesAllDefaults)
{
    expectDefaults(restore());
}

TEST_F(SettingsFile, EmptyFileGivesAllDefaults)
{
    TestPhone::addFile(phone.settingsFile(), "");
    expectDefaults(restore());
}

TEST_F(SettingsFile, GarbageGivesAllDefaults)
{
    const QByteArray garbage("\xff\xfe[MediaControlItem\nVolumeLevel\n]]=;\"\\n\x01\x02=\x03\n");
    TestPhone::addFile(phone.settingsFile(), garbage);
    expectDefaults(restore());
}

TEST_F(SettingsFile, DirectoryInItsPlaceGivesAllDefaults)
{
    ASSERT_TRUE(QDir().mkpath(phone.settingsFile()));
    expectDefaults(restore());
    store(Settings());
    EXPECT_TRUE(QFileInfo(phone.settingsFile()).isDir());
}

TEST_F(SettingsFile, EverySettingIsReadFromItsGroupAndKey)
{
    write(Control, u"Mute"_s, u"1"_s);
    write(Control, u"VolumeLevel"_s, u"33"_s);
    write(Control, u"Shuffle"_s, u"1"_s);
    write(Control, u"Repeat"_s, u"1"_s);
    write(Control, u"VideoMode"_s, u"4"_s);
    write(Control, u"CodecName"_s, u"Big5"_s);
    write(Control, u"SearchOrder"_s, u"Memory Card,Phone"_s);
    write(Control, u"DefaultStorageDir"_s, u"/mmc/mmca1"_s);
    write(Control, u"PreConfigURL1"_s, u"rtsp://one"_s);
    write(Control, u"preConfigURL2"_s, u"rtsp://two"_s);
    write(Control, u"PreConfigURL3"_s, u"rtsp://three"_s);
    write(Control, u"MusicShopURL"_s, u"http://shop"_s);
    write(Proxy, u"Proxy"_s, u"1"_s);
    write(Proxy, u"ProxyAddress"_s, u"10.0.0.172"_s);
    write(Proxy, u"ProxyPort"_s, u"9201"_s);
    write(Proxy, u"ProfileName"_s, u"Operator GPRS"_s);
    const Settings settings = restore();
    EXPECT_TRUE(settings.mute);
    EXPECT_EQ(settings.volume, 33);
    EXPECT_TRUE(settings.shuffle);
    EXPECT_TRUE(settings.repeat);
    EXPECT_EQ(settings.videoMode, 4);
    EXPECT_EQ(settings.codecName, u"Big5"_s);
    EXPECT_EQ(settings.searchOrder, QStringList({u"Memory Card"_s, u"Phone"_s}));
    EXPECT_EQ(settings.defaultStorageDir, u"/mmc/mmca1"_s);
    EXPECT_THAT(settings.presetUrls, testing::ElementsAre(u"rtsp://one"_s, u"rtsp://two"_s, u"rtsp://three"_s));
    EXPECT_EQ(settings.musicShopUrl, u"http://shop"_s);
    EXPECT_TRUE(settings.proxy);
    EXPECT_EQ(settings.proxyAddress, u"10.0.0.172"_s);
    EXPECT_EQ(settings.proxyPort, 9201);
    EXPECT_EQ(settings.profileName, u"Operator GPRS"_s);
}

TEST_F(SettingsFile, NumbersOutOfRangeAreDefaults)
{
    for (const QString &value : {u"256"_s, u"-1"_s, u"99999999999"_s, u"1e3"_s, u""_s, u"ten"_s}) {
        write(Control, u"VolumeLevel"_s, value);
        EXPECT_EQ(restore().volume, 10) << qPrintable(value);
    }
    for (const QString &value : {u"65536"_s, u"-1"_s, u"0x50"_s}) {
        write(Proxy, u"ProxyPort"_s, value);
        EXPECT_EQ(restore().proxyPort, 8080) << qPrintable(value);
    }
}

TEST_F(SettingsFile, NumbersAtTheEdgeOfTheirRangeAreTaken)
{
    write(Control, u"VolumeLevel"_s, u"255"_s);
    write(Proxy, u"ProxyPort"_s, u"65535"_s);
    EXPECT_EQ(restore().volume, 255);
    EXPECT_EQ(restore().proxyPort, 65535);
}

TEST_F(SettingsFile, LimitsComeFromTheirGroup)
{
    write(Limit, u"MaxNumOfList"_s, u"11"_s);
    write(Limit, u"MaxNumOfItem"_s, u"12"_s);
    write(Limit, u"MaxNumOfBookmark"_s, u"13"_s);
    write(Limit, u"MaxNumOfHistory"_s, u"14"_s);
    write(Limit, u"MaxNumOfMediaFile"_s, u"65535"_s);
    EXPECT_THAT(limits(), testing::ElementsAre(11, 12, 13, 14, 65535));
}

TEST_F(SettingsFile, LimitsAbsentFromAGroupThatCountsAreZero)
{
    write(Limit, u"MaxNumOfMediaFile"_s, u"7"_s);
    EXPECT_THAT(limits(), testing::ElementsAre(0, 0, 0, 0, 7));
}

TEST_F(SettingsFile, WithoutMediaFilesAllLimitsComeFromTheOtherGroup)
{
    write(Limit, u"MaxNumOfList"_s, u"11"_s);
    write(Limit, u"MaxNumOfItem"_s, u"12"_s);
    write(Limit, u"MaxNumOfMediaFile"_s, u"0"_s);
    write(LimitWithoutCard, u"MaxNumOfItemWithoutMMC"_s, u"22"_s);
    write(LimitWithoutCard, u"MaxNumOfMediaFileWithoutMMC"_s, u"25"_s);
    EXPECT_THAT(limits(), testing::ElementsAre(0, 22, 0, 0, 25));
}

TEST_F(SettingsFile, WithoutMediaFilesInBothGroupsAllLimitsAreBuiltIn)
{
    write(Limit, u"MaxNumOfList"_s, u"11"_s);
    write(LimitWithoutCard, u"MaxNumOfItemWithoutMMC"_s, u"22"_s);
    EXPECT_THAT(limits(), testing::ElementsAre(2, 50, 20, 20, 100));
}

TEST_F(SettingsFile, SearchOrderTable)
{
    const QStringList card = {u"Memory Card"_s};
    const QStringList swapped = {u"Memory Card"_s, u"Phone"_s};
    const struct
    {
        QString stored;
        QStringList order;
    } rows[] = {
        {u"Phone,Memory Card"_s, Places},
        {u"Memory Card,Phone"_s, swapped},
        {u"Memory Card"_s, card},
        {u"Phone"_s, {u"Phone"_s}},
        {u""_s, Places},
        {u"Phone,Phone"_s, Places},
        {u"Memory Card,Memory Card"_s, Places},
        {u"Memory Card,"_s, Places},
        {u",Memory Card"_s, Places},
        {u","_s, Places},
        {u"Memory Card, Phone"_s, Places},
        {u"memory card"_s, Places},
        {u"Memory Card,Disk"_s, Places},
        {u"Memory Card;Phone"_s, Places},
    };
    for (const auto &row : rows) {
        write(Control, u"SearchOrder"_s, row.stored);
        EXPECT_EQ(restore().searchOrder, row.order) << qPrintable(row.stored);
    }
}

TEST_F(SettingsFile, StoringWritesWhatTheUserCanChange)
{
    Settings settings;
    settings.mute = true;
    settings.volume = 200;
    settings.repeat = true;
    settings.proxy = true;
    settings.proxyAddress = u"10.0.0.1"_s;
    settings.proxyPort = 65535;
    settings.profileName = u"Stream Link"_s;
    settings.presetUrls = {u"a"_s, u"b"_s, u"c"_s};
    settings.searchOrder = {u"Memory Card"_s, u"Phone"_s};
    store(settings, u"/some/where"_s);
    EXPECT_EQ(read(Control, u"Mute"_s), u"1"_s);
    EXPECT_EQ(read(Control, u"VolumeLevel"_s), u"200"_s) << "no clamping";
    EXPECT_EQ(read(Control, u"Shuffle"_s), u"0"_s);
    EXPECT_EQ(read(Control, u"Repeat"_s), u"1"_s);
    EXPECT_EQ(read(Proxy, u"Proxy"_s), u"1"_s);
    EXPECT_EQ(read(Control, u"SearchOrder"_s), u"Memory Card,Phone"_s);
    EXPECT_EQ(read(Proxy, u"ProxyAddress"_s), u"10.0.0.1"_s);
    EXPECT_EQ(read(Proxy, u"ProxyPort"_s), u"65535"_s);
    EXPECT_EQ(read(Proxy, u"ProfileName"_s), u"Stream Link"_s);
    EXPECT_EQ(read(Control, u"DefaultStorageDir"_s), u"/some/where"_s);
    EXPECT_EQ(read(Control, u"PreConfigURL1"_s), u"a"_s);
    EXPECT_EQ(read(Control, u"PreConfigURL2"_s), u"b"_s);
    EXPECT_EQ(read(Control, u"PreConfigURL3"_s), u"c"_s);
}

TEST_F(SettingsFile, StoringNeverWritesVideoModeCodecMusicShopOrLimits)
{
    Settings settings;
    settings.videoMode = 9;
    settings.codecName = u"Big5"_s;
    settings.musicShopUrl = u"http://shop"_s;
    settings.limits = {1, 2, 3, 4, 5};
    store(settings);
    for (const QString &key : {u"VideoMode"_s, u"CodecName"_s, u"MusicShopURL"_s})
        EXPECT_EQ(read(Control, key), u"(absent)"_s) << qPrintable(key);
    const ConfigFile file(phone.settingsFile(), false);
    EXPECT_TRUE(file.getGroupEntriesKeyList(Limit).isEmpty());
    EXPECT_TRUE(file.getGroupEntriesKeyList(LimitWithoutCard).isEmpty());
}

TEST_F(SettingsFile, StoredSecondPresetIsDeliberatelyNotReadBack)
{
    Settings settings;
    settings.presetUrls = {u"a"_s, u"b"_s, u"c"_s};
    store(settings);
    EXPECT_THAT(restore().presetUrls, testing::ElementsAre(u"a"_s, QString(), u"c"_s));
    write(Control, u"preConfigURL2"_s, u"provisioned"_s);
    EXPECT_THAT(restore().presetUrls, testing::ElementsAre(u"a"_s, u"provisioned"_s, u"c"_s));
}

TEST_F(SettingsFile, StoringKeepsWhatOthersWroteIntoTheFile)
{
    write(Limit, u"MaxNumOfMediaFile"_s, u"7"_s);
    write(u"SomebodyElse"_s, u"Key"_s, u"value"_s);
    store(Settings());
    EXPECT_EQ(read(Limit, u"MaxNumOfMediaFile"_s), u"7"_s);
    EXPECT_EQ(read(u"SomebodyElse"_s, u"Key"_s), u"value"_s);
}

TEST_F(SettingsFile, StoringMakesTheMissingFolder)
{
    ASSERT_FALSE(QFileInfo::exists(QFileInfo(phone.settingsFile()).path()));
    restore();
    EXPECT_FALSE(QFileInfo::exists(QFileInfo(phone.settingsFile()).path())) << "reading makes none";
    store(Settings());
    EXPECT_TRUE(QFileInfo::exists(phone.settingsFile()));
}

// As when a card or the phone's memory does not answer for a moment.
TEST_F(SettingsFile, WhatCouldNotBeReadAtTheStartIsNotOverwrittenAtTheEnd)
{
    NullEngine engine;
    {
        MP_MyLibrary library(&engine);
        library.setVolume(42);
        library.addItemToHistory(u"http://old"_s);
        library.storeMyLibrary();
    }
    for (const QString &name : {phone.settingsFile(), phone.listFile()}) {
        const QByteArray path = QFile::encodeName(name);
        const qint64 size = QFileInfo(name).size();
        ASSERT_EQ(::truncate(path.constData(), marvola::TextFrame::MaxFileSize + 1), 0);
        MP_MyLibrary library(&engine);
        ASSERT_EQ(::truncate(path.constData(), size), 0);
        library.setMute(true);
        library.storeMyLibrary();
        const MP_MyLibrary next(&engine);
        EXPECT_EQ(next.getVolume(), 42) << qPrintable(name);
        EXPECT_EQ(MP_MyLibrary(&engine).getItemListOfHistory(), QStringList(u"http://old"_s)) << qPrintable(name);
    }
}
