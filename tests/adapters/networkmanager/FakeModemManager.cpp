// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FakeModemManager.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusMetaType>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString Service = u"org.freedesktop.ModemManager1"_s;
const QString RootPath = u"/org/freedesktop/ModemManager1"_s;
const QString ModemPath = RootPath + u"/Modem/0"_s;
const QString SimPath = RootPath + u"/SIM/0"_s;
const QString BearerPath = RootPath + u"/Bearer/0"_s;
const QString ModemInterface = Service + u".Modem"_s;
const QString SimpleInterface = ModemInterface + u".Simple"_s;
const QString BearerInterface = Service + u".Bearer"_s;
const QString PropertiesInterface = u"org.freedesktop.DBus.Properties"_s;

// ModemManager's numbers.
constexpr int Registered = 8;
constexpr int Connecting = 10;
constexpr int Connected = 11;
constexpr uint UserRequested = 1;
constexpr uint Failure = 3;
constexpr uint NotLocked = 1;
constexpr uint GsmUmts = 4;
constexpr uint PowerOn = 3;
constexpr uint Ipv4 = 1;
constexpr uint StaticIp = 2;
constexpr uint DefaultBearer = 1;

QVariant path(const QString &text)
{
    return QVariant::fromValue(QDBusObjectPath(text));
}

QVariant paths(const QStringList &texts)
{
    QList<QDBusObjectPath> list;
    for (const QString &text : texts)
        list.append(QDBusObjectPath(text));
    return QVariant::fromValue(list);
}

QVariantMap address()
{
    return {
        {u"method"_s, StaticIp}, {u"address"_s, u"10.64.0.2"_s}, {u"prefix"_s, 24U}, {u"gateway"_s, u"10.64.0.1"_s}};
}

} // namespace

/// A port of the modem, with ModemManager's number for what it is for.
struct ModemPort
{
    static constexpr uint Network = 2;
    static constexpr uint Commands = 3;

    QString name;
    uint use = 0;
};
Q_DECLARE_METATYPE(ModemPort)

static QDBusArgument &operator<<(QDBusArgument &argument, const ModemPort &port)
{
    argument.beginStructure();
    argument << port.name << port.use;
    argument.endStructure();
    return argument;
}

static const QDBusArgument &operator>>(const QDBusArgument &argument, ModemPort &port)
{
    argument.beginStructure();
    argument >> port.name >> port.use;
    argument.endStructure();
    return argument;
}

FakeModemManager::FakeModemManager(const PrivateBus &bus, const QString &dataInterface)
    : m_bus(bus.connect()), m_dataInterface(dataInterface)
{
    qDBusRegisterMetaType<ModemPort>();
    qDBusRegisterMetaType<QList<ModemPort>>();
    qDBusRegisterMetaType<Interfaces>();
    qDBusRegisterMetaType<Objects>();
    const QString serialPort = u"ttyMODEM0"_s;
    const QList<ModemPort> ports = {{serialPort, ModemPort::Commands}, {dataInterface, ModemPort::Network}};
    m_objects[QDBusObjectPath(ModemPath)] = {
        {ModemInterface,
         {{u"Sim"_s, path(SimPath)},
          {u"Bearers"_s, paths({})},
          {u"Device"_s, u"/virtual/modem"_s},
          {u"DeviceIdentifier"_s, u"modem0"_s},
          {u"Drivers"_s, QStringList(u"virtual"_s)},
          {u"Plugin"_s, u"generic"_s},
          {u"PrimaryPort"_s, serialPort},
          {u"Ports"_s, QVariant::fromValue(ports)},
          {u"EquipmentIdentifier"_s, u"350123451234560"_s},
          {u"CurrentCapabilities"_s, GsmUmts},
          {u"UnlockRequired"_s, NotLocked},
          {u"State"_s, Registered},
          {u"PowerState"_s, PowerOn},
          {u"SupportedIpFamilies"_s, Ipv4}}},
        {SimpleInterface, {}},
        {ModemInterface + u".Modem3gpp"_s, {{u"Imei"_s, u"350123451234560"_s}, {u"RegistrationState"_s, 1U}}}};
    m_objects[QDBusObjectPath(SimPath)] = {
        {Service + u".Sim"_s,
         {{u"Active"_s, true}, {u"SimIdentifier"_s, u"8900"_s}, {u"Imsi"_s, u"001010123456789"_s}}}};
    m_objects[QDBusObjectPath(BearerPath)] = {{BearerInterface,
                                               {{u"Interface"_s, QString()},
                                                {u"Connected"_s, false},
                                                {u"Suspended"_s, false},
                                                {u"Ip4Config"_s, QVariantMap()},
                                                {u"Ip6Config"_s, QVariantMap()},
                                                {u"IpTimeout"_s, 20U},
                                                {u"BearerType"_s, DefaultBearer},
                                                {u"Properties"_s, QVariantMap()}}}};
    EXPECT_TRUE(m_bus.registerVirtualObject(RootPath, this, QDBusConnection::SubPath));
    EXPECT_TRUE(m_bus.registerService(Service));
}

