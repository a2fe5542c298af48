// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "support/FakeSessionManager.h"
#include "support/InRoot.h"
#include "support/NullEngine.h"
#include "support/TestPhone.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QMetaMethod>
#include <QtCore/QTranslator>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;

namespace {

const QString Control = u"MediaControlItem"_s;
const QStringList DefaultOrder = {u"TXT_RID_DTITLE_PHONE"_s, u"TXT_RID_DTITLE_MEMORY_CARD"_s};

struct Library : testing::Test
{
    TestPhone phone;
    NullEngine engine;

    QString stored(const QString &key) const
    {
        return ConfigFile(phone.settingsFile(), false).readEntry(Control, key, u"(absent)"_s);
    }
    void provision(const QString &key, const QString &value) const
    {
        ConfigFile file(phone.settingsFile(), false);
        ASSERT_TRUE(file.writeEntry(Control, key, value));
    }
    QString makeDir(const QString &name) const
    {
        EXPECT_TRUE(QDir().mkpath(phone.path(name)));
        return phone.path(name);
    }
};

/// Translates the two place names as a player in another language would have them.
class PlaceTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *text, const char *comment, int) const override
    {
        if (qstrcmp(context, "MP_MyLibrary") != 0)
            return {};
        if (qstrcmp(text, "TXT_RID_DTITLE_PHONE") == 0 && qstrcmp(comment, "Phone") == 0)
            return u"手机"_s;
        if (qstrcmp(text, "TXT_RID_DTITLE_MEMORY_CARD") == 0 && qstrcmp(comment, "Memory Card") == 0)
            return u"存储卡"_s;
        return {};
    }
};

} // namespace

TEST_F(Library, IsAQObjectByItsOwnName)
{
    MP_MyLibrary library(&engine);
    EXPECT_STREQ(library.metaObject()->className(), "MP_MyLibrary");
    EXPECT_EQ(library.metaObject()->superClass(), &QObject::staticMetaObject);
    EXPECT_EQ(library.parent(), nullptr);
    EXPECT_TRUE(library.objectName().isEmpty());
}

TEST_F(Library, HasItsSignalsAndSlots)
{
    QStringList members;
    const QMetaObject &meta = MP_MyLibrary::staticMetaObject;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        const QMetaMethod method = meta.method(index);
        members.append((method.methodType() == QMetaMethod::Signal ? u"signal "_s : u"slot "_s) +
                       QString::fromLatin1(method.methodSignature()));
    }
    EXPECT_THAT(members,
                testing::UnorderedElementsAre(u"signal refreshContinue(UINT8)"_s, u"signal dataConnectionStatus(int)"_s,
                                              u"slot onSlotLinkConnected(int,LinkInfo&)"_s,
                                              u"slot onSlotLinkOpenFailed(int,ushort,ushort)"_s,
                                              u"slot onSlotLinkBroken(int,LinkInfo&)"_s));
}

TEST_F(Library, WritePathWithAndWithoutSlashNameOneSettingsFile)
{
    const QString other = makeDir(u"other"_s);
    for (const QString &writePath : {other, other + u'/'}) {
        qputenv("JUV_APP_WRITE_PATH", QFile::encodeName(writePath));
        MP_MyLibrary(&engine).storeConfig();
        EXPECT_TRUE(QFile::remove(other + u"/setup/juv_marvola.cfg"_s)) << qPrintable(writePath);
    }
}

TEST_F(Library, UnsetWritePathGivesTheSettingsFileBelowTheRoot)
{
    QTemporaryDir root;
    EXPECT_TRUE(holdsInRoot(root.path(), [this] {
        qunsetenv("JUV_APP_WRITE_PATH");
        MP_MyLibrary library(&engine);
        library.storeConfig();
        return library.getWorkDirectory().isEmpty();
    }));
    EXPECT_TRUE(QFileInfo::exists(root.filePath(u"setup/juv_marvola.cfg"_s)));
}

TEST_F(Library, ConstructsWithoutAnyEnvironment)
{
    for (const char *name : {"TROVE_DATA_PATH", "CARD1_MOUNT_PATH", "CARD2_MOUNT_PATH"})
        qunsetenv(name);
    MP_MyLibrary library(&engine);
    EXPECT_EQ(library.getWorkDirectory(), phone.write());
    EXPECT_FALSE(library.isMyLibraryRefreshing());
}

