// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "SettingsTable.h"

#include "Limits.h"
#include "Session.h"
#include "Text.h"

#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr QLatin1String ControlGroup("MediaControlItem");
constexpr QLatin1String ProxyGroup("MediaProxyItem");
constexpr QLatin1String SearchOrderKey("search-order");

std::optional<bool> toBool(const QString &text)
{
    for (const QLatin1String word : {"on"_L1, "true"_L1, "yes"_L1, "1"_L1}) {
        if (text.compare(word, Qt::CaseInsensitive) == 0) {
            return true;
        }
    }
    for (const QLatin1String word : {"off"_L1, "false"_L1, "no"_L1, "0"_L1}) {
        if (text.compare(word, Qt::CaseInsensitive) == 0) {
            return false;
        }
    }
    return std::nullopt;
}

template<auto Getter>
QJsonValue plainValue(Session &session)
{
    return QJsonValue((session.library().*Getter)());
}

template<auto Getter>
QJsonValue textValue(Session &session)
{
    return QJsonValue(wellFormed((session.library().*Getter)()));
}

template<auto Setter>
QString changeSwitch(Session &session, const QString &text)
{
    const std::optional<bool> value = toBool(text);
    if (!value) {
        return u"is on or off, not '%1'"_s.arg(text);
    }
    (session.library().*Setter)(*value);
    return {};
}

template<auto Setter, typename Number>
QString changeNumber(Session &session, const QString &text)
{
    constexpr Number Largest = std::numeric_limits<Number>::max();
    bool isNumber = false;
    const uint value = text.toUInt(&isNumber);
    if (!isNumber || value > Largest) {
        return u"is a number from 0 to %1, not '%2'"_s.arg(QString::number(Largest), text);
    }
    (session.library().*Setter)(static_cast<Number>(value));
    return {};
}

template<auto Setter>
QString changeText(Session &session, const QString &text)
{
    (session.library().*Setter)(text);
    return {};
}

QJsonValue searchOrderValue(Session &session)
{
    const QList<Place> places = libraryPlaces(session.places());
    QJsonArray ids;
    for (const QString &name : session.library().getRefreshFlag()) {
        const std::optional<Place> place = placeCalled(name, places);
        ids.append(place ? place->id : wellFormed(name));
    }
    return ids;
}

QString changeSearchOrder(Session &session, const QString &text)
{
    QString problem;
    const auto order = searchOrderFrom(text.split(u','), libraryPlaces(session.places()), problem);
    if (!order) {
        return u"is an order of places; "_s + problem;
    }
    session.library().setRefreshFlag(*order);
    return {};
}

QJsonValue limitsValue(Session &session)
{
    const Limits limits = readLimits(session.settingsFile());
    QJsonObject object;
    for (const LimitField &field : LimitFields) {
        object.insert(field.word, limits.*field.value);
    }
    return object;
}

using Library = MP_MyLibrary;

QList<Setting> makeSettings()
{
    return {
        {"mute"_L1, "silence, on or off"_L1, ControlGroup, "Mute"_L1, plainValue<&Library::getMute>,
         changeSwitch<&Library::setMute>},
        {"volume"_L1, "0 to 255"_L1, ControlGroup, "VolumeLevel"_L1, plainValue<&Library::getVolume>,
         changeNumber<&Library::setVolume, quint8>},
        {"repeat"_L1, "start over at the list's end, on or off"_L1, ControlGroup, "Repeat"_L1,
         plainValue<&Library::getRepeat>, changeSwitch<&Library::setRepeat>},
        {"shuffle"_L1, "random order, on or off"_L1, ControlGroup, "Shuffle"_L1, plainValue<&Library::getShuffle>,
         changeSwitch<&Library::setShuffle>},
        {"video-mode"_L1, "the player's; never stored by the library"_L1, ControlGroup, "VideoMode"_L1,
         plainValue<&Library::getVideoMode>, nullptr},
        {"codec"_L1, "of tags that are not Unicode; read-only"_L1, ControlGroup, "CodecName"_L1,
         textValue<&Library::getCodecForClip>, nullptr},
        {"proxy"_L1, "use the proxy, on or off"_L1, ProxyGroup, "Proxy"_L1, plainValue<&Library::getProxy>,
         changeSwitch<&Library::setProxy>},
        {"proxy-ip"_L1, "the proxy's address"_L1, ProxyGroup, "ProxyAddress"_L1, textValue<&Library::getProxyIp>,
         changeText<&Library::setProxyIp>},
        {"proxy-port"_L1, "0 to 65535"_L1, ProxyGroup, "ProxyPort"_L1, plainValue<&Library::getProxyPort>,
         changeNumber<&Library::setProxyPort, quint16>},
        {"profile"_L1, "network profile of the data link"_L1, ProxyGroup, "ProfileName"_L1,
         textValue<&Library::getProfileName>, changeText<&Library::setProfileName>},
        {"music-shop-url"_L1, "read-only"_L1, ControlGroup, "MusicShopURL"_L1, textValue<&Library::getMusicShopURL>,
         nullptr},
        {SearchOrderKey, "places to refresh, in order: phone, card"_L1, ControlGroup, "SearchOrder"_L1,
         searchOrderValue, changeSearchOrder},
        {"limits"_L1, "read-only"_L1, LimitGroup, "MaxNumOf..."_L1, limitsValue, nullptr},
    };
}

} // namespace

const QList<Setting> &allSettings()
{
    static const QList<Setting> settings = makeSettings();
    return settings;
}

const Setting *settingCalled(const QString &key)
{
    for (const Setting &setting : allSettings()) {
        if (key == setting.key) {
            return &setting;
        }
    }
    return nullptr;
}

QString valueText(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool() ? u"on"_s : u"off"_s;
    case QJsonValue::Double:
        return QString::number(value.toInt());
    case QJsonValue::Array: {
        QStringList texts;
        const QJsonArray elements = value.toArray();
        for (const auto &element : elements) {
            texts.append(valueText(element));
        }
        return texts.join(u',');
    }
    case QJsonValue::Object: {
        const QJsonObject object = value.toObject();
        QStringList texts;
        for (auto entry = object.begin(); entry != object.end(); ++entry) {
            texts.append(entry.key() + u' ' + valueText(entry.value()));
        }
        return texts.join(u", "_s);
    }
    default:
        return value.toString();
    }
}

QString storedText(const Setting &setting, Session &session)
{
    if (setting.key == SearchOrderKey) {
        return session.library().getRefreshFlag().join(u',');
    }
    const QJsonValue value = setting.value(session);
    if (value.isBool()) {
        return value.toBool() ? u"1"_s : u"0"_s;
    }
    return valueText(value);
}

} // namespace marvola
