// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_SAFEFILE_H
#define MARVOLA_PLATFORM_SAFEFILE_H

#include "platform/DirectoryLock.h"
#include "platform/PlacedFile.h"
#include "platform/TextFrame.h"

#include <functional>
#include <optional>
#include <utility>

namespace marvola {

/// The one way in which text files are saved: all or nothing, killed or powered off at any instant, on a full medium
/// too. docs/reliability.md tells the protocol and the reason for each step.
///
/// What goes into a file is made by a function that gets what is on disk by then, so that changes by others are never
/// overwritten unseen.
class SafeFile
{
public:
    /// Puts what the file shall hold, given what it holds \a now, behind what \a file holds already;
    /// false refuses the commit.
    using Merge = std::function<bool(const TextFrame &now, QByteArray &file)>;

    /// How a new version gets into the file's place where both ways are open.
    enum class Way {
        AsFilesystem, ///< by a second copy where renames are safe, else in place
        InPlace
    };

    /// An empty path is a file that is missing and cannot be written. One that is known to be in a folder is not
    /// written while its path leads to another one.
    explicit SafeFile(const PlacedFile &file, Way way = Way::AsFilesystem);

    /// What is on disk, after looking after what a crash has left. Blank when it is missing or cannot be read.
    TextFrame read() const;

    /// Whether the last read() found a file that it could not read. What is made of such a reading knows nothing of the
    /// file, so that commits are refused until a read() succeeds.
    bool isUnread() const { return m_isUnread; }

    /// Whether a commit has a chance; makes nothing to find out.
    bool isWritable() const;

    /// Replaces the content by what \a merge makes of it; the file keeps at least its length. Nothing is written when
    /// the content stays the same. Where the file is as \a known, what an earlier call gave, that is what \a merge
    /// gets, with the very same bytes.
    /// \return the file as it is now; nothing when it could not be committed. The file is then as it was, unless only
    /// the last step failed, which makes the finished change durable: it is then done but not known to outlive a power
    /// cut, and a further commit() of the file by this process makes good for it.
    [[nodiscard]] std::optional<TextFrame> commit(const Merge &merge, const TextFrame *known = nullptr);

    /// Keeps all others from committing until this object goes, waiting for those that are at it.
    /// \return false when there is no such lock to be had
    [[nodiscard]] bool lock();

private:
    struct Found;
    enum class Tidying { Allowed, Forbidden };

    void locate() const;
    TextFrame readNow() const;
    Found lookAround(Tidying tidying, const TextFrame *known = nullptr) const;
    Found takeLeftover(TextFrame leftover, bool mainIsWorthKeeping, Tidying tidying) const;
    std::optional<TextFrame> write(const TextFrame &now, TextFrame next);
    bool isSafeOnlyInPlace(const TextFrame &now) const;
    bool beginInFolder();
    bool isFolderThere() const;
    bool replaceByLeftover();
    std::pair<FileId, QByteArray> nameInFolder() const;
    [[nodiscard]] bool syncCommitted() const;

    QByteArray m_path;
    Way m_way;
    mutable QByteArray m_target;   ///< what m_path links to
    mutable QByteArray m_folder;   ///< where that lies
    mutable QByteArray m_leftover; ///< the name of a new copy until it is complete
    mutable bool m_isUnread = false;
    PlacedFile m_place; ///< with the only folder that the file may be written in, if it is bound to one
    /// Which folder that was when a commit, or a lock, began.
    std::optional<FileId> m_folderId;
    DirectoryLock m_lock;
};

} // namespace marvola

#endif
