// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/State.h"

#include "platform/FileNames.h"

#include <marvola/DataSessionManager.h>

MP_MyLibrary::MP_MyLibrary(PlayerEngine *engine)
    : d(new State{engine,
                  {qEnvironmentVariable("TROVE_DATA_PATH"), qEnvironmentVariable("CARD1_MOUNT_PATH"),
                   qEnvironmentVariable("CARD2_MOUNT_PATH"), qEnvironmentVariable("JUV_APP_WRITE_PATH")},
                  {},
                  {},
                  {},
                  marvola::LibraryRefresh([this](quint8 percent) { Q_EMIT refreshContinue(percent); }),
                  {},
                  {}})
{
    d->settingsFile = marvola::joinPath(d->places.writePath, marvola::SettingsFileName);
    restoreConfig();
    d->connection =
        std::make_unique<marvola::DataConnection>(std::unique_ptr<DataSessionManager>(DataSessionManager::create()));
    DataSessionManager *manager = &d->connection->manager();
    connect(manager, &DataSessionManager::connected, this, &MP_MyLibrary::onSlotLinkConnected);
    connect(manager, &DataSessionManager::openFailed, this, &MP_MyLibrary::onSlotLinkOpenFailed);
    connect(manager, &DataSessionManager::broken, this, &MP_MyLibrary::onSlotLinkBroken);
}

MP_MyLibrary::~MP_MyLibrary()
{
    d->connection.reset();
}

void MP_MyLibrary::onSlotLinkConnected(int id, LinkInfo &)
{
    d->connection->linkConnected(id);
}

void MP_MyLibrary::onSlotLinkOpenFailed(int id, unsigned short, unsigned short)
{
    d->connection->linkOpenFailed(id);
}

void MP_MyLibrary::onSlotLinkBroken(int id, LinkInfo &)
{
    if (!d->connection->isLink(id))
        return;
    constexpr int LinkBroken = 4;
    Q_EMIT dataConnectionStatus(LinkBroken);
    d->connection->forgetLink();
}
