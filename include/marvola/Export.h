// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_EXPORT_H
#define MARVOLA_EXPORT_H

#include <QtCore/qglobal.h>

/// Marks what the shared library exports; everything else is hidden.
#if defined(MARVOLA_BUILDING)
#    define MARVOLA_EXPORT Q_DECL_EXPORT
#else
#    define MARVOLA_EXPORT Q_DECL_IMPORT
#endif

#endif
