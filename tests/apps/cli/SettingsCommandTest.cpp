// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

using namespace Qt::StringLiterals;

namespace {

class SettingsCommand : public CliTest
{
protected:
    QByteArray get(const QString &key) const { return run({u"settings"_s, u"get"_s, key}).output.trimmed(); }
    CliResult set(const QString &key, const QString &value) const { return run({u"settings"_s, u"set"_s, key, value}); }
};

struct RoundTrip
{
    const char *name;
    QString key;
    QString value;
    QByteArray read;
};

class SettingsRoundTrip : public SettingsCommand, public testing::WithParamInterface<RoundTrip>
{
};

struct Refused
{
    const char *name;
    QString key;
    QString value;
    int status;
};

class SettingsRefusal : public SettingsCommand, public testing::WithParamInterface<Refused>
{
};

} // namespace

TEST_P(SettingsRoundTrip, IsReadBackByTheNextRun)
{
    const RoundTrip &row = GetParam();
    ASSERT_NE(get(row.key), row.read) << "the value must not be there before";
    const CliResult result = set(row.key, row.value);
    EXPECT_EQ(result.status, 0) << result.errors.constData();
    EXPECT_TRUE(result.output.isEmpty());
    EXPECT_EQ(get(row.key), row.read);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SettingsRoundTrip,
    testing::Values(RoundTrip{"Mute", u"mute"_s, u"on"_s, "on"}, RoundTrip{"Volume", u"volume"_s, u"255"_s, "255"},
                    RoundTrip{"VolumeZero", u"volume"_s, u"0"_s, "0"},
                    RoundTrip{"Repeat", u"repeat"_s, u"TRUE"_s, "on"}, RoundTrip{"Shuffle", u"shuffle"_s, u"1"_s, "on"},
                    RoundTrip{"Proxy", u"proxy"_s, u"yes"_s, "on"},
                    RoundTrip{"ProxyIp", u"proxy-ip"_s, u"10.0.0.1"_s, "10.0.0.1"},
                    RoundTrip{"ProxyPort", u"proxy-port"_s, u"65535"_s, "65535"},
                    RoundTrip{"Profile", u"profile"_s, u"移动 \"net\"; x=1"_s, "移动 \"net\"; x=1"},
                    RoundTrip{"SearchOrder", u"search-order"_s, u"card,phone"_s, "card,phone"},
                    RoundTrip{"SearchOrderOfOne", u"search-order"_s, u"Memory Card"_s, "card"}),
    [](const auto &row) { return row.param.name; });

TEST_F(SettingsCommand, SetTellsProgramsTheNewValue)
{
    const QJsonObject volume = run({u"settings"_s, u"set"_s, u"volume"_s, u"200"_s, u"--json"_s}).object();
    EXPECT_EQ(volume, (QJsonObject{{u"volume"_s, 200}}));
    const QJsonObject mute = run({u"settings"_s, u"set"_s, u"mute"_s, u"on"_s, u"--json"_s}).object();
    EXPECT_EQ(mute, (QJsonObject{{u"mute"_s, true}}));
}

TEST_P(SettingsRefusal, ChangesNothingAndSaysWhy)
{
    const Refused &row = GetParam();
    ASSERT_EQ(run({u"settings"_s, u"list"_s}).status, 0);
    const QByteArray before = read(u"work/setup/juv_marvola.cfg"_s);
    const CliResult result = set(row.key, row.value);
    EXPECT_EQ(result.status, row.status);
    EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.startsWith("marvola: ")) << result.errors.constData();
    EXPECT_EQ(read(u"work/setup/juv_marvola.cfg"_s), before);
}

