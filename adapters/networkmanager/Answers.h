// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKMANAGER_ANSWERS_H
#define MARVOLA_NETWORKMANAGER_ANSWERS_H

#include <QtCore/QStringList>
#include <QtCore/QVariant>

#include <optional>

QT_FORWARD_DECLARE_CLASS(QDBusMessage)

// The service's answers, checked before they are believed. What is no such answer (an error, other types, another
// number of values) gives nothing.
namespace marvola {

/// A connection profile, as far as it matters here.
struct Profile
{
    QString path;
    QString id;
    QString uuid;

    /// Which of two profiles with one id to take: UUIDs stay the same, while paths are numbered anew at each start.
    bool goesBefore(const Profile &other) const { return uuid != other.uuid ? uuid < other.uuid : path < other.path; }
};

/// Reads a property that holds objects.
std::optional<QStringList> objectPaths(const QDBusMessage &answer);

/// Reads the settings of the profile \a path; it has an id.
std::optional<Profile> profileOf(const QString &path, const QDBusMessage &answer);

/// Reads all properties of an object.
std::optional<QVariantMap> propertiesOf(const QDBusMessage &answer);

/// Reads what activating gave: the path of an active connection, never "none".
std::optional<QString> activePathOf(const QDBusMessage &answer);

/// A value of a property, or the default of its type when it is missing or of another type.
std::optional<uint> numberIn(const QVariantMap &properties, const QString &name);
QString textIn(const QVariantMap &properties, const QString &name);
QString pathIn(const QVariantMap &properties, const QString &name);
/// The first path of a list, empty for none.
QString firstPathIn(const QVariantMap &properties, const QString &name);

/// Tells whether the system can have a network interface of that name. Anything else would only mislead its reader.
bool isInterfaceName(const QString &name);

} // namespace marvola

#endif
