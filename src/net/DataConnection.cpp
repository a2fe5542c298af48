// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "net/DataConnection.h"

#include <utility>

namespace marvola {

DataConnection::DataConnection(std::unique_ptr<DataSessionManager> manager) : m_manager(std::move(manager))
{
    m_manager->init(false);
}

DataConnection::~DataConnection()
{
    // Forgotten first, so that an event which closing brings about is not taken for a broken link.
    const int id = std::exchange(m_linkId, NoLink);
    // Deliberate: a link with the id 0 counts as one that failed to open, so there is nothing to close.
    if (id > 0)
        m_manager->closeLink(id);
}

void DataConnection::startOpening(const QString &profileName)
{
    m_waiting = true;
    m_linkId = m_manager->openLink(profileName);
}

void DataConnection::linkConnected(int id)
{
    if (isLink(id))
        m_waiting = false;
}

void DataConnection::linkOpenFailed(int id)
{
    if (!isLink(id))
        return;
    m_waiting = false;
    forgetLink();
}

} // namespace marvola
