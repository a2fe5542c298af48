// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef COMMANDS_H
#define COMMANDS_H

#include <marvola/MP_MyLibrary.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <functional>

/// One thing that the user can type.
struct Command
{
    const char *word;
    const char *takes; ///< what stands behind the word; empty for nothing
    const char *help;
    std::function<void(MP_MyLibrary &library, const QString &text)> run;
};

/// The commands of one screen of a player.
struct ScreenCommands
{
    const char *title;
    QList<Command> commands;
};

/// Every screen with all that it asks of the library.
QList<ScreenCommands> allScreens();

void say(const QString &line);

#endif