TEST_F(Library, StartsWithTheDefaults)
{
    MP_MyLibrary library(&engine);
    EXPECT_EQ(library.getVolume(), 10);
    EXPECT_FALSE(library.getMute());
    EXPECT_FALSE(library.getRepeat());
    EXPECT_FALSE(library.getShuffle());
    EXPECT_EQ(library.getVideoMode(), 1);
    EXPECT_EQ(library.getCodecForClip(), u"GBK"_s);
    EXPECT_FALSE(library.getProxy());
    EXPECT_TRUE(library.getProxyIp().isEmpty());
    EXPECT_EQ(library.getProxyPort(), 8080);
    EXPECT_TRUE(library.getProfileName().isEmpty());
    EXPECT_TRUE(library.getMusicShopURL().isEmpty());
    EXPECT_EQ(library.getRefreshFlag(), DefaultOrder);
}

TEST_F(Library, SettersArePlainWrites)
{
    MP_MyLibrary library(&engine);
    library.setMute(true);
    library.setVolume(255);
    library.setRepeat(true);
    library.setShuffle(true);
    library.setVideoMode(200);
    library.setProxy(true);
    library.setProxyIp(u"no address at all"_s);
    library.setProxyPort(65535);
    library.setProfileName(u"Operator"_s);
    library.setRefreshFlag({u"Nowhere"_s});
    EXPECT_TRUE(library.getMute());
    EXPECT_EQ(library.getVolume(), 255);
    EXPECT_TRUE(library.getRepeat());
    EXPECT_TRUE(library.getShuffle());
    EXPECT_EQ(library.getVideoMode(), 200);
    EXPECT_TRUE(library.getProxy());
    EXPECT_EQ(library.getProxyIp(), u"no address at all"_s);
    EXPECT_EQ(library.getProxyPort(), 65535);
    EXPECT_EQ(library.getProfileName(), u"Operator"_s);
    EXPECT_EQ(library.getRefreshFlag(), QStringList(u"Nowhere"_s));
    EXPECT_FALSE(QFileInfo::exists(phone.settingsFile())) << "setters write no file";
}

TEST_F(Library, StoredSettingsSurviveARestart)
{
    {
        MP_MyLibrary library(&engine);
        library.setVolume(200);
        library.setMute(true);
        library.setRepeat(true);
        library.setShuffle(true);
        library.setProxy(true);
        library.setProxyIp(u"10.0.0.172"_s);
        library.setProxyPort(80);
        library.setProfileName(u"Operator GPRS"_s);
        library.setRefreshFlag({DefaultOrder[1], DefaultOrder[0]});
        library.storeMyLibrary();
    }
    EXPECT_EQ(stored(u"VolumeLevel"_s), u"200"_s);
    MP_MyLibrary library(&engine);
    EXPECT_EQ(library.getVolume(), 200);
    EXPECT_TRUE(library.getMute());
    EXPECT_TRUE(library.getRepeat());
    EXPECT_TRUE(library.getShuffle());
    EXPECT_TRUE(library.getProxy());
    EXPECT_EQ(library.getProxyIp(), u"10.0.0.172"_s);
    EXPECT_EQ(library.getProxyPort(), 80);
    EXPECT_EQ(library.getProfileName(), u"Operator GPRS"_s);
    EXPECT_EQ(library.getRefreshFlag(), QStringList({DefaultOrder[1], DefaultOrder[0]}));
}

TEST_F(Library, DestructionStoresNothing)
{
    {
        MP_MyLibrary library(&engine);
        library.storeMyLibrary();
        library.setVolume(200);
    }
    EXPECT_EQ(MP_MyLibrary(&engine).getVolume(), 10);
}

TEST_F(Library, VideoModeIsNeverStored)
{
    {
        MP_MyLibrary library(&engine);
        library.setVideoMode(3);
        library.storeMyLibrary();
    }
    EXPECT_EQ(MP_MyLibrary(&engine).getVideoMode(), 1);
}

TEST_F(Library, RestoringReadsTheFileAgain)
{
    MP_MyLibrary library(&engine);
    library.setVolume(200);
    provision(u"VolumeLevel"_s, u"77"_s);
    library.restoreConfig();
    EXPECT_EQ(library.getVolume(), 77);
}

TEST_F(Library, WorksInTheStoredDirectoryFirst)
{
    const QString card = makeDir(u"card-work"_s);
    provision(u"DefaultStorageDir"_s, card);
    MP_MyLibrary library(&engine);
    EXPECT_EQ(library.getWorkDirectory(), card);
    EXPECT_TRUE(QFileInfo::exists(card + u"/.marvola.list"_s));
    EXPECT_FALSE(QFileInfo::exists(phone.listFile()));
}

TEST_F(Library, WorksInTheWritePathWhenTheStoredDirectoryIsGone)
{
    provision(u"DefaultStorageDir"_s, phone.path(u"gone"_s));
    EXPECT_EQ(MP_MyLibrary(&engine).getWorkDirectory(), phone.write());
}

