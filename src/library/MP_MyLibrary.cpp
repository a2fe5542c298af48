// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/State.h"

#include "platform/FileNames.h"

MP_MyLibrary::State::State(PlayerEngine *playerEngine, std::function<void(quint8)> progress)
    : engine(playerEngine)
    , places{qEnvironmentVariable("TROVE_DATA_PATH"), qEnvironmentVariable("CARD1_MOUNT_PATH"),
             qEnvironmentVariable("CARD2_MOUNT_PATH"), qEnvironmentVariable("JUV_APP_WRITE_PATH")}
    , settingsFile(marvola::joinPath(places.writePath, marvola::SettingsFileName))
    , refresh(std::move(progress))
{
}

MP_MyLibrary::MP_MyLibrary(PlayerEngine *engine)
    : d(new State(engine, [this](quint8 percent) { Q_EMIT refreshContinue(percent); }))
{
    restoreConfig();
    d->makeConnection(*this);
}

MP_MyLibrary::~MP_MyLibrary()
{
    // First, while all of the object is there: calls that were queued to receivers are delivered meanwhile.
    d->refresh.stopReporting();
    d->connection->close();
}
