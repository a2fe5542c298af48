// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Places.h"

#include <marvola/MP_MyLibrary.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>

#include <filesystem>
#include <system_error>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr const char DataVariable[] = "TROVE_DATA_PATH";
constexpr const char Card1Variable[] = "CARD1_MOUNT_PATH";
constexpr const char Card2Variable[] = "CARD2_MOUNT_PATH";
constexpr const char WorkVariable[] = "JUV_APP_WRITE_PATH";

QString environmentPath(const char *variable)
{
    return QFile::decodeName(qgetenv(variable));
}

QString absolutePath(const std::string &path)
{
    if (path.empty()) {
        return {};
    }
    return QDir::cleanPath(QDir::current().absoluteFilePath(QFile::decodeName(path.c_str())));
}

QString musicBelowHome()
{
    return environmentPath("HOME").isEmpty() ? QString()
                                             : QStandardPaths::writableLocation(QStandardPaths::MusicLocation);
}

QString workBelowHome()
{
    const QString dataHome = environmentPath("XDG_DATA_HOME");
    if (QDir::isAbsolutePath(dataHome)) {
        return dataHome + u"/marvola"_s;
    }
    const QString home = environmentPath("HOME");
    return home.isEmpty() ? QString() : home + u"/.local/share/marvola"_s;
}

/// One storage place; a name from the command line is noted in \a named.
QString storagePlace(const std::optional<std::string> &option, const char *variable, const QString &otherwise,
                     QStringList &named)
{
    if (option) {
        QString path = absolutePath(*option);
        if (!path.isEmpty()) {
            named.append(path);
        }
        return path;
    }
    return qEnvironmentVariableIsSet(variable) ? environmentPath(variable) : otherwise;
}

QString workPath(const std::optional<std::string> &option)
{
    if (option) {
        return absolutePath(*option);
    }
    const QString configured = environmentPath(WorkVariable);
    return configured.isEmpty() ? workBelowHome() : configured;
}

} // namespace

std::optional<Places> findPlaces(const PlaceOptions &options, QString &problem)
{
    Places places;
    places.data = storagePlace(options.data, DataVariable, musicBelowHome(), places.named);
    places.card1 = storagePlace(options.card1, Card1Variable, QString(), places.named);
    places.card2 = storagePlace(options.card2, Card2Variable, QString(), places.named);
    places.work = workPath(options.work);
    if (places.work.isEmpty()) {
        problem = u"there is no directory for the library's files: HOME is not set; give --work DIR"_s;
        return std::nullopt;
    }
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(places.work).toStdString(), error);
    if (!QDir(places.work).exists()) {
        const QString reason = error ? qt_error_string(error.value()) : u"it is no directory"_s;
        problem = u"cannot make the directory %1: %2; name another one with --work DIR"_s.arg(places.work, reason);
        return std::nullopt;
    }
    return places;
}

void exportPlaces(const Places &places)
{
    qputenv(DataVariable, QFile::encodeName(places.data));
    qputenv(Card1Variable, QFile::encodeName(places.card1));
    qputenv(Card2Variable, QFile::encodeName(places.card2));
    qputenv(WorkVariable, QFile::encodeName(places.work));
}

QList<Place> libraryPlaces(const Places &places)
{
    QStringList cards = {places.card1, places.card2};
    cards.removeAll(QString());
    QStringList phone = {places.data};
    phone.removeAll(QString());
    return {{u"phone"_s, MP_MyLibrary::tr("TXT_RID_DTITLE_PHONE", "Phone"), phone},
            {u"card"_s, MP_MyLibrary::tr("TXT_RID_DTITLE_MEMORY_CARD", "Memory Card"), cards}};
}

std::optional<Place> placeCalled(const QString &text, const QList<Place> &places)
{
    for (const Place &place : places) {
        if (text.compare(place.id, Qt::CaseInsensitive) == 0 || text == place.name) {
            return place;
        }
    }
    return std::nullopt;
}

std::optional<QStringList> searchOrderFrom(const QStringList &texts, const QList<Place> &places, QString &problem)
{
    QStringList order;
    for (const QString &text : texts) {
        const std::optional<Place> place = placeCalled(text.trimmed(), places);
        if (!place) {
            problem = u"'%1' is no place: name phone or card, or both with a comma between"_s.arg(text);
            return std::nullopt;
        }
        if (order.contains(place->name)) {
            problem = u"the place '%1' is named twice: name each once"_s.arg(text);
            return std::nullopt;
        }
        order.append(place->name);
    }
    if (order.isEmpty()) {
        problem = u"no place is named: name phone or card, or both with a comma between"_s;
        return std::nullopt;
    }
    return order;
}

bool liesBelow(const QString &path, const QString &root)
{
    return !root.isEmpty() && path.startsWith(root.endsWith(u'/') ? root : root + u'/');
}

qsizetype placeHolding(const QString &path, const QList<Place> &places)
{
    qsizetype holder = -1;
    qsizetype longest = -1;
    for (qsizetype index = 0; index < places.size(); ++index) {
        for (const QString &root : places.at(index).roots) {
            if (liesBelow(path, root) && root.size() > longest) {
                holder = index;
                longest = root.size();
            }
        }
    }
    return holder;
}

} // namespace marvola
