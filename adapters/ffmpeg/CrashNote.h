// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_CRASHNOTE_H
#define MARVOLA_FFMPEG_CRASHNOTE_H

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QString>

namespace marvola {

struct FileIdentity;

/// Remembers, across the end of the process, which media file was being read when it died.
///
/// A note file of one page has a slot for each process that reads media just now, and a list of culprits. A process
/// keeps its slot locked; a slot with a note in it that nobody has locked belongs to a process that died over that
/// file, which is a culprit from then on, until its size or a time stamp changes. A file is known by its path, for the
/// numbers that a medium has here differ each time it is put in.
///
/// What is in the note file is foreign data: a record counts only with the right sum, and a file that is none of ours
/// is not written to. Nothing is synced, for a process that dies leaves what it wrote to the system.
class CrashNote
{
public:
    CrashNote() = default;
    ~CrashNote();
    CrashNote(const CrashNote &) = delete;
    CrashNote &operator=(const CrashNote &) = delete;

    /// Opens the note file at \a path, made if need be, and takes over what processes that died left in it; an empty
    /// path closes. \return false when there is no regular file of our own, or no slot in it is free; what is known of
    /// culprits counts all the same.
    [[nodiscard]] bool open(const QString &path);

    /// Whether a process died over this very state of the file at \a path.
    bool isCulprit(const QByteArray &path, const FileIdentity &identity) const;

    /// A text that is another one whenever other files are culprits, or other states of them; empty for none.
    QByteArray fingerprint() const;

    /// Notes that the file is about to be read. One write.
    void begin(const QByteArray &path, const FileIdentity &identity);
    /// Notes that it is not any more. One write.
    void end();

    /// How many processes can read at the same time.
    static constexpr int SlotCount = 8;
    /// How many culprits are remembered; the oldest makes room for a new one.
    static constexpr int CulpritCount = 55;

private:
    void close();
    [[nodiscard]] bool openFile(const QString &path);
    [[nodiscard]] bool lock(int record) const;
    [[nodiscard]] bool lockPatiently(int record) const;
    void unlock(int record) const;
    [[nodiscard]] QByteArray read(int record) const;
    [[nodiscard]] bool write(int record, const QByteArray &bytes) const;
    [[nodiscard]] bool prepare() const;
    void takeOver(bool mayWrite);
    [[nodiscard]] bool remember(const QByteArray &record) const;
    void readCulprits();

    int m_descriptor = -1;
    int m_slot = -1;
    QHash<QByteArray, QByteArray> m_culprits; ///< by path, what their state was
};

} // namespace marvola

#endif
