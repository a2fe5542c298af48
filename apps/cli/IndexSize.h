// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_INDEXSIZE_H
#define MARVOLA_CLI_INDEXSIZE_H

#include <QtCore/QString>

namespace marvola {

/// How full the library's info file is.
struct IndexSize
{
    int records = 0;
    qint64 bytesUsed = 0;     ///< from the file's start to the end of its last record
    qint64 bytesReserved = 0; ///< the file's size

    /// No record is begun behind this byte, so that the last one still fits in the reservation.
    static constexpr qint64 LastRecordStart = 148499;

    bool isFull() const { return bytesUsed > LastRecordStart; }
};

/// The info file in \a workDirectory.
QString infoFileIn(const QString &workDirectory);

/// Measures the info file in \a workDirectory; a missing one is of size 0, and a record cut off by the file's end ends
/// the count.
IndexSize measureIndex(const QString &workDirectory);

} // namespace marvola

#endif
