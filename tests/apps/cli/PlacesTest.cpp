// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Places.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <map>

using namespace Qt::StringLiterals;
using namespace marvola;

namespace {

/// Sets up an environment without any place and a home of its own, and puts the old one back.
class FindPlaces : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const char *name : Names) {
            if (qEnvironmentVariableIsSet(name))
                m_saved[name] = qgetenv(name);
            qunsetenv(name);
        }
        qputenv("HOME", QFile::encodeName(m_home.path()));
    }
    void TearDown() override
    {
        for (const char *name : Names)
            qunsetenv(name);
        for (const auto &[name, value] : m_saved)
            qputenv(name.c_str(), value);
    }
    Places found(const PlaceOptions &options = {})
    {
        const std::optional<Places> places = findPlaces(options, m_problem);
        EXPECT_TRUE(places.has_value()) << qPrintable(m_problem);
        return places.value_or(Places());
    }

    static constexpr const char *Names[] = {"TROVE_DATA_PATH",    "CARD1_MOUNT_PATH", "CARD2_MOUNT_PATH",
                                            "JUV_APP_WRITE_PATH", "XDG_DATA_HOME",    "XDG_CONFIG_HOME",
                                            "XDG_STATE_HOME",     "XDG_CACHE_HOME",   "HOME"};
    std::map<std::string, QByteArray> m_saved;
    QTemporaryDir m_home;
    QString m_problem;
};

const QList<Place> TwoPlaces = {{u"phone"_s, u"Phone"_s, {u"/phone"_s}},
                                {u"card"_s, u"Memory Card"_s, {u"/card1"_s, u"/phone/card2/"_s}}};

} // namespace

TEST_F(FindPlaces, HomeGivesMusicAndWorkAndNoCards)
{
    const Places places = found();
    EXPECT_EQ(places.data, m_home.filePath(u"Music"_s));
    EXPECT_EQ(places.work, m_home.filePath(u".local/share/marvola"_s));
    EXPECT_TRUE(QFileInfo(places.work).isDir());
    EXPECT_TRUE(places.card1.isEmpty());
    EXPECT_TRUE(places.card2.isEmpty());
    EXPECT_TRUE(places.named.isEmpty());
}

TEST_F(FindPlaces, UserDirectoriesFileNamesTheMusic)
{
    ASSERT_TRUE(QDir(m_home.path()).mkpath(u".config"_s));
    ASSERT_TRUE(QDir(m_home.path()).mkpath(u"Tunes"_s));
    QFile file(m_home.filePath(u".config/user-dirs.dirs"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("XDG_MUSIC_DIR=\"$HOME/Tunes\"\n");
    file.close();
    EXPECT_EQ(found().data, m_home.filePath(u"Tunes"_s));
}

TEST_F(FindPlaces, DataHomeTakesTheWorkDirectory)
{
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_home.filePath(u"data"_s)));
    EXPECT_EQ(found().work, m_home.filePath(u"data/marvola"_s));
    qputenv("XDG_DATA_HOME", "relative");
    EXPECT_EQ(found().work, m_home.filePath(u".local/share/marvola"_s));
}

TEST_F(FindPlaces, StateIsBelowItsOwnHome)
{
    EXPECT_EQ(found().state, m_home.filePath(u".local/state/marvola"_s));
    EXPECT_FALSE(QFileInfo::exists(found().state)) << "made when it is needed";
    qputenv("XDG_STATE_HOME", QFile::encodeName(m_home.filePath(u"state"_s)));
    EXPECT_EQ(found().state, m_home.filePath(u"state/marvola"_s));
    qputenv("XDG_STATE_HOME", "relative");
    EXPECT_EQ(found().state, m_home.filePath(u".local/state/marvola"_s));
}

TEST_F(FindPlaces, CacheIsBelowItsOwnHome)
{
    EXPECT_EQ(found().cache, m_home.filePath(u".cache/marvola"_s));
    EXPECT_FALSE(QFileInfo::exists(found().cache)) << "made when it is needed";
    qputenv("XDG_CACHE_HOME", QFile::encodeName(m_home.filePath(u"cache"_s)));
    EXPECT_EQ(found().cache, m_home.filePath(u"cache/marvola"_s));
    qputenv("XDG_CACHE_HOME", "relative");
    EXPECT_EQ(found().cache, m_home.filePath(u".cache/marvola"_s));
}

