// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_LOOKAHEAD_H
#define MARVOLA_SCAN_LOOKAHEAD_H

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <chrono>
#include <functional>

namespace marvola {

/// Tells the kernel which files will be read soon, so that the medium works while the engine does. Only while files
/// are slow to describe: what is in memory already needs no hints, and costs none.
class LookAhead
{
public:
    using Hint = std::function<void(const QByteArray &path)>;

    /// What is in memory is waited for less long.
    static constexpr std::chrono::microseconds SlowFile{400};
    /// Hints reach so many files ahead.
    static constexpr qsizetype Reach = 8;
    /// So many files after a slow one are hinted at, for with hints even a slow medium has quick files.
    static constexpr qsizetype Patience = 32;

    /// \a files must outlive the object. At most \a count of them are going to be described.
    LookAhead(const QStringList &files, qsizetype count, Hint hint = hintAt);

    /// To be called when the next file of the list has been described, for which the thread has \a waited.
    void described(std::chrono::nanoseconds waited);

    /// How long this thread has not been running, counted from any point; for differences.
    static std::chrono::nanoseconds waitedSoFar();

    /// Has the kernel read the first and the last bytes of the regular file at \a path ahead. Anything else is not
    /// opened, nothing is waited for, and what does not work is left out.
    static void hintAt(const QByteArray &path);

private:
    const QStringList &m_files;
    qsizetype m_count;
    Hint m_hint;
    qsizetype m_next = 0;   ///< the file to be described next
    qsizetype m_hinted = 0; ///< behind the last file that a hint was given for
    qsizetype m_end = 0;    ///< behind the last file that is to get one
};

} // namespace marvola

#endif
