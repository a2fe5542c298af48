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

/// \a path as seen from the current directory. In bytes, for that need not be UTF-8 either.
QByteArray absolutePath(const QByteArray &path)
{
    if (path.isEmpty() || path.startsWith('/')) {
        return path;
    }
    std::error_code error;
    return QByteArray::fromStdString(std::filesystem::current_path(error).native()) + '/' + path;
}

/// Reads the paths that command line and environment name, and notes who named one that cannot be used.
class NamedPaths
{
public:
    QString option(const char *name, const std::string &path)
    {
        return QDir::cleanPath(decoded(name, absolutePath(QByteArray::fromStdString(path))));
    }

    QString environment(const char *variable) { return decoded(variable, absolutePath(qgetenv(variable))); }

    /// The directory in \a variable, which has no meaning unless it is absolute.
    QString home(const char *variable)
    {
        const QByteArray path = qgetenv(variable);
        return path.startsWith('/') ? decoded(variable, path) : QString();
    }

    /// Options and variables.
    const QStringList &unusable() const { return m_unusable; }

private:
    QString decoded(const char *source, const QByteArray &path)
    {
        if (!canName(path)) {
            m_unusable.append(QLatin1String(source));
        }
        return QFile::decodeName(path);
    }

    QStringList m_unusable;
};

QString musicBelowHome(NamedPaths &paths)
{
    return paths.home("HOME").isEmpty() ? QString() : QStandardPaths::writableLocation(QStandardPaths::MusicLocation);
}

/// The program's own directory below the one that \a variable names, else below \a usual in the user's home.
QString belowHome(NamedPaths &paths, const char *variable, QLatin1StringView usual)
{
    const QString named = paths.home(variable);
    if (!named.isEmpty()) {
        return named + u"/marvola"_s;
    }
    const QString home = paths.home("HOME");
    return home.isEmpty() ? QString() : home + usual + u"/marvola"_s;
}

/// One storage place; a name from the command line comes before the environment's, and is noted in \a named.
QString storagePlace(const char *name, const std::optional<std::string> &option, const char *variable,
                     NamedPaths &paths, QStringList &named)
{
    if (!option) {
        return paths.environment(variable);
    }
    QString path = paths.option(name, *option);
    if (!path.isEmpty()) {
        named.append(path);
    }
    return path;
}

QString workPath(const std::optional<std::string> &option, NamedPaths &paths)
{
    if (option) {
        return paths.option("--work", *option);
    }
    const QString path = paths.environment(WorkVariable);
    return path.isEmpty() ? belowHome(paths, "XDG_DATA_HOME", "/.local/share"_L1) : path;
}

Places collectPlaces(const PlaceOptions &options, NamedPaths &paths)
{
    Places places;
    places.data = storagePlace("--data", options.data, DataVariable, paths, places.named);
    places.card1 = storagePlace("--card1", options.card1, Card1Variable, paths, places.named);
    places.card2 = storagePlace("--card2", options.card2, Card2Variable, paths, places.named);
    if (!options.data && !qEnvironmentVariableIsSet(DataVariable)) {
        places.data = musicBelowHome(paths);
    }
    places.work = workPath(options.work, paths);
    places.state = belowHome(paths, "XDG_STATE_HOME", "/.local/state"_L1);
    places.cache = belowHome(paths, "XDG_CACHE_HOME", "/.cache"_L1);
    return places;
}

} // namespace

std::optional<Places> locatePlaces(const PlaceOptions &options, QString &problem)
{
    NamedPaths paths;
    Places places = collectPlaces(options, paths);
    if (!paths.unusable().isEmpty()) {
        problem = u"the path that %1 gives is not UTF-8, so it cannot be used: rename the directory"_s.arg(
            paths.unusable().first());
        return std::nullopt;
    }
    if (places.work.isEmpty()) {
        problem = u"there is no directory for the library's files: HOME is not set; give --work DIR"_s;
        return std::nullopt;
    }
    return places;
}

std::optional<Places> findPlaces(const PlaceOptions &options, QString &problem)
{
    std::optional<Places> places = locatePlaces(options, problem);
    if (!places) {
        return std::nullopt;
    }
    std::error_code error;
    std::filesystem::create_directories(QFile::encodeName(places->work).toStdString(), error);
    if (!QDir(places->work).exists()) {
        const QString reason = error ? qt_error_string(error.value()) : u"it is no directory"_s;
        problem = u"cannot make the directory %1: %2; name another one with --work DIR"_s.arg(places->work, reason);
        return std::nullopt;
    }
    return places;
}

bool canName(const QByteArray &path)
{
    return QFile::encodeName(QFile::decodeName(path)) == path;
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