TEST_F(FindPlaces, EnvironmentComesBeforeHome)
{
    const QByteArray work = QFile::encodeName(m_home.filePath(u"w"_s));
    qputenv("TROVE_DATA_PATH", "/data");
    qputenv("CARD1_MOUNT_PATH", "/c1");
    qputenv("CARD2_MOUNT_PATH", "/c2");
    qputenv("JUV_APP_WRITE_PATH", work);
    const Places places = found();
    EXPECT_EQ(places.data, u"/data"_s);
    EXPECT_EQ(places.card1, u"/c1"_s);
    EXPECT_EQ(places.card2, u"/c2"_s);
    EXPECT_EQ(places.work, m_home.filePath(u"w"_s));
}

TEST_F(FindPlaces, EmptyDataVariableMeansNoPhonePlace)
{
    qputenv("TROVE_DATA_PATH", "");
    EXPECT_TRUE(found().data.isEmpty());
}

TEST_F(FindPlaces, OptionsComeBeforeEnvironmentAndAreMadeAbsolute)
{
    qputenv("TROVE_DATA_PATH", "/data");
    qputenv("CARD1_MOUNT_PATH", "/c1");
    PlaceOptions options;
    options.data = "some/../music/";
    options.card1 = "";
    options.work = m_home.filePath(u"other"_s).toStdString();
    const Places places = found(options);
    EXPECT_EQ(places.data, QDir::current().absoluteFilePath(u"music"_s));
    EXPECT_TRUE(places.card1.isEmpty());
    EXPECT_EQ(places.work, m_home.filePath(u"other"_s));
    EXPECT_EQ(places.named, QStringList{places.data});
}

TEST_F(FindPlaces, RelativePathsOfTheEnvironmentAreMadeAbsolute)
{
    const QDir here = QDir::current();
    qputenv("TROVE_DATA_PATH", "music");
    qputenv("CARD1_MOUNT_PATH", "c1");
    qputenv("CARD2_MOUNT_PATH", "c2");
    qputenv("JUV_APP_WRITE_PATH", QFile::encodeName(here.relativeFilePath(m_home.filePath(u"w"_s))));
    const Places places = found();
    EXPECT_EQ(places.data, here.absoluteFilePath(u"music"_s));
    EXPECT_EQ(places.card1, here.absoluteFilePath(u"c1"_s));
    EXPECT_EQ(places.card2, here.absoluteFilePath(u"c2"_s));
    EXPECT_TRUE(QDir::isAbsolutePath(places.work));
    EXPECT_EQ(QFileInfo(places.work).canonicalFilePath(), QFileInfo(m_home.filePath(u"w"_s)).canonicalFilePath());
}

TEST_F(FindPlaces, RelativeHomeIsNone)
{
    qputenv("HOME", "home");
    EXPECT_FALSE(findPlaces({}, m_problem).has_value());
    EXPECT_TRUE(m_problem.contains(u"HOME"_s)) << qPrintable(m_problem);
    EXPECT_FALSE(QFileInfo::exists(u"home"_s));
    PlaceOptions options;
    options.work = m_home.filePath(u"w"_s).toStdString();
    EXPECT_TRUE(found(options).data.isEmpty());
}

