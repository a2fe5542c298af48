// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "QueueView.h"

#include "KeptLists.h"
#include "Session.h"
#include "SettingsTable.h"
#include "Text.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr QLatin1String CurrentListGroup("currentplaylist");
/// The file has a playlist's name behind "pl-".
constexpr qsizetype NamePrefixLength = 3;

/// Whether the list file holds \a queue: the library does not tell whether it could store it.
bool isInListFile(Session &session, const QueueView &queue)
{
    const ConfigFile file(QDir(session.library().getWorkDirectory()).filePath(u".marvola.list"_s), false);
    if (file.readNumEntry(CurrentListGroup, u"counter"_s, -1) != queue.items.size()) {
        return false;
    }
    const QString name = file.readEntry(CurrentListGroup, u"currentplaylistname"_s).mid(NamePrefixLength);
    const int active = file.readNumEntry(CurrentListGroup, u"currentitem"_s, -1);
    if (name != queue.name || queue.items.value(active) != queue.items.value(queue.active)) {
        return false;
    }
    int number = 0;
    return std::all_of(queue.items.begin(), queue.items.end(), [&](const QString &item) {
        return file.readEntry(CurrentListGroup, QString::number(++number)) == item;
    });
}

bool isInSettingsFile(Session &session, const QString &key)
{
    const Setting *setting = settingCalled(key);
    const ConfigFile file(session.settingsFile(), false);
    return setting != nullptr && file.readEntry(setting->group, setting->entry) == storedText(*setting, session);
}

QJsonObject toJson(const QueueView &queue)
{
    QJsonArray items;
    for (const QString &item : queue.items) {
        items.append(wellFormed(item));
    }
    const bool hasActive = queue.active >= 0;
    return {{u"playlist"_s, queue.name.isEmpty() ? QJsonValue() : QJsonValue(wellFormed(queue.name))},
            {u"shuffle"_s, queue.shuffle},
            {u"repeat"_s, queue.repeat},
            {u"active"_s, hasActive ? QJsonValue(queue.active + 1) : QJsonValue()},
            {u"items"_s, items}};
}

QString onOrOff(bool isOn)
{
    return isOn ? u"on"_s : u"off"_s;
}

void printForPeople(const QueueView &queue)
{
    QString heading = queue.items.size() == 1 ? u"1 item"_s : u"%1 items"_s.arg(queue.items.size());
    heading += u", shuffle "_s + onOrOff(queue.shuffle) + u", repeat "_s + onOrOff(queue.repeat);
    if (!queue.name.isEmpty()) {
        heading += u", playlist "_s + queue.name;
    }
    printLine(heading, Emphasis::Strong);
    const auto width = static_cast<int>(QString::number(queue.items.size()).size());
    for (int index = 0; index < queue.items.size(); ++index) {
        const bool isActive = index == queue.active;
        printLine((isActive ? u"> "_s : u"  "_s) + u"%1  "_s.arg(index + 1, width) + queue.items.at(index),
                  isActive ? Emphasis::Strong : Emphasis::None);
    }
}

} // namespace

QueueView queueOf(const MP_MyLibrary &library)
{
    const QString active = library.getActiveItem();
    return {library.getCurrentPlayingListName(), library.getCurrentPlayingList(),
            active.isNull() ? -1 : library.getItemIndex(active), library.getShuffle(), library.getRepeat()};
}

void printQueue(Session &session, const QueueView &queue)
{
    if (session.wantsJson()) {
        printJson(toJson(queue));
    } else {
        printForPeople(queue);
    }
}

ExitStatus keepQueue(Session &session, const std::function<void(const QueueView &)> &print)
{
    const QueueView queue = queueOf(session.library());
    const ExitStatus kept = keepLists(session, [&] { return isInListFile(session, queue); });
    if (kept != ExitStatus::Done) {
        return kept;
    }
    if (!isInSettingsFile(session, u"shuffle"_s) || !isInSettingsFile(session, u"repeat"_s)) {
        return fail(u"cannot write to %1: check that the file can be written and the medium has room"_s.arg(
            session.settingsFile()));
    }
    if (session.wantsJson()) {
        printJson(toJson(queue));
    } else {
        print(queue);
    }
    return ExitStatus::Done;
}

ExitStatus keepQueueQuietly(Session &session)
{
    return keepQueue(session, [](const QueueView &) {});
}

} // namespace marvola
