// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_APPS_CLI_WAVEFILE_H
#define MARVOLA_TESTS_APPS_CLI_WAVEFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// What a wave file says about itself.
struct WaveTags
{
    QString artist;
    QString album;
    QString genre;
};

/// A short wave file of silence with \a tags.
QByteArray waveFile(const WaveTags &tags = {});

#endif
