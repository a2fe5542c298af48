// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/State.h"

using marvola::LinkEvent;

void MP_MyLibrary::State::makeConnection(MP_MyLibrary &library)
{
    const marvola::LinkOwner owner = {
        [&library](marvola::LinkStatus status) { Q_EMIT library.dataConnectionStatus(static_cast<int>(status)); },
        [&library](const QString &name) { library.setProfileName(name); }};
    connection = std::make_shared<marvola::DataConnection>(
        std::unique_ptr<DataSessionManager>(DataSessionManager::create()), owner);
    const DataSessionManager *manager = &connection->manager();
    connect(manager, &DataSessionManager::connected, &library, &MP_MyLibrary::onSlotLinkConnected);
    connect(manager, &DataSessionManager::openFailed, &library, &MP_MyLibrary::onSlotLinkOpenFailed);
    connect(manager, &DataSessionManager::broken, &library, &MP_MyLibrary::onSlotLinkBroken);
}

bool MP_MyLibrary::setupConnection()
{
    // A copy of the name goes in, because this object may be gone before the call ends.
    return d->connection->setUp(getProfileName());
}

void MP_MyLibrary::onSlotLinkConnected(int id, LinkInfo &)
{
    d->connection->handle(LinkEvent::Connected, id);
}

void MP_MyLibrary::onSlotLinkOpenFailed(int id, unsigned short, unsigned short)
{
    d->connection->handle(LinkEvent::OpenFailed, id);
}

void MP_MyLibrary::onSlotLinkBroken(int id, LinkInfo &)
{
    d->connection->handle(LinkEvent::Broken, id);
}
