// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_PLACES_H
#define MARVOLA_CLI_PLACES_H

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>
#include <string>

namespace marvola {

/// The directories named on the command line. An empty text switches a storage place off.
struct PlaceOptions
{
    std::optional<std::string> data;
    std::optional<std::string> card1;
    std::optional<std::string> card2;
    std::optional<std::string> work;
};

/// Where media and the library's own files are. A storage place that is not there has an empty path or one that does
/// not exist.
struct Places
{
    QString data;
    QString card1;
    QString card2;
    QString work;
    QString state;     ///< for what is of use to this program on this machine alone; empty for a user without a home
    QString cache;     ///< for what can be found out again; empty for a user without a home
    QStringList named; ///< the storage places among these that the command line named
};

/// What the places come to: from \a options, else from the environment, else below the user's home; all are absolute.
/// A home that is relative counts as none, and an environment that names a place in anything but UTF-8 is a problem.
/// \param problem receives a line for the user when there is no result
std::optional<Places> locatePlaces(const PlaceOptions &options, QString &problem);

/// The same; the work path is made when it does not exist.
std::optional<Places> findPlaces(const PlaceOptions &options, QString &problem);

/// Whether \a path is UTF-8. Another path would be changed on its way through the library, and name something else.
bool canName(const QByteArray &path);

/// Hands \a places to the library, which reads them from the environment.
void exportPlaces(const Places &places);

/// A place in the library's sense: both cards form one.
struct Place
{
    QString id;   ///< what it is called on the command line
    QString name; ///< what the library calls it, in the user's language
    QStringList roots;
};

/// The phone and the memory card, in this order.
QList<Place> libraryPlaces(const Places &places);

/// The place called \a text, by id or by name.
std::optional<Place> placeCalled(const QString &text, const QList<Place> &places);

/// The library's names for the places in \a texts, in their order; at least one, and none twice.
/// \param problem receives a line for the user when there is no result
std::optional<QStringList> searchOrderFrom(const QStringList &texts, const QList<Place> &places, QString &problem);

/// Tells whether \a path lies below \a root.
bool liesBelow(const QString &path, const QString &root);

/// The index in \a places of the one that holds \a path, by the longest root; -1 for none.
qsizetype placeHolding(const QString &path, const QList<Place> &places);

} // namespace marvola

#endif
