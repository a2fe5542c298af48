// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FakeNetworkManager.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QMultiMap>
#include <QtCore/QTimer>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
namespace bus = marvola::bus;

using Settings = QMap<QString, QVariantMap>;

namespace {

constexpr int LeavingMs = 5000;

QVariant pathValue(const QString &path)
{
    return QVariant::fromValue(QDBusObjectPath(path));
}

QVariant pathsValue(const QStringList &paths)
{
    QList<QDBusObjectPath> list;
    for (const QString &path : paths)
        list.append(QDBusObjectPath(path));
    return QVariant::fromValue(list);
}

QString nameOf(const QDBusMessage &call)
{
    const QString member = call.member();
    if (member != "Get"_L1 && member != "GetAll"_L1)
        return member;
    return member + u' ' + call.arguments().constLast().toString().section(u'.', -1);
}

} // namespace

class FakeNetworkManager::Object : public QDBusVirtualObject
{
public:
    explicit Object(const QDBusConnection &onBus) : m_bus(onBus) {}

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &call, const QDBusConnection &) override
    {
        const QString name = nameOf(call);
        if (name == Ping)
            return m_bus.send(call.createReply());
        const bool hasTarget = name.endsWith("ctivateConnection"_L1);
        calls.append(hasTarget ? name + u' ' + call.arguments().value(0).value<QDBusObjectPath>().path() : name);
        if (held.contains(name))
            waiting.insert(name, call);
        else
            send(answerTo(call));
        return true;
    }
    void answerWaiting(const QString &name)
    {
        held.removeAll(name);
        const QList<QDBusMessage> due = waiting.values(name);
        waiting.remove(name);
        for (const QDBusMessage &call : due)
            send(answerTo(call));
    }
    void setState(const QString &active, uint state)
    {
        actives[active][u"State"_s] = state;
        if (state == bus::ActiveDeactivated)
            actives.remove(active);
        tell(active, bus::ActiveInterface, {state, 3U});
    }
    void tell(const QString &path, QLatin1String interface, const QVariantList &arguments) const
    {
        QDBusMessage signal = QDBusMessage::createSignal(path, interface, bus::StateChanged);
        signal.setArguments(arguments);
        m_bus.send(signal);
    }
    QString add(QMap<QString, QVariantMap> &table, const QString &kind, const QVariantMap &properties)
    {
        const QString path = bus::RootPath + u'/' + kind + u'/' + QString::number(++m_lastNumber);
        table[path] = properties;
        return path;
    }
    void leave()
    {
        m_bus.unregisterObject(bus::RootPath, QDBusConnection::UnregisterTree);
        const QString name = m_bus.name();
        m_bus = QDBusConnection(QString()); // the last one to hold it open but for its name
        QDBusConnection::disconnectFromBus(name);
    }

    QMap<QString, QVariantMap> profiles, devices, actives;
    QString device;
    uint beginning = bus::ActiveActivated;
    QMap<QString, Answer> answers;
    QStringList held;
    QMultiMap<QString, QDBusMessage> waiting;
    QStringList calls;

private:
    /// No message means no answer.
    void send(const QDBusMessage &answer) const
    {
        if (answer.type() != QDBusMessage::InvalidMessage)
            m_bus.send(answer);
    }
    QDBusMessage answerTo(const QDBusMessage &call)
    {
        const QString name = nameOf(call);
        if (const Answer answer = answers.value(name))
            return answer(call);
        if (name == "Get Connections"_L1)
            return property(call, pathsValue(profiles.keys()));
        if (name == "Get ActiveConnections"_L1)
            return property(call, pathsValue(actives.keys()));
        if (name == "GetSettings"_L1 && profiles.contains(call.path()))
            return call.createReply(QVariant::fromValue(Settings{{u"connection"_s, profiles.value(call.path())}}));
        if (name == "GetAll Active"_L1 && actives.contains(call.path()))
            return call.createReply(actives.value(call.path()));
        if (name == "GetAll Device"_L1 && devices.contains(call.path()))
            return call.createReply(devices.value(call.path()));
        if (name == "ActivateConnection"_L1)
            return call.createReply(pathValue(begin(call.arguments().at(0).value<QDBusObjectPath>().path())));
        if (name == "DeactivateConnection"_L1) {
            setState(call.arguments().at(0).value<QDBusObjectPath>().path(), bus::ActiveDeactivated);
            return call.createReply();
        }
        return call.createErrorReply(QDBusError::UnknownMethod, u"no such thing"_s);
    }
    static QDBusMessage property(const QDBusMessage &call, const QVariant &value)
    {
        return call.createReply(QVariant::fromValue(QDBusVariant(value)));
    }
    QString begin(const QString &profile)
    {
        return add(actives, u"ActiveConnection"_s,
                   {{u"Connection"_s, pathValue(profile)},
                    {u"State"_s, beginning},
                    {u"Devices"_s, pathsValue(device.isEmpty() ? QStringList() : QStringList(device))}});
    }

    QDBusConnection m_bus;
    int m_lastNumber = 0;
};

