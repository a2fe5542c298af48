// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Answers.h"

#include "BusNames.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>

#include <algorithm>

#include <net/if.h>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

using Settings = QMap<QString, QVariantMap>;

bool answers(const QDBusMessage &message, QLatin1String signature)
{
    return message.type() == QDBusMessage::ReplyMessage && message.signature() == signature;
}

std::optional<QStringList> pathsIn(const QVariant &value)
{
    if (value.metaType() != QMetaType::fromType<QDBusArgument>())
        return std::nullopt;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != "ao"_L1)
        return std::nullopt;
    QStringList paths;
    const auto objects = qdbus_cast<QList<QDBusObjectPath>>(argument);
    for (const QDBusObjectPath &object : objects)
        paths.append(object.path());
    return paths;
}

template<typename T>
std::optional<T> valueIn(const QVariantMap &properties, const QString &name)
{
    const QVariant value = properties.value(name);
    if (value.metaType() != QMetaType::fromType<T>())
        return std::nullopt;
    return value.value<T>();
}

} // namespace

std::optional<QStringList> objectPaths(const QDBusMessage &answer)
{
    if (!answers(answer, "v"_L1))
        return std::nullopt;
    return pathsIn(answer.arguments().constFirst().value<QDBusVariant>().variant());
}

std::optional<Profile> profileOf(const QString &path, const QDBusMessage &answer)
{
    if (!answers(answer, "a{sa{sv}}"_L1))
        return std::nullopt;
    const auto settings = qdbus_cast<Settings>(answer.arguments().constFirst());
    const QVariantMap connection = settings.value(u"connection"_s);
    const QString id = textIn(connection, u"id"_s);
    if (id.isEmpty())
        return std::nullopt;
    return Profile{path, id, textIn(connection, u"uuid"_s)};
}

std::optional<QVariantMap> propertiesOf(const QDBusMessage &answer)
{
    if (!answers(answer, "a{sv}"_L1))
        return std::nullopt;
    return qdbus_cast<QVariantMap>(answer.arguments().constFirst());
}

std::optional<QString> activePathOf(const QDBusMessage &answer)
{
    if (!answers(answer, "o"_L1))
        return std::nullopt;
    const QString path = answer.arguments().constFirst().value<QDBusObjectPath>().path();
    if (path == bus::NoPath)
        return std::nullopt;
    return path;
}

std::optional<uint> numberIn(const QVariantMap &properties, const QString &name)
{
    return valueIn<uint>(properties, name);
}

QString textIn(const QVariantMap &properties, const QString &name)
{
    return valueIn<QString>(properties, name).value_or(QString());
}

QString pathIn(const QVariantMap &properties, const QString &name)
{
    return valueIn<QDBusObjectPath>(properties, name).value_or(QDBusObjectPath()).path();
}

QString firstPathIn(const QVariantMap &properties, const QString &name)
{
    return pathsIn(properties.value(name)).value_or(QStringList()).value(0);
}

bool isInterfaceName(const QString &name)
{
    const QByteArray bytes = name.toUtf8();
    if (bytes.isEmpty() || bytes.size() >= IFNAMSIZ || bytes == "." || bytes == "..")
        return false;
    return std::none_of(bytes.cbegin(), bytes.cend(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte <= ' ' || byte == 0x7f || c == '/' || c == ':';
    });
}

} // namespace marvola
