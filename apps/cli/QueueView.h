// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_QUEUEVIEW_H
#define MARVOLA_CLI_QUEUEVIEW_H

#include "ExitStatus.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

class MP_MyLibrary;

/// The list being played, as the terminal shows it and leaves it to the next run.
namespace marvola {

class Session;

struct QueueView
{
    QString name; ///< of the playlist that it is from; empty for none
    QStringList items;
    int active = -1; ///< the index of the active item; -1 for none
    bool shuffle = false;
    bool repeat = false;
};

/// The list as it stands. To be asked before the lists are stored: with shuffle on, storing moves the cursor.
QueueView queueOf(const MP_MyLibrary &library);

/// Prints all of it, for people or as JSON.
void printQueue(Session &session, const QueueView &queue);

/// Stores settings and lists, and makes sure that the list is in the file. Prints the list as JSON, or has \a print
/// tell people what there is to tell.
[[nodiscard]] ExitStatus keepQueue(Session &session, const std::function<void(const QueueView &)> &print);

/// The same without anything to tell people.
[[nodiscard]] ExitStatus keepQueueQuietly(Session &session);

} // namespace marvola

#endif
