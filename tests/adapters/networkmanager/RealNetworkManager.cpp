// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "RealNetworkManager.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QProcessEnvironment>
#include <QtCore/QStandardPaths>
#include <QtCore/qtestsupport_core.h>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int StartMs = 20000;

QString program(const QString &name)
{
    return QStandardPaths::findExecutable(name, {u"/usr/sbin"_s, u"/sbin"_s, u"/usr/bin"_s, u"/bin"_s});
}

QString outputOf(const QString &path, const QStringList &arguments, const QProcessEnvironment &environment = {})
{
    QProcess process;
    if (!environment.isEmpty())
        process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(path, arguments);
    EXPECT_TRUE(process.waitForFinished()) << qPrintable(path);
    return QString::fromLocal8Bit(process.readAll()).trimmed();
}

QStringList insideOf(const QProcess &keeper, const QStringList &command)
{
    return QStringList{u"--net"_s, u"--mount"_s, u"--target"_s, QString::number(keeper.processId()), u"--"_s} + command;
}

/// What every process must find in its own mounts: a place for run-time files, the daemon's state, and a /sys that
/// cannot be written, from which the daemon concludes that no udev is there to wait for.
constexpr auto PrivateMounts = "mount --make-rprivate / && mount -t tmpfs none /run && mkdir /run/NetworkManager && "
                               "mount -t tmpfs none /var/lib && mkdir /var/lib/NetworkManager && "
                               "mount -t sysfs -o ro none /sys"_L1;
constexpr auto Devices = "ip link set lo up && ip link add link0 type veth peer name peer0 && ip link set peer0 up && "
                         "ip link add wwan0 type veth peer name operator0 && ip link set operator0 up"_L1;

} // namespace

QString RealNetworkManager::obstacle()
{
    for (const QString &needed : {u"NetworkManager"_s, u"nmcli"_s, u"ip"_s, u"unshare"_s, u"nsenter"_s}) {
        if (program(needed).isEmpty())
            return needed + u" is not installed"_s;
    }
    if (::geteuid() != 0)
        return u"only root may make network namespaces"_s;
    const QString refused = outputOf(program(u"unshare"_s),
                                     {u"--net"_s, u"--mount"_s, u"sh"_s, u"-c"_s, PrivateMounts + " && "_L1 + Devices});
    return refused.isEmpty() ? QString() : u"this kernel forbids network namespaces: "_s + refused;
}

RealNetworkManager::RealNetworkManager(const PrivateBus &bus) : m_bus(bus)
{
    EXPECT_TRUE(m_dir.isValid());
    addConfiguration();
    addProfiles();
    makeNamespace();
    start();
}

RealNetworkManager::~RealNetworkManager()
{
    kill();
    m_keeper.kill();
    m_keeper.waitForFinished();
}

void RealNetworkManager::addProfile(const QString &fileName, const QByteArray &content) const
{
    QFile file(m_dir.filePath(u"profiles/"_s + fileName + u".nmconnection"_s));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    // It reads no profile that others could.
    EXPECT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
    file.write(content + "[ipv6]\nmethod=disabled\n");
}

void RealNetworkManager::addProfiles() const
{
    EXPECT_TRUE(QDir(m_dir.path()).mkdir(u"profiles"_s));
    const QByteArray onLink = "type=ethernet\ninterface-name=link0\nautoconnect=false\n[ipv4]\n";
    addProfile(u"stream"_s, "[connection]\nid=Stream Link\nuuid=11111111-1111-4111-8111-111111111111\n" + onLink +
                                "method=manual\naddress1=10.99.0.2/24,10.99.0.1\n");
    addProfile(u"dhcp"_s, "[connection]\nid=No Server\nuuid=22222222-2222-4222-8222-222222222222\n" + onLink +
                              "method=auto\ndhcp-timeout=1\nmay-fail=false\n");
    addProfile(u"waits"_s, "[connection]\nid=Waits\nuuid=33333333-3333-4333-8333-333333333333\ntype=bridge\n"
                           "interface-name=bridge0\nautoconnect=false\n[bridge]\nstp=false\n[ipv4]\nmethod=auto\n");
    addProfile(u"gsm"_s, "[connection]\nid=Operator GPRS\nuuid=44444444-4444-4444-8444-444444444444\ntype=gsm\n"
                         "autoconnect=false\n[gsm]\napn=internet\n[ipv4]\nmethod=auto\n");
}

