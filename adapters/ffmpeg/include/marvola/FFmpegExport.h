// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEGEXPORT_H
#define MARVOLA_FFMPEGEXPORT_H

#include <QtCore/qglobal.h>

/// Marks what the engine's shared library exports; everything else is hidden.
#if defined(MARVOLA_FFMPEG_BUILDING)
#    define MARVOLA_FFMPEG_EXPORT Q_DECL_EXPORT
#else
#    define MARVOLA_FFMPEG_EXPORT Q_DECL_IMPORT
#endif

#endif