TEST_F(FindPlaces, PathsThatAreNotUtf8AreAProblemOfWhoNamedThem)
{
    for (const char *name :
         {"TROVE_DATA_PATH", "CARD1_MOUNT_PATH", "CARD2_MOUNT_PATH", "JUV_APP_WRITE_PATH", "XDG_DATA_HOME", "HOME"}) {
        const QByteArray before = qgetenv(name);
        qputenv(name, QFile::encodeName(m_home.path()) + "/\xff");
        m_problem.clear();
        EXPECT_FALSE(findPlaces({}, m_problem).has_value()) << name;
        EXPECT_TRUE(m_problem.contains(QLatin1String(name))) << qPrintable(m_problem);
        before.isEmpty() ? qunsetenv(name) : qputenv(name, before);
    }
    PlaceOptions options;
    options.card1 = "/\xc3";
    EXPECT_FALSE(findPlaces(options, m_problem).has_value());
    EXPECT_TRUE(m_problem.contains(u"--card1"_s)) << qPrintable(m_problem);
    EXPECT_TRUE(QDir(m_home.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

TEST_F(FindPlaces, VariableThatAnOptionReplacesMayHoldAnything)
{
    qputenv("TROVE_DATA_PATH", "/\xff");
    PlaceOptions options;
    options.data = "/music";
    EXPECT_EQ(found(options).data, u"/music"_s);
}

TEST(CanName, Utf8Alone)
{
    EXPECT_TRUE(canName(""));
    EXPECT_TRUE(canName("/a/手机\x01"));
    for (const char *bytes : {"\xff", "a\xc3", "\xc0\xaf", "\xed\xa0\x80"})
        EXPECT_FALSE(canName(bytes));
}

TEST_F(FindPlaces, NoHomeIsAProblemOnlyForTheWorkDirectory)
{
    qunsetenv("HOME");
    EXPECT_FALSE(findPlaces({}, m_problem).has_value());
    EXPECT_TRUE(m_problem.contains(u"HOME"_s) && m_problem.contains(u"--work"_s)) << qPrintable(m_problem);
    PlaceOptions options;
    options.work = m_home.filePath(u"w"_s).toStdString();
    EXPECT_TRUE(found(options).data.isEmpty());
}

TEST_F(FindPlaces, FileInPlaceOfTheWorkDirectoryIsAProblem)
{
    QFile file(m_home.filePath(u"file"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    for (const QString &work : {u"file"_s, u"file/below"_s}) {
        PlaceOptions options;
        options.work = m_home.filePath(work).toStdString();
        EXPECT_FALSE(findPlaces(options, m_problem).has_value());
        EXPECT_TRUE(m_problem.contains(m_home.filePath(work))) << qPrintable(m_problem);
    }
}

TEST_F(FindPlaces, ExportedPlacesAreFoundAgain)
{
    const Places places = {u"/d"_s, u"/c1"_s, u"/c2"_s, m_home.path(), {}, {}, {}};
    exportPlaces(places);
    const Places again = found();
    EXPECT_EQ(again.data, places.data);
    EXPECT_EQ(again.card1, places.card1);
    EXPECT_EQ(again.card2, places.card2);
    EXPECT_EQ(again.work, places.work);
}

TEST(LibraryPlaces, BothCardsFormOnePlaceAndMissingOnesHaveNoRoot)
{
    const QList<Place> places = libraryPlaces({u""_s, u"/c1"_s, u"/c2"_s, u"/w"_s, {}, {}, {}});
    ASSERT_EQ(places.size(), 2);
    EXPECT_EQ(places.at(0).id, u"phone"_s);
    EXPECT_TRUE(places.at(0).roots.isEmpty());
    EXPECT_EQ(places.at(1).id, u"card"_s);
    EXPECT_EQ(places.at(1).roots, (QStringList{u"/c1"_s, u"/c2"_s}));
}

TEST(SearchOrderFrom, IdsInAnyCaseAndNamesBecomeNames)
{
    QString problem;
    EXPECT_EQ(searchOrderFrom({u"CARD"_s, u" phone"_s}, TwoPlaces, problem),
              (QStringList{u"Memory Card"_s, u"Phone"_s}));
    EXPECT_EQ(searchOrderFrom({u"Memory Card"_s}, TwoPlaces, problem), QStringList{u"Memory Card"_s});
}

TEST(SearchOrderFrom, UnknownRepeatedAndMissingPlacesAreRefused)
{
    for (const QStringList &texts : {QStringList{u"phone"_s, u"cloud"_s}, QStringList{u"phone"_s, u"Phone"_s},
                                     QStringList{u""_s}, QStringList{}}) {
        QString problem;
        EXPECT_FALSE(searchOrderFrom(texts, TwoPlaces, problem).has_value()) << qPrintable(texts.join(u'|'));
        EXPECT_FALSE(problem.isEmpty());
    }
}

TEST(PlaceHolding, LongestRootThatHoldsThePath)
{
    EXPECT_EQ(placeHolding(u"/phone/a.mp3"_s, TwoPlaces), 0);
    EXPECT_EQ(placeHolding(u"/card1/a.mp3"_s, TwoPlaces), 1);
    EXPECT_EQ(placeHolding(u"/phone/card2/a.mp3"_s, TwoPlaces), 1);
    EXPECT_EQ(placeHolding(u"/phone/card22/a.mp3"_s, TwoPlaces), 0);
    EXPECT_EQ(placeHolding(u"/phones/a.mp3"_s, TwoPlaces), -1);
    EXPECT_EQ(placeHolding(u"/phone"_s, TwoPlaces), -1);
}

TEST(LiesBelow, EmptyRootHoldsNothing)
{
    EXPECT_FALSE(liesBelow(u"/a"_s, QString()));
    EXPECT_TRUE(liesBelow(u"/a"_s, u"/"_s));
}
