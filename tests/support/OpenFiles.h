// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_OPENFILES_H
#define MARVOLA_TESTS_SUPPORT_OPENFILES_H

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

/// How many descriptors this process has of the file or folder \a path and of what is in it.
inline int openAt(const QString &path)
{
    const QString place = QFileInfo(path).canonicalFilePath();
    int count = 0;
    if (place.isEmpty())
        return count;
    for (const QFileInfo &open : QDir(QStringLiteral("/proc/self/fd")).entryInfoList(QDir::AllEntries | QDir::System)) {
        const QString target = open.symLinkTarget();
        count += target == place || target.startsWith(place + QLatin1Char('/'));
    }
    return count;
}

#endif