TEST_F(Library, WorksInTheWritePathWhenTheStoredDirectoryHasNoRoom)
{
    const QString card = makeDir(u"card-work"_s);
    makeDir(u"card-work/haha/inside"_s); // the probe cannot be made
    provision(u"DefaultStorageDir"_s, card);
    EXPECT_EQ(MP_MyLibrary(&engine).getWorkDirectory(), phone.write());
    EXPECT_FALSE(QFileInfo::exists(card + u"/.marvola.list"_s));
}

TEST_F(Library, WorksInTheWritePathWhenTheStoredDirectoryCannotTakeTheFiles)
{
    const QString card = makeDir(u"card-work"_s);
    ASSERT_TRUE(QFile::link(phone.path(u"nowhere"_s), card + u"/.marvola.info"_s));
    provision(u"DefaultStorageDir"_s, card);
    EXPECT_EQ(MP_MyLibrary(&engine).getWorkDirectory(), phone.write());
}

TEST_F(Library, HasNoWorkDirectoryWhenNoneCanBeTaken)
{
    makeDir(u"write/haha/inside"_s);
    MP_MyLibrary library(&engine);
    EXPECT_TRUE(library.getWorkDirectory().isEmpty());
    library.storeConfig();
    EXPECT_EQ(stored(u"DefaultStorageDir"_s), QString());
}

TEST_F(Library, RestoringAgainKeepsAWorkDirectoryThatIsSet)
{
    MP_MyLibrary library(&engine);
    const QString card = makeDir(u"card-work"_s);
    ASSERT_TRUE(library.setWorkDirectory(card));
    library.restoreConfig();
    EXPECT_EQ(library.getWorkDirectory(), card) << "the write path is for when there is none";
}

TEST_F(Library, StoresItsWorkDirectory)
{
    const QString card = makeDir(u"card-work"_s);
    {
        MP_MyLibrary library(&engine);
        EXPECT_TRUE(library.hasEnoughSpace(card));
        EXPECT_TRUE(library.setWorkDirectory(card));
        library.storeConfig();
    }
    EXPECT_EQ(stored(u"DefaultStorageDir"_s), card);
    EXPECT_EQ(MP_MyLibrary(&engine).getWorkDirectory(), card);
}

TEST_F(Library, RefusedWorkDirectoryKeepsTheOldOne)
{
    MP_MyLibrary library(&engine);
    EXPECT_FALSE(library.setWorkDirectory(phone.path(u"gone"_s)));
    EXPECT_EQ(library.getWorkDirectory(), phone.write());
}

TEST_F(Library, PlacesHaveTheirTranslatedNames)
{
    PlaceTranslator translator;
    QCoreApplication::installTranslator(&translator);
    MP_MyLibrary library(&engine);
    const QStringList order = library.getRefreshFlag();
    library.setRefreshFlag({u"存储卡"_s, u"手机"_s});
    library.storeConfig();
    const QStringList restored = MP_MyLibrary(&engine).getRefreshFlag();
    QCoreApplication::removeTranslator(&translator);
    EXPECT_EQ(order, QStringList({u"手机"_s, u"存储卡"_s}));
    EXPECT_EQ(restored, QStringList({u"存储卡"_s, u"手机"_s}));
    EXPECT_EQ(MP_MyLibrary(&engine).getRefreshFlag(), DefaultOrder) << "an order in another language is no order";
}

TEST_F(Library, MakesInitialisesAndDeletesItsLinkService)
{
    FakeSessionFactory factory;
    {
        const MP_MyLibrary library(&engine);
        EXPECT_EQ(factory.log.calls, QStringList({u"made"_s, u"init 0"_s}));
        EXPECT_EQ(factory.log.last->parent(), nullptr);
        EXPECT_TRUE(factory.log.last->objectName().isEmpty());
    }
    EXPECT_EQ(factory.log.calls, QStringList({u"made"_s, u"init 0"_s, u"deleted"_s})) << "no link, so none is closed";
}

TEST_F(Library, PassesABrokenLinkOn)
{
    FakeSessionFactory factory;
    MP_MyLibrary library(&engine);
    QList<int> states;
    QObject::connect(&library, &MP_MyLibrary::dataConnectionStatus, &library,
                     [&states](int status) { states.append(status); });
    constexpr int NoLink = -1;
    factory.log.last->emitBroken(3);
    EXPECT_THAT(states, testing::IsEmpty()) << "an event of another link";
    factory.log.last->emitBroken(NoLink);
    EXPECT_EQ(states, QList<int>({4}));
}

TEST_F(Library, TakesNoNoticeOfOtherLinks)
{
    FakeSessionFactory factory;
    MP_MyLibrary library(&engine);
    QList<int> states;
    QObject::connect(&library, &MP_MyLibrary::dataConnectionStatus, &library,
                     [&states](int status) { states.append(status); });
    factory.log.last->emitConnected(5);
    factory.log.last->emitOpenFailed(5);
    EXPECT_THAT(states, testing::IsEmpty());
}