FakeNetworkManager::FakeNetworkManager(const PrivateBus &privateBus) : m_observer(privateBus.connect())
{
    qDBusRegisterMetaType<Settings>();
    QDBusConnection connection = privateBus.connect();
    m_object = std::make_unique<Object>(connection);
    m_object->moveToThread(&m_thread);
    m_thread.start();
    run([&] {
        EXPECT_TRUE(connection.registerVirtualObject(bus::RootPath, m_object.get(), QDBusConnection::SubPath));
    });
    EXPECT_TRUE(connection.registerService(bus::Service));
}

FakeNetworkManager::~FakeNetworkManager()
{
    leave();
    m_thread.quit();
    m_thread.wait();
}

void FakeNetworkManager::run(const std::function<void()> &task) const
{
    QMetaObject::invokeMethod(m_object.get(), task, Qt::BlockingQueuedConnection);
}

QString FakeNetworkManager::addProfile(const QString &id, const QString &uuid)
{
    QString path;
    run([&] { path = m_object->add(m_object->profiles, u"Settings"_s, {{u"id"_s, id}, {u"uuid"_s, uuid}}); });
    return path;
}

QString FakeNetworkManager::addDevice(const QString &ipInterface, uint type)
{
    QString path;
    run([&] {
        path =
            m_object->add(m_object->devices, u"Devices"_s,
                          {{u"Interface"_s, u"ttyACM0"_s}, {u"IpInterface"_s, ipInterface}, {u"DeviceType"_s, type}});
    });
    return path;
}

QString FakeNetworkManager::addActive(const QString &profile, uint state, const QString &device)
{
    QString path;
    run([&] {
        path = m_object->add(m_object->actives, u"ActiveConnection"_s,
                             {{u"Connection"_s, pathValue(profile)},
                              {u"State"_s, state},
                              {u"Devices"_s, pathsValue(QStringList(device))}});
    });
    return path;
}

void FakeNetworkManager::activateWith(const QString &device, uint state)
{
    run([&] {
        m_object->device = device;
        m_object->beginning = state;
    });
}

void FakeNetworkManager::setDeviceProperty(const QString &device, const QString &name, const QVariant &value)
{
    run([&] { m_object->devices[device][name] = value; });
}

void FakeNetworkManager::setActiveState(const QString &active, uint state)
{
    run([&] { m_object->setState(active, state); });
}

void FakeNetworkManager::tellDeviceState(const QString &device, uint state, uint reason)
{
    run([&] { m_object->tell(device, bus::DeviceInterface, {state, 70U, reason}); });
}

void FakeNetworkManager::emitSignal(const QString &path, QLatin1String interface, const QVariantList &arguments)
{
    run([&] { m_object->tell(path, interface, arguments); });
}

void FakeNetworkManager::leave()
{
    if (m_hasLeft)
        return;
    m_hasLeft = true;
    run([&] { m_object->leave(); });
    // Qt closes the connection on a thread of its own.
    const QDeadlineTimer deadline(LeavingMs);
    while (m_observer.interface() && m_observer.interface()->isServiceRegistered(bus::Service) &&
           !deadline.hasExpired())
        QThread::msleep(1);
}

void FakeNetworkManager::answer(const QString &call, Answer answer)
{
    run([&] { m_object->answers[call] = std::move(answer); });
}

void FakeNetworkManager::refuse(const QString &call, const QString &errorName)
{
    answer(call, [errorName](const QDBusMessage &message) { return message.createErrorReply(errorName, u"no"_s); });
}

void FakeNetworkManager::hold(const QString &call)
{
    run([&] { m_object->held.append(call); });
}

void FakeNetworkManager::answerHeld(const QString &call)
{
    run([&] { m_object->answerWaiting(call); });
}

void FakeNetworkManager::answerHeldAfter(const QString &call, int ms)
{
    run([&] { QTimer::singleShot(ms, m_object.get(), [this, call] { m_object->answerWaiting(call); }); });
}

QStringList FakeNetworkManager::calls() const
{
    QStringList calls;
    run([&] { calls = m_object->calls; });
    return calls;
}

int FakeNetworkManager::count(const QString &call) const
{
    const QStringList all = calls();
    return static_cast<int>(std::count_if(
        all.begin(), all.end(), [&](const QString &one) { return one == call || one.startsWith(call + u' '); }));
}