INSTANTIATE_TEST_SUITE_P(Table, SettingsRefusal,
                         testing::Values(Refused{"VolumeTooLarge", u"volume"_s, u"256"_s, 2},
                                         Refused{"VolumeWord", u"volume"_s, u"loud"_s, 2},
                                         Refused{"VolumeEmpty", u"volume"_s, u""_s, 2},
                                         Refused{"PortTooLarge", u"proxy-port"_s, u"65536"_s, 2},
                                         Refused{"PortHuge", u"proxy-port"_s, u"99999999999999999999"_s, 2},
                                         Refused{"SwitchWord", u"mute"_s, u"maybe"_s, 2},
                                         Refused{"UnknownPlace", u"search-order"_s, u"phone,cloud"_s, 2},
                                         Refused{"RepeatedPlace", u"search-order"_s, u"phone,phone"_s, 2},
                                         Refused{"UnknownKey", u"brightness"_s, u"3"_s, 2},
                                         Refused{"VideoModeIsNeverStored", u"video-mode"_s, u"2"_s, 1},
                                         Refused{"CodecIsReadOnly", u"codec"_s, u"utf8"_s, 1},
                                         Refused{"ShopIsReadOnly", u"music-shop-url"_s, u"x"_s, 1},
                                         Refused{"LimitsAreReadOnly", u"limits"_s, u"1"_s, 1}),
                         [](const auto &row) { return row.param.name; });

TEST_F(SettingsCommand, DefaultsOfAFirstStart)
{
    const QJsonObject settings = run({u"settings"_s, u"list"_s, u"--json"_s}).object();
    EXPECT_EQ(settings[u"volume"_s].toInt(-1), 10);
    EXPECT_FALSE(settings[u"mute"_s].toBool(true));
    EXPECT_EQ(settings[u"codec"_s].toString(), u"GBK"_s);
    EXPECT_EQ(settings[u"video-mode"_s].toInt(-1), 1);
    EXPECT_EQ(settings[u"proxy-port"_s].toInt(-1), 8080);
    EXPECT_EQ(settings[u"search-order"_s].toArray(), (QJsonArray{u"phone"_s, u"card"_s}));
    EXPECT_EQ(settings[u"limits"_s].toObject()[u"media-files"_s].toInt(-1), 10000);
    EXPECT_EQ(settings.size(), 13);
}

TEST_F(SettingsCommand, FirstStartWritesNothingOverAnExistingFile)
{
    ConfigFile(settingsFile(), false).writeEntry(u"MediaControlItem"_s, u"VolumeLevel"_s, 33);
    const QByteArray before = read(u"work/setup/juv_marvola.cfg"_s);
    EXPECT_EQ(get(u"volume"_s), "33");
    EXPECT_EQ(read(u"work/setup/juv_marvola.cfg"_s), before);
    const CliResult limits = run({u"settings"_s, u"get"_s, u"limits"_s, u"--json"_s});
    EXPECT_EQ(limits.object()[u"limits"_s].toObject()[u"media-files"_s].toInt(-1), 100);
}

TEST_F(SettingsCommand, SettingLeavesLimitsAndOthersAlone)
{
    ASSERT_EQ(set(u"volume"_s, u"77"_s).status, 0);
    ASSERT_EQ(set(u"proxy-ip"_s, u"10.1.2.3"_s).status, 0);
    EXPECT_EQ(get(u"volume"_s), "77");
    EXPECT_EQ(get(u"limits"_s), "bookmarks 200, history 200, items 5000, lists 100, media-files 10000");
}

TEST_F(SettingsCommand, FileThatCannotBeWrittenIsTold)
{
    ASSERT_TRUE(QDir().mkpath(settingsFile()));
    const CliResult result = set(u"volume"_s, u"77"_s);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains(QFile::encodeName(settingsFile()))) << result.errors.constData();
}

TEST_F(SettingsCommand, UnknownKeyAndMissingArgumentsAreUsageErrors)
{
    const QList<QStringList> mistakes = {{u"settings"_s},
                                         {u"settings"_s, u"get"_s},
                                         {u"settings"_s, u"get"_s, u"brightness"_s},
                                         {u"settings"_s, u"set"_s, u"volume"_s},
                                         {u"settings"_s, u"set"_s, u"volume"_s, u"1"_s, u"2"_s}};
    for (const QStringList &arguments : mistakes) {
        const CliResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << qPrintable(arguments.join(u' '));
        EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
    }
}