FakeModemManager::~FakeModemManager()
{
    m_bus.unregisterService(Service);
    m_bus.unregisterObject(RootPath, QDBusConnection::UnregisterTree);
}

bool FakeModemManager::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    return connection.send(answer(message));
}

QDBusMessage FakeModemManager::answer(const QDBusMessage &call)
{
    const Interfaces object = m_objects.value(QDBusObjectPath(call.path()));
    const QVariantList arguments = call.arguments();
    const QVariantMap properties = object.value(arguments.value(0).toString());
    if (call.member() == "GetManagedObjects"_L1)
        return call.createReply(QVariant::fromValue(m_objects));
    if (call.member() == "GetAll"_L1)
        return call.createReply(properties);
    if (call.member() == "Get"_L1)
        return call.createReply(QVariant::fromValue(QDBusVariant(properties.value(arguments.value(1).toString()))));
    if (call.interface() == SimpleInterface && call.member() == "Connect"_L1)
        return connectAs(call);
    if (call.interface() == SimpleInterface && call.member() == "Disconnect"_L1)
        loseNetwork();
    return call.createReply(); // to all that is only switched on or off
}

QDBusMessage FakeModemManager::connectAs(const QDBusMessage &call)
{
    const auto wanted = qdbus_cast<QVariantMap>(call.arguments().value(0));
    const QString refusal = m_refused.value(wanted.value(u"apn"_s).toString());
    if (!refusal.isEmpty())
        return call.createErrorReply(refusal, u"refused"_s);
    changeState(Connecting, UserRequested);
    change(BearerPath, BearerInterface,
           {{u"Interface"_s, m_dataInterface}, {u"Connected"_s, true}, {u"Ip4Config"_s, address()}});
    change(ModemPath, ModemInterface, {{u"Bearers"_s, paths({BearerPath})}});
    changeState(Connected, UserRequested);
    return call.createReply(path(BearerPath));
}

void FakeModemManager::loseNetwork()
{
    change(BearerPath, BearerInterface, {{u"Interface"_s, QString()}, {u"Connected"_s, false}});
    change(ModemPath, ModemInterface, {{u"Bearers"_s, paths({})}});
    changeState(Registered, Failure);
}

void FakeModemManager::changeState(int state, uint reason)
{
    const int before = m_objects[QDBusObjectPath(ModemPath)][ModemInterface][u"State"_s].toInt();
    change(ModemPath, ModemInterface, {{u"State"_s, state}});
    QDBusMessage news = QDBusMessage::createSignal(ModemPath, ModemInterface, u"StateChanged"_s);
    news.setArguments({before, state, reason});
    m_bus.send(news);
}

void FakeModemManager::change(const QString &path, const QString &interface, const QVariantMap &values)
{
    QVariantMap &properties = m_objects[QDBusObjectPath(path)][interface];
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        properties[value.key()] = value.value();
    QDBusMessage news = QDBusMessage::createSignal(path, PropertiesInterface, u"PropertiesChanged"_s);
    news.setArguments({interface, values, QStringList()});
    m_bus.send(news);
}
