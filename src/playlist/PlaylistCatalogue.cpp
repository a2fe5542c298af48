// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/PlaylistCatalogue.h"

#include "platform/FileNames.h"
#include "platform/NumberedGroup.h"
#include "playlist/PlaylistName.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QSet>

namespace marvola {

namespace {

constexpr QLatin1String DefaultName("playlist");

// Counted up by all library objects of the process, on whatever threads they are.
std::atomic<quint32> defaultNameCounter{0};

// Writes the current list back into its playlist.
// Deliberate: the catalogue is not asked, so a list whose playlist was deleted meanwhile keeps its items in the file.
PlaylistStatus storeBack(ConfigFile &file, const CurrentList &list, quint16 maxItems)
{
    const QString group = list.storedName();
    if (group.isEmpty())
        return PlaylistStatus::Done;
    NumberedGroup playlist(file, group);
    const int oldCount = playlist.count();
    if (!playlist.writeCount(list.count()))
        return PlaylistStatus::Failed;
    return writeItems(file, group, list.items(), maxItems, oldCount);
}

bool writeEntries(ConfigFile &file, const QString &group, const QMap<QString, QString> &entries)
{
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
        if (!file.writeEntry(group, entry.key(), entry.value()))
            return false;
    }
    return true;
}

// Copies a group's entries over those of another; when that is refused, the other is as it was.
bool copyGroup(ConfigFile &file, const QString &from, const QString &to)
{
    const QMap<QString, QString> before = file.getGroupEntriesKeyList(to);
    if (writeEntries(file, to, file.getGroupEntriesKeyList(from)))
        return true;
    file.clearGroup(to);
    static_cast<void>(writeEntries(file, to, before));
    return false;
}

} // namespace

PlaylistStatus newPlayList(const PlacedFile &listFile, const PlaylistLimits &limits, CurrentList &list)
{
    if (listFile.isEmpty())
        return PlaylistStatus::Failed;
    ConfigFile file = listFile.open();
    file.lockForUpdate();
    // Deliberate: only a count equal to the limit stops it, so that lowering the limit does not lock the user out.
    if (NumberedGroup(file, CatalogueGroup).count() == limits.lists)
        return PlaylistStatus::LimitReached;
    const PlaylistStatus status = storeBack(file, list, limits.items);
    if (status != PlaylistStatus::Done)
        return status;
    // Deliberate: a commit that fails now only changes the answer; the player has moved on to its new list.
    list.setStoredName(QString());
    list.clear();
    return file.flush() ? PlaylistStatus::Done : PlaylistStatus::Failed;
}

bool deletePlayList(const PlacedFile &listFile, const QString &name)
{
    if (name.isEmpty() || listFile.isEmpty())
        return false;
    ConfigFile file = listFile.open();
    file.lockForUpdate();
    NumberedGroup catalogue(file, CatalogueGroup);
    QStringList entries = catalogue.entries();
    const auto newCount = static_cast<int>(entries.size()) - 1;
    catalogue.removeEntries();
    // Deliberate: a name that is not there costs the catalogue its entries, as it always has; the count stays.
    if (entries.removeAll(storedPlaylistName(name)) == 0)
        return false;
    bool written = catalogue.writeCount(newCount);
    for (int number = 1; written && number <= entries.size(); ++number)
        written = catalogue.writeEntry(number, entries.at(number - 1));
    // Deliberate: the playlist's own group stays; a playlist of that name replaces its items.
    return file.flush() && written;
}

bool deleteAllPlayLists(const PlacedFile &listFile)
{
    if (listFile.isEmpty())
        return false;
    ConfigFile file = listFile.open();
    file.lockForUpdate();
    bool cleared = true;
    const QStringList groups = NumberedGroup(file, CatalogueGroup).entries();
    for (const QString &group : groups) {
        if (!group.isEmpty())
            cleared = file.clearGroup(group) && cleared;
    }
    cleared = file.clearGroup(CatalogueGroup) && cleared;
    return file.flush() && cleared;
}

bool renamePlayList(const PlacedFile &listFile, const QString &oldName, const QString &newName, CurrentList &list)
{
    if (oldName.isEmpty() || newName.isEmpty())
        return false;
    if (oldName == newName)
        return true;
    if (listFile.isEmpty())
        return false;
    ConfigFile file = listFile.open();
    file.lockForUpdate();
    const QString oldGroup = storedPlaylistName(oldName);
    const QString newGroup = storedPlaylistName(newName);
    const int number = findPlaylist(file, oldGroup);
    if (number == 0 || findPlaylist(file, newGroup) != 0)
        return false;
    NumberedGroup catalogue(file, CatalogueGroup);
    if (!catalogue.writeEntry(number, newGroup))
        return false;
    if (!copyGroup(file, oldGroup, newGroup)) {
        static_cast<void>(catalogue.writeEntry(number, oldGroup));
        return false;
    }
    file.clearGroup(oldGroup);
    // Deliberate: renamed even if the commit fails now; the playlist then takes the new name at the next save.
    if (list.storedName() == oldGroup)
        list.setStoredName(newGroup);
    return file.flush();
}

bool hasPlayList(const PlacedFile &listFile, const QString &name)
{
    if (name.isEmpty() || listFile.isEmpty())
        return false;
    ConfigFile file = listFile.open();
    return findPlaylist(file, storedPlaylistName(name)) != 0;
}

QString getDefaultPlayListName(const PlacedFile &listFile)
{
    return getDefaultPlayListName(listFile, defaultNameCounter);
}

QString getDefaultPlayListName(const PlacedFile &listFile, std::atomic<quint32> &counter)
{
    if (listFile.isEmpty())
        return {};
    ConfigFile file = listFile.open();
    const QStringList entries = NumberedGroup(file, CatalogueGroup).entries();
    const QSet<QString> taken(entries.cbegin(), entries.cend());
    // Deliberate: the counter never goes back and the name is not reserved, so asking twice gives the same one.
    QString name = DefaultName + QString::number(counter);
    while (taken.contains(storedPlaylistName(name)))
        name = DefaultName + QString::number(++counter);
    return name;
}

} // namespace marvola
