// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Links.h"

#include "BusNames.h"

#include <QtDBus/QDBusServiceWatcher>

#include <algorithm>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr int NoLink = -1;

LinkInfo infoOf(const Link &link)
{
    return {link.profileName(), link.interfaceName()};
}

} // namespace

Links::Links(const NetworkService &service, std::chrono::milliseconds patience)
    : m_service(service), m_deactivations(service, patience)
{
    connect(&m_deactivations, &Deactivations::activationsArrived, this, &Links::startWaiting);
    connect(
        this, &Links::closedWhileOpening, this, [this](int id) { Q_EMIT openFailed(id, OpenError::Closed, 0); },
        Qt::QueuedConnection);
    listen();
}

Links::~Links()
{
    while (!m_links.empty())
        release(*take(m_links.begin()->first));
}

void Links::listen()
{
    // From any object and sender, before anything is activated: so nothing is missed and nothing subscribed per link.
    // Each link checks that what it believes comes from its service.
    QDBusConnection bus = m_service.bus();
    bus.connect(QString(), QString(), bus::ActiveInterface, bus::StateChanged, this,
                SLOT(onActiveConnectionChanged(QDBusMessage)));
    bus.connect(QString(), QString(), bus::DeviceInterface, bus::StateChanged, this,
                SLOT(onDeviceChanged(QDBusMessage)));
    bus.connect(QString(), bus::LocalPath, bus::LocalInterface, u"Disconnected"_s, this, SLOT(onBusLost()));

    auto *watcher = new QDBusServiceWatcher(m_service.name(), bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this](const QString &, const QString &before) {
        for (const auto &[id, entry] : m_links) {
            if (!before.isEmpty())
                entry.link->serviceLeft(before);
        }
    });
}

int Links::open(const QString &profileName)
{
    if (m_lastId == std::numeric_limits<int>::max())
        return NoLink;
    const int id = ++m_lastId;
    auto link = std::make_unique<Link>(m_service, m_deactivations, profileName, timeLimit);
    follow(id, *link);
    m_links[id].link = std::move(link);
    startWaiting();
    return id;
}

/// What a link says is heard later, on a stack that holds nothing of it.
void Links::follow(int id, Link &link)
{
    constexpr Qt::ConnectionType Later = Qt::QueuedConnection;
    connect(&link, &Link::resolved, this, &Links::startWaiting, Later);
    connect(
        &link, &Link::opened, this, [this, id] { tellOpened(id); }, Later);
    connect(
        &link, &Link::lost, this, [this, id] { tellLost(id); }, Later);
    connect(
        &link, &Link::failed, this,
        [this, id](OpenError error, unsigned short detail) { tellFailed(id, error, detail); }, Later);
}

void Links::close(int id)
{
    const auto found = m_links.find(id);
    if (found == m_links.end())
        return;
    const bool isWaitedFor = !found->second.isTold;
    release(*take(id));
    startWaiting();
    if (isWaitedFor)
        Q_EMIT closedWhileOpening(id);
}

const Link *Links::openLink(int id) const
{
    const auto found = m_links.find(id);
    return found != m_links.end() && found->second.isTold ? found->second.link.get() : nullptr;
}

void Links::tellOpened(int id)
{
    const auto found = m_links.find(id);
    if (found == m_links.end())
        return;
    found->second.isTold = true;
    LinkInfo info = infoOf(*found->second.link);
    Q_EMIT connected(id, info);
}

void Links::tellFailed(int id, unsigned short error, unsigned short detail)
{
    std::unique_ptr<Link> link = take(id);
    if (!link)
        return;
    release(*link);
    link.reset();
    startWaiting();
    Q_EMIT openFailed(id, error, detail);
}

void Links::tellLost(int id)
{
    std::unique_ptr<Link> link = take(id);
    if (!link)
        return;
    LinkInfo info = infoOf(*link);
    link.reset();
    startWaiting();
    Q_EMIT broken(id, info);
}

/// Forgets the link \a id; null when there is none.
std::unique_ptr<Link> Links::take(int id)
{
    const auto found = m_links.find(id);
    if (found == m_links.end())
        return nullptr;
    std::unique_ptr<Link> link = std::move(found->second.link);
    m_links.erase(found);
    return link;
}

/// Undoes what a link that was taken out has done, unless another link has a use for it.
void Links::release(Link &link)
{
    if (auto activation = link.takePendingActivation())
        m_deactivations.deactivateOnceActive(std::move(activation));
    if (link.ownsActivation()) {
        const auto heir = std::find_if(m_links.begin(), m_links.end(), [&link](const auto &other) {
            return other.second.link->activeConnection() == link.activeConnection();
        });
        if (heir != m_links.end())
            heir->second.link->takeOwnership();
        else
            m_deactivations.deactivate(link.activeConnection());
    }
}

void Links::startWaiting()
{
    for (const auto &[id, entry] : m_links) {
        if (!entry.link->isStarted() && mayStart(id, *entry.link))
            entry.link->start();
    }
}

/// A profile is looked for by one link at a time, and not while an activation that was given up is still to come up and
/// go down: each must see what the one before it has brought up.
bool Links::mayStart(int id, const Link &link) const
{
    if (m_deactivations.isExpectingActivations())
        return false;
    return std::none_of(m_links.begin(), m_links.find(id), [&link](const auto &other) {
        return other.second.link->isResolving() && other.second.link->profileName() == link.profileName();
    });
}

void Links::onActiveConnectionChanged(const QDBusMessage &signal)
{
    if (signal.signature() != "uu"_L1)
        return;
    const uint state = signal.arguments().at(0).toUInt();
    for (const auto &[id, entry] : m_links)
        entry.link->activeConnectionChanged(signal.service(), signal.path(), state);
}

void Links::onDeviceChanged(const QDBusMessage &signal)
{
    if (signal.signature() != "uuu"_L1)
        return;
    const uint state = signal.arguments().at(0).toUInt();
    const uint reason = signal.arguments().at(2).toUInt();
    for (const auto &[id, entry] : m_links)
        entry.link->deviceChanged(signal.service(), signal.path(), state, reason);
}

void Links::onBusLost()
{
    for (const auto &[id, entry] : m_links)
        entry.link->busLost();
}

} // namespace marvola
