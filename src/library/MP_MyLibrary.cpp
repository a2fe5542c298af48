// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/State.h"

#include "platform/FileNames.h"

MP_MyLibrary::MP_MyLibrary(PlayerEngine *engine)
    : d(new State{engine,
                  {qEnvironmentVariable("TROVE_DATA_PATH"), qEnvironmentVariable("CARD1_MOUNT_PATH"),
                   qEnvironmentVariable("CARD2_MOUNT_PATH"), qEnvironmentVariable("JUV_APP_WRITE_PATH")},
                  {},
                  {},
                  {},
                  marvola::LibraryRefresh([this](quint8 percent) { Q_EMIT refreshContinue(percent); }),
                  {},
                  {},
                  {},
                  {}})
{
    d->settingsFile = marvola::joinPath(d->places.writePath, marvola::SettingsFileName);
    restoreConfig();
    d->makeConnection(*this);
}

MP_MyLibrary::~MP_MyLibrary()
{
    d->connection->close();
}