void RealNetworkManager::addConfiguration() const
{
    EXPECT_TRUE(QDir(m_dir.path()).mkdir(u"empty"_s));
    QFile file(m_dir.filePath(u"NetworkManager.conf"_s));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[main]\nplugins=keyfile\ndhcp=internal\ndns=none\nrc-manager=unmanaged\nsystemd-resolved=false\n"
               "auth-polkit=false\nno-auto-default=*\n[connectivity]\nenabled=false\n[keyfile]\npath=" +
               QFile::encodeName(m_dir.filePath(u"profiles"_s)) + "\n");
}

void RealNetworkManager::makeNamespace()
{
    dieWithParent(m_keeper);
    m_keeper.start(program(u"unshare"_s), {u"--net"_s, u"--mount"_s, u"sh"_s, u"-c"_s,
                                           PrivateMounts + " && "_L1 + Devices + " && echo made && exec cat"_L1});
    EXPECT_TRUE(m_keeper.waitForStarted());
    while (!m_keeper.canReadLine() && m_keeper.waitForReadyRead(StartMs))
        continue;
    EXPECT_EQ(m_keeper.readLine(), "made\n") << m_keeper.readAllStandardError().constData();
}

void RealNetworkManager::start()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_bus.address());
    m_daemon.setProcessEnvironment(environment);
    m_daemon.setProcessChannelMode(QProcess::MergedChannels);
    m_daemon.setStandardOutputFile(m_dir.filePath(u"log"_s));
    dieWithParent(m_daemon);
    const QString empty = m_dir.filePath(u"empty"_s);
    m_daemon.start(
        program(u"nsenter"_s),
        insideOf(m_keeper,
                 {program(u"NetworkManager"_s), u"--debug"_s, u"--config="_s + m_dir.filePath(u"NetworkManager.conf"_s),
                  u"--config-dir="_s + empty, u"--system-config-dir="_s + empty,
                  u"--intern-config="_s + m_dir.filePath(u"intern.conf"_s),
                  u"--state-file="_s + m_dir.filePath(u"state"_s), u"--pid-file="_s + m_dir.filePath(u"pid"_s)}));
    EXPECT_TRUE(m_daemon.waitForStarted());
}

bool RealNetworkManager::isReady() const
{
    return QTest::qWaitFor(
        [this] {
            return nmcli({u"-g"_s, u"STATE,DEVICE"_s, u"dev"_s}).contains(u"disconnected:link0"_s);
        },
        StartMs);
}

QString RealNetworkManager::ip(const QString &arguments) const
{
    return outputOf(program(u"nsenter"_s), insideOf(m_keeper, QStringList(program(u"ip"_s)) + arguments.split(u' ')));
}

QString RealNetworkManager::nmcli(const QStringList &arguments) const
{
    return run(program(u"nmcli"_s), arguments);
}

bool RealNetworkManager::isUp(const QString &id) const
{
    return nmcli({u"-g"_s, u"NAME"_s, u"con"_s, u"show"_s, u"--active"_s}).split(u'\n').contains(id);
}

QString RealNetworkManager::run(const QString &what, const QStringList &arguments) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_bus.address());
    environment.insert(u"LC_ALL"_s, u"C"_s);
    return outputOf(what, arguments, environment);
}

void RealNetworkManager::kill()
{
    m_daemon.kill();
    m_daemon.waitForFinished();
}

QByteArray RealNetworkManager::log() const
{
    QFile file(m_dir.filePath(u"log"_s));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
