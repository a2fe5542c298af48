// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKMANAGEREXPORT_H
#define MARVOLA_NETWORKMANAGEREXPORT_H

#include <QtCore/qglobal.h>

/// Marks what the link service's shared library exports; everything else is hidden.
#if defined(MARVOLA_NETWORKMANAGER_BUILDING)
#    define MARVOLA_NETWORKMANAGER_EXPORT Q_DECL_EXPORT
#else
#    define MARVOLA_NETWORKMANAGER_EXPORT Q_DECL_IMPORT
#endif

#endif
