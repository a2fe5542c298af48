// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "net/DataConnection.h"

#include <marvola/NetworkProfile.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QScopedValueRollback>
#include <QtCore/QThread>

#include <utility>

namespace marvola {

/// Marks that a function of the link service is running, so that the service is not deleted under it.
class DataConnection::ServiceCall
{
public:
    enum class Caller { Connection, Service };

    ServiceCall(DataConnection &connection, Caller caller) : m_connection(connection), m_caller(caller)
    {
        ++m_connection.m_serviceDepth;
    }
    ~ServiceCall()
    {
        if (--m_connection.m_serviceDepth > 0 || !m_connection.m_isClosed)
            return;
        // An event that the service tells of returns into the service.
        if (m_caller == Caller::Service)
            m_connection.m_manager.release()->deleteLater();
        else
            m_connection.m_manager.reset();
    }
    ServiceCall(const ServiceCall &) = delete;
    ServiceCall &operator=(const ServiceCall &) = delete;

private:
    DataConnection &m_connection;
    Caller m_caller;
};

DataConnection::DataConnection(std::unique_ptr<DataSessionManager> manager, LinkOwner owner, QString statusFile,
                               Sleep sleep)
    : m_manager(std::move(manager))
    , m_owner(std::move(owner))
    , m_statusFile(std::move(statusFile))
    , m_sleep(std::move(sleep))
{
    m_manager->init(false);
}

DataConnection::~DataConnection()
{
    close();
}

bool DataConnection::setUp(const QString &profileName)
{
    if (m_linkId >= 0)
        return true;
    if (m_isClosed || m_isInOpenLink || m_callDepth >= MaxCallDepth)
        return false;
    const auto self = shared_from_this();
    const QScopedValueRollback<int> depth(m_callDepth, m_callDepth + 1);
    const bool started = profileName.isEmpty() ? startOpeningWithChosenProfile() : startOpening(profileName);
    if (!started)
        return m_linkId >= 0;
    m_isWaiting = true;
    report(LinkStatus::Opening);
    waitForOutcome();
    return conclude();
}

bool DataConnection::startOpening(const QString &profileName)
{
    // Deliberate: unlike with a chosen profile, a negative id goes on to the wait. A link service may tell of a failure
    // by an event that carries it.
    openLink(profileName);
    return !m_isClosed;
}

bool DataConnection::startOpeningWithChosenProfile()
{
    QString profileName;
    const bool isChosen = selectNetworkProfile(profileName) == 0;
    if (m_isClosed)
        return false;
    if (!profileName.isEmpty())
        m_owner.profileChosen(profileName);
    // Another call may have opened a link while the user was choosing; it must not be lost.
    if (m_linkId >= 0)
        return false;
    m_linkId = NoLink;
    if (isChosen)
        openLink(profileName);
    return m_linkId >= 0;
}

void DataConnection::openLink(const QString &profileName)
{
    const ServiceCall call(*this, ServiceCall::Caller::Connection);
    m_earlyEvents.clear();
    m_isInOpenLink = true;
    const int id = m_manager->openLink(profileName);
    m_isInOpenLink = false;
    if (m_isClosed)
        closeLink(id);
    else
        m_linkId = id;
}

void DataConnection::waitForOutcome()
{
    do {
        handleEarlyEvents();
        QCoreApplication::processEvents();
        if (m_isClosed)
            return;
        m_sleep(PollInterval);
    } while (m_isWaiting);
}

void DataConnection::sleepFor(std::chrono::microseconds time)
{
    QThread::usleep(static_cast<unsigned long>(time.count()));
}

void DataConnection::handleEarlyEvents()
{
    const QList<EarlyEvent> events = std::exchange(m_earlyEvents, {});
    for (const EarlyEvent &early : events)
        apply(early.event, early.id);
}

bool DataConnection::conclude()
{
    // Deliberate: the id 0 is a failure here, though the next call takes it for an open link.
    if (m_linkId > 0) {
        recordInterface();
        return !m_isClosed;
    }
    report(LinkStatus::Failed);
    return false;
}

void DataConnection::recordInterface()
{
    std::optional<LinkStatusFile> file = LinkStatusFile::open(m_statusFile);
    // The link is there, whether or not the streaming player can be told of its interface.
    if (!file)
        return;
    const ServiceCall call(*this, ServiceCall::Caller::Connection);
    QString interfaceName;
    unsigned long unused = 0;
    const bool isKnown = m_manager->getDeviceInfo(m_linkId, interfaceName, &unused) == 0;
    if (!m_isClosed)
        (void)file->write(linkStatusLine(isKnown ? std::optional(interfaceName) : std::nullopt));
}

void DataConnection::handle(LinkEvent event, int id)
{
    if (m_isClosed)
        return;
    const auto self = shared_from_this();
    const ServiceCall call(*this, ServiceCall::Caller::Service);
    if (m_isInOpenLink)
        m_earlyEvents.append({event, id});
    else
        apply(event, id);
}

void DataConnection::apply(LinkEvent event, int id)
{
    if (m_isClosed || id != m_linkId)
        return;
    if (event == LinkEvent::Broken) {
        linkBroken(id);
        return;
    }
    m_isWaiting = false;
    if (event == LinkEvent::OpenFailed)
        m_linkId = NoLink;
}

void DataConnection::linkBroken(int id)
{
    // Deliberate: told before the link is forgotten, so whoever is told still sees the link, and does not open another
    // one from inside the event. A wait goes on.
    report(LinkStatus::Broken);
    if (m_linkId == id)
        m_linkId = NoLink;
}

void DataConnection::report(LinkStatus status) const
{
    if (!m_isClosed)
        m_owner.statusChanged(status);
}

void DataConnection::close()
{
    if (std::exchange(m_isClosed, true))
        return;
    // Forgotten first, so that an event which closing brings about is not taken for a broken link.
    closeLink(std::exchange(m_linkId, NoLink));
    if (m_serviceDepth == 0)
        m_manager.reset();
}

void DataConnection::closeLink(int id)
{
    // Deliberate: a link with the id 0 counts as one that failed to open, so there is nothing to close.
    if (id > 0)
        m_manager->closeLink(id);
}

} // namespace marvola
