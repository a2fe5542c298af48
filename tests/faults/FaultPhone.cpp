// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FaultPhone.h"

#include "RememberingEngine.h"

#include "support/TableEngine.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// What the operations change; media files are only read.
const QString changingFolders[] = {u"write"_s, u"card"_s, u"status"_s, u"cache"_s};
/// The first ones are in the index.
const QString mediaFiles[] = {u"one.mp3"_s, u"two.mp3"_s, u"three.mp3"_s, u"four.mp3"_s, u"five.mp3"_s};
constexpr int IndexedFiles = 2;

QStringList settingsOf(const MP_MyLibrary &library)
{
    const auto text = [](auto value) { return QString::number(value); };
    return QStringList{text(library.getMute()),      text(library.getVolume()), text(library.getRepeat()),
                       text(library.getShuffle()),   text(library.getProxy()),  library.getProxyIp(),
                       text(library.getProxyPort()), library.getProfileName(),  library.getCodecForClip(),
                       text(library.getVideoMode()), library.getMusicShopURL()} +
           library.getRefreshFlag() + library.getItemListOfPreconfig();
}

QString describeFile(const QString &path, const QByteArray &name)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return QString::fromUtf8(name) + u" missing"_s;
    return QString::fromUtf8(name) + u' ' + QString::number(status.st_size);
}

/// The lists of a phone in use.
void fillLibrary()
{
    TableEngine engine;
    engine.answers = mediaAnswers();
    MP_MyLibrary library(&engine);
    library.refreshMyLibrary();
    while (library.isMyLibraryRefreshing())
        ::usleep(100);
    for (const QString &name : {u"morning"_s, u"evening"_s, u"日本"_s}) {
        // Long enough for a list to reach over several sectors.
        const QString item = name + QString(200, u'x');
        library.setCurrentPlayingList(QStringList{u"/a/"_s + item, u"/b/"_s + item, u"http://x/"_s + item});
        EXPECT_EQ(library.savePlayList(name), 0);
    }
    library.setActiveItem(1, false);
    library.addItemToHistory(u"http://old/1"_s);
    library.addItemToHistory(u"http://old/2"_s);
    EXPECT_EQ(library.addItemToBookmark(u"radio"_s, u"http://radio"_s), 0);
    library.setVolume(42);
    library.setMute(true);
    library.setRepeat(true);
    library.setProxyIp(u"10.0.0.1"_s);
    library.setProxyPort(3128);
    library.setProfileName(u"home"_s);
    library.storeMyLibrary();
}

} // namespace

void FaultPhone::put(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (bytes.isNull()) {
        ASSERT_TRUE(!file.exists() || file.remove());
        return;
    }
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << qPrintable(path);
    ASSERT_EQ(file.write(bytes), bytes.size()) << qPrintable(path);
}

QByteArray FaultPhone::get(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    return bytes.isNull() ? QByteArray("") : bytes;
}

FaultPhone::FaultPhone(const QString &folder) : m_folder(folder)
{
    for (const QString &name : {u"phone"_s, u"write"_s, u"card"_s, u"status"_s, u"cache"_s})
        EXPECT_TRUE(QDir(m_folder).mkpath(name));
    const auto set = [](const char *name, const QString &path) { qputenv(name, QFile::encodeName(path)); };
    set("TROVE_DATA_PATH", m_folder + u"/phone"_s);
    set("CARD1_MOUNT_PATH", card());
    set("CARD2_MOUNT_PATH", QString());
    set("JUV_APP_WRITE_PATH", m_folder + u"/write"_s);
    const QStringList files = media();
    for (const QString &file : files.first(IndexedFiles))
        put(file, "x");
    fill();
    for (const QString &file : files.sliced(IndexedFiles))
        put(file, "x");
    keep();
}

QStringList FaultPhone::media() const
{
    QStringList files;
    for (const QString &name : mediaFiles)
        files.append(m_folder + u"/phone/"_s + name);
    return files;
}

/// In a process of its own: the worker thread of a refresh is never forked then.
void FaultPhone::fill() const
{
    put(settingsFolder() + u"/juv_marvola.cfg"_s, "[MediaLimitationItem]\nMaxNumOfMediaFile=50\nMaxNumOfList=9\n"
                                                  "MaxNumOfItem=9\nMaxNumOfBookmark=9\nMaxNumOfHistory=9\n");
    const pid_t child = ::fork();
    if (child == 0) {
        fillLibrary();
        ConfigFile list(listFile(), false);
        list.writeEntry(u"others"_s, u"theirs"_s, u"kept"_s);
        ::_exit(list.flush() && !testing::Test::HasFailure() ? 0 : 1);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    put(statusFile(), "MyInterface=old0");
}

FaultPhone::Content FaultPhone::content() const
{
    Content content;
    for (const QString &name : changingFolders) {
        QDirIterator files(m_folder + u'/' + name, QDir::Files | QDir::Hidden | QDir::System,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            content.insert(path, get(path));
        }
    }
    return content;
}

void FaultPhone::keep()
{
    m_kept = content();
}

void FaultPhone::putBack() const
{
    for (const QString &name : changingFolders) {
        QDir folder(m_folder + u'/' + name);
        EXPECT_TRUE(folder.removeRecursively());
        EXPECT_TRUE(QDir(m_folder).mkpath(name));
    }
    for (auto file = m_kept.cbegin(); file != m_kept.cend(); ++file)
        put(file.key(), file.value());
}

LibraryState FaultPhone::state() const
{
    TableEngine engine;
    MP_MyLibrary library(&engine);
    LibraryState state;
    state[u"settings"_s] = settingsOf(library);
    state[u"work directory"_s] = QStringList(library.getWorkDirectory());
    state[u"history"_s] = library.getItemListOfHistory();
    state[u"bookmarks"_s] = library.getItemListOfBookmark();
    state[u"current list"_s] =
        QStringList{library.getCurrentPlayingListName(), library.getActiveItem()} + library.getCurrentPlayingList();
    state[u"artists"_s] = library.getAllArtists();
    state[u"albums"_s] = library.getAllAlbums();
    state[u"genres"_s] = library.getAllGenres();
    state[u"media"_s] = library.getAllMedia();
    state[u"playlists"_s] = library.getAllPlayLists();
    for (const QString &name : std::as_const(state[u"playlists"_s]))
        state[u"playlist "_s + name] = library.loadPlayList(name);
    const ConfigFile list(listFile(), false);
    state[u"others' group"_s] = list.getGroupEntriesKeyList(u"others"_s).values();
    state[u"status file"_s] = QStringList(QString::fromUtf8(get(statusFile())));
    state[u"answers"_s] = rememberedAnswers(cacheFile(), media());
    state[u"card"_s] = {describeFile(card() + u"/.marvola.list"_s, "list"),
                        describeFile(card() + u"/.marvola.info"_s, "info")};
    return state;
}

QStringList FaultPhone::temporaryFiles() const
{
    QStringList temporary;
    const QStringList files = content().keys();
    for (const QString &path : files) {
        const QString name = QFileInfo(path).fileName();
        // What could not be read is kept for good; a cache is cleared up by the next one to write it.
        if (!name.contains(u".damaged"_s) && name != u".marvola.list"_s && name != u".marvola.info"_s &&
            name != u"juv_marvola.cfg"_s && name != u"link"_s && !path.startsWith(cacheFile()))
            temporary.append(path);
    }
    return temporary;
}
