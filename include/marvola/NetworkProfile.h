// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKPROFILE_H
#define MARVOLA_NETWORKPROFILE_H

#include <marvola/Export.h>

#include <QtCore/QString>

#include <functional>

/// Lets the user choose a network profile, with the chooser that setNetworkProfileChooser() named.
/// \param profileName receives the name of the chosen profile
/// \return 0 when a profile was chosen, anything else when none was; without a chooser, none is.
MARVOLA_EXPORT int selectNetworkProfile(QString &profileName);

/// Names the function that selectNetworkProfile() asks; an empty function takes it away. It is called on the thread of
/// whoever asks.
MARVOLA_EXPORT void setNetworkProfileChooser(std::function<int(QString &)> chooser);

#endif
