// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/ConfigFile.h>

#include "Folder.h"

#include <QtCore/QProcess>
#include <QtCore/QSettings>

using namespace Qt::StringLiterals;

/// That the files are files to other readers, too.
namespace {

struct Entry
{
    QString group, key, value;
};

const QString name = u"test.cfg"_s;

QList<Entry> plainEntries()
{
    return {{u"MediaControlItem"_s, u"VolumeLevel"_s, u"200"_s},
            {u"MediaControlItem"_s, u"PreConfigURL2"_s, u"http://host:8080/a?b=c&d=e"_s},
            {u"MediaControlItem"_s, u"preConfigURL2"_s, u"rtsp://other/#x"_s},
            {u"MediaControlItem"_s, u"Empty"_s, QString(u""_s)},
            {u"pl-My list"_s, u"1"_s, u"/mmc/mmca1/\u97F3\u4E50/a b (1) [x].mp3"_s},
            {u"pl-My list"_s, u"counter"_s, u"1"_s},
            {u"pl-\u65E5\u672C"_s, u"1"_s, u"\U0001F3B5 100% %(x)s ${y}"_s}};
}

/// Entries whose spelling is this system's own; readers must get past them.
QList<Entry> hardEntries()
{
    return {{u"[=]:;#"_s, u"a=b:c;d#e[f]"_s, u"\"q\" \\ \n;x"_s},
            {QString(), QString(), u" blanks "_s},
            {u"% x "_s, QString(QChar(0xD800)), QString(QChar(0xDC00)) + QChar(u'\0') + u"ab"_s}};
}

void write(const Folder &folder)
{
    folder.put(name, QByteArray(3000, '\0'));
    ConfigFile file(folder.path(name), false);
    for (const Entry &entry : plainEntries() + hardEntries())
        ASSERT_TRUE(file.writeEntry(entry.group, entry.key, entry.value));
    ASSERT_TRUE(file.flush());
}

} // namespace

TEST(ConfigFileReaders, QSettingsReadsEveryPlainText)
{
    const Folder folder;
    write(folder);
    const QSettings settings(folder.path(name), QSettings::IniFormat);
    EXPECT_EQ(settings.status(), QSettings::NoError);
    for (const Entry &entry : plainEntries())
        EXPECT_EQ(settings.value(entry.group + u'/' + entry.key).toString(), entry.value) << qPrintable(entry.key);
}

TEST(ConfigFileReaders, QSettingsReadsEscapedValues)
{
    const Folder folder;
    const QStringList values{u"a;b"_s, u";00"_s, u"\"q\" \\ \n"_s, u" blanks "_s, u"\u0001fff"_s, u"C:\\x41"_s};
    {
        ConfigFile file(folder.path(name), false);
        for (const QString &value : values)
            file.writeEntry(u"g"_s, QString::number(values.indexOf(value)), value);
    }
    const QSettings settings(folder.path(name), QSettings::IniFormat);
    for (const QString &value : values)
        EXPECT_EQ(settings.value(u"g/"_s + QString::number(values.indexOf(value))).toString(), value);
}

TEST(ConfigFileReaders, FilesOfQSettingsAreRead)
{
    const Folder folder;
    {
        QSettings settings(folder.path(name), QSettings::IniFormat);
        settings.setValue(u"MediaControlItem/VolumeLevel"_s, 17);
        settings.setValue(u"MediaControlItem/Mute"_s, true);
        settings.setValue(u"Media Proxy/Proxy Address"_s, u"10.0.0.1"_s);
    }
    ConfigFile file(folder.path(name), false);
    EXPECT_EQ(file.readNumEntry(u"MediaControlItem"_s, u"VolumeLevel"_s), 17);
    EXPECT_TRUE(file.readBoolEntry(u"MediaControlItem"_s, u"Mute"_s));
    EXPECT_EQ(file.readEntry(u"Media Proxy"_s, u"Proxy Address"_s), u"10.0.0.1"_s);
}

TEST(ConfigFileReaders, PythonReadsEveryPlainText)
{
    const Folder folder;
    write(folder);
    folder.put(u"read.py"_s, "import configparser, sys\n"
                             "c = configparser.ConfigParser(interpolation=None, strict=True)\n"
                             "c.optionxform = str\n"
                             "c.read_file(open(sys.argv[1], encoding='utf-8'))\n"
                             "for i in range(2, len(sys.argv), 3):\n"
                             "    group, key, value = sys.argv[i:i + 3]\n"
                             "    assert c[group][key] == value, (group, key, c[group][key])\n"
                             "print(sum(len(c[s]) for s in c.sections()))\n");
    QStringList arguments{u"python3"_s, folder.path(u"read.py"_s), folder.path(name)};
    for (const Entry &entry : plainEntries())
        arguments << entry.group << entry.key << entry.value;
    QProcess python;
    python.setProcessChannelMode(QProcess::MergedChannels);
    python.start(u"/usr/bin/env"_s, arguments);
    ASSERT_TRUE(python.waitForFinished(60'000));
    EXPECT_EQ(python.exitCode(), 0);
    EXPECT_EQ(python.readAll().trimmed(), QByteArray::number(plainEntries().size() + hardEntries().size()));
}
