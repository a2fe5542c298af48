// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_REFRESHPLAN_H
#define MARVOLA_SCAN_REFRESHPLAN_H

#include "platform/PlacedFile.h"

#include <QtCore/QStringList>

class PlayerEngine;

namespace marvola {

/// All that a refresh works on, copied when it starts, so that the worker shares nothing with the caller.
struct RefreshPlan
{
    PlacedFile listFile; ///< empty when there is no work directory
    QString infoFile;    ///< path; empty when there is no work directory
    QString dataPath;
    QString card1Path;
    QString card2Path;
    QStringList searchOrder; ///< names of places
    QString phoneName;       ///< the translated name of the phone's place
    QString memoryCardName;  ///< the translated name of the place that both cards form
    QString unknownText;     ///< stands for a missing artist, album or genre, with its brackets
    quint16 maxMediaFiles = 0;
    PlayerEngine *engine = nullptr; ///< not owned; must outlive the worker
};

} // namespace marvola

#endif
