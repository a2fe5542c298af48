// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/SafeFile.h"

#include "platform/DiskFile.h"
#include "platform/InPlaceCommit.h"

#include <QtCore/QFile>

#include <cerrno>
#include <cstdio>
#include <mutex>
#include <set>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace marvola {

namespace {

constexpr const char LeftoverSuffix[] = ".new";
constexpr const char DamagedSuffix[] = ".damaged";
constexpr int MaxDamagedCopies = 100;

/// Errors that say that a second copy cannot be made here, while the file itself may well be written.
bool isForWantOfRoom(int error)
{
    switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
    case EACCES:
    case EPERM:
    case EEXIST:
    case ENAMETOOLONG:
        return true;
    default:
        return false;
    }
}

/// Moves a file that cannot be read to a free name beside it, so that what is in it is not lost.
bool setAside(const QByteArray &path)
{
    for (int copy = 0; copy < MaxDamagedCopies; ++copy) {
        const QByteArray number = copy == 0 ? QByteArray() : QByteArray::number(copy);
        const QByteArray aside = path + DamagedSuffix + number;
        if (isNameFree(aside))
            return ::rename(path.constData(), aside.constData()) == 0;
    }
    return false;
}

/// Whether a new copy that a crash has left may be better than the file that it was to replace.
bool mayBeReplaced(const TextFrame &mainText)
{
    if (mainText.isWhole())
        return false;
    // Text of others was put there after the crash. Nobody writes NULs into a text; lost sectors read so.
    const bool isForeignText =
        mainText.state() == TextFrame::State::Unsealed && !mainText.hasSealLine() && !mainText.content().contains('\0');
    return !(isForeignText && QByteArrayView(mainText.bytes()).isValidUtf8());
}

/// Whether such a copy is complete, and better.
bool isBetter(const TextFrame &leftover, const DiskFile &main, const TextFrame &mainText)
{
    // The very file that the copy was made from is intact, whatever it looks like.
    const bool isIntact = main.outcome == DiskFile::Outcome::Read && leftover.seal().replaced == mainText.identity();
    return leftover.state() == TextFrame::State::Sealed && mayBeReplaced(mainText) && !isIntact;
}

/// The files whose last commit is done but for making it durable, whichever object of the process made it.
class OwedSyncs
{
public:
    static OwedSyncs &instance()
    {
        static auto &all = *new OwedSyncs; // a worker may outlive main()
        return all;
    }
    /// A folder, and a name in it: the same however the folder was reached.
    using Name = std::pair<FileId, QByteArray>;

    bool has(const Name &name)
    {
        const std::lock_guard lock(m_mutex);
        return m_names.find(name) != m_names.end();
    }
    void set(const Name &name, bool isOwed)
    {
        const std::lock_guard lock(m_mutex);
        if (isOwed)
            m_names.insert(name);
        else
            m_names.erase(name);
    }

private:
    std::mutex m_mutex;
    std::set<Name> m_names;
};

} // namespace

struct SafeFile::Found
{
    TextFrame text;
    bool isReplaceable = false; ///< a commit would lose nothing that could not be read
    bool isRead = false;        ///< the text is what is on disk
};

SafeFile::SafeFile(const PlacedFile &file, Way way) : m_way(way), m_place(file)
{
    // A NUL would end the name early, and make it the name of another file.
    if (!file.path().contains(QChar(u'\0')))
        m_path = QFile::encodeName(file.path());
}

/// Anew for each operation, because links change. A link stays a link: its target is what is replaced.
void SafeFile::locate() const
{
    m_target = resolvedPath(m_path);
    m_folder = directoryOf(m_target);
    m_leftover = m_target + LeftoverSuffix;
}

TextFrame SafeFile::read() const
{
    m_isUnread = false;
    return m_path.isEmpty() ? TextFrame() : readNow();
}

TextFrame SafeFile::readNow() const
{
    locate();
    // Looked at before the file: a copy that takes the file's place in between would be seen in neither.
    const bool isAlone = isNameFree(m_leftover);
    DiskFile main = readDiskFile(m_target, TextFrame::MaxFileSize);
    m_isUnread = main.outcome == DiskFile::Outcome::Refused;
    if (m_isUnread)
        return {};
    const bool isDamaged = main.outcome == DiskFile::Outcome::Damaged;
    TextFrame text(std::move(main.bytes));
    const bool isCertain = text.isWhole() || (text.bytes().isEmpty() && !isDamaged);
    if (isCertain && isAlone)
        return text;
    // A commit may be under way. Whole text needs no waiting for it; other text may be half of it.
    using Patience = DirectoryLock::Patience;
    const DirectoryLock lock =
        m_lock.isHeld() ? m_lock : DirectoryLock(m_folder, text.isWhole() ? Patience::DoNotWait : Patience::Wait);
    if (text.isWhole() && !lock.isHeld())
        return text;
    m_isUnread = lock.isHeldByAnother();
    if (m_isUnread)
        return {};
    Found found = lookAround(lock.isHeld() ? Tidying::Allowed : Tidying::Forbidden);
    m_isUnread = !found.isRead;
    return std::move(found.text);
}

bool SafeFile::isWritable() const
{
    return !m_path.isEmpty() && !m_isUnread && isDiskWritable(resolvedPath(m_path), TextFrame::MaxFileSize);
}

/// What is on disk while nobody else commits: decides between the file and what a crash has left beside it.
SafeFile::Found SafeFile::lookAround(Tidying tidying, const TextFrame *known) const
{
    DiskFile main = readDiskFile(m_target, TextFrame::MaxFileSize);
    if (main.outcome == DiskFile::Outcome::Refused)
        return {};
    // What was checked once need not be checked again.
    const bool isKnown = known && known->state() == TextFrame::State::Sealed && known->bytes() == main.bytes;
    const TextFrame text = isKnown ? *known : TextFrame(std::exchange(main.bytes, {}));
    const bool isDamaged = main.outcome == DiskFile::Outcome::Damaged;
    DiskFile copy = readDiskFile(m_leftover, TextFrame::MaxFileSize);
    if (copy.outcome == DiskFile::Outcome::Missing)
        return {text, !isDamaged, !isDamaged};
    // A copy that does not give its bytes now may be all that there is.
    const bool isCopyKnown = copy.outcome == DiskFile::Outcome::Read || isNoFile(m_leftover);
    if (!isCopyKnown && mayBeReplaced(text))
        return {};
    TextFrame leftover(std::move(copy.bytes));
    if (isBetter(leftover, main, text))
        return takeLeftover(std::move(leftover), isDamaged || text.state() == TextFrame::State::Unsealed, tidying);
    if (tidying == Tidying::Allowed)
        ::unlink(m_leftover.constData());
    return {text, !isDamaged, !isDamaged};
}

/// Puts the leftover in the file's place; where that cannot be done it is only read.
SafeFile::Found SafeFile::takeLeftover(TextFrame leftover, bool mainIsWorthKeeping, Tidying tidying) const
{
    const bool isInPlace = tidying == Tidying::Allowed && (!mainIsWorthKeeping || setAside(m_target)) &&
                           ::rename(m_leftover.constData(), m_target.constData()) == 0 && syncRenamed(m_target);
    return {std::move(leftover), isInPlace, true};
}

std::optional<TextFrame> SafeFile::commit(const Merge &merge, const TextFrame *known)
{
    if (m_path.isEmpty() || m_isUnread)
        return std::nullopt;
    locate();
    if (!m_lock.isHeld() && !beginInFolder())
        return std::nullopt;
    // Where there are no locks a commit goes on without.
    const DirectoryLock lock = m_lock.isHeld() ? m_lock : DirectoryLock(m_folder, DirectoryLock::Patience::Wait);
    if (lock.isHeldByAnother() || !isFolderThere())
        return std::nullopt;
    const Found found = lookAround(Tidying::Allowed, known);
    if (!found.isReplaceable)
        return std::nullopt;

    const TextFrame &now = found.text;
    QByteArray file(TextSeal::Size, '\n');
    if (!merge(now, file) || file.size() > TextFrame::MaxFileSize)
        return std::nullopt;
    if (QByteArrayView(file).sliced(TextSeal::Size) != now.content()) {
        auto written = write(now, TextFrame::sealed(std::move(file), now.identity(), now.bytes().size()));
        return isFolderThere() ? std::move(written) : std::nullopt;
    }
    if (OwedSyncs::instance().has(nameInFolder()) && !syncCommitted())
        return std::nullopt;
    return now;
}

std::optional<TextFrame> SafeFile::write(const TextFrame &now, TextFrame next)
{
    if (isSafeOnlyInPlace(now))
        return commitInPlace(m_target, now, next, Growth::Allowed);
    const int error = createDiskFile(m_leftover, next.bytes(), m_target);
    if (error == 0)
        return replaceByLeftover() ? std::optional(std::move(next)) : std::nullopt;
    if (isForWantOfRoom(error))
        return commitInPlace(m_target, now, next, Growth::Forbidden);
    return std::nullopt;
}

/// When a card is pulled meanwhile, the path leads to what lies under it, which is hidden once the card is back. What
/// went there is not saved.
bool SafeFile::isFolderThere() const
{
    return !m_folderId || folderIdOf(m_folder) == m_folderId;
}

/// Notes which folder the file is in, after making it where the file may be in any.
bool SafeFile::beginInFolder()
{
    const auto ownFolder = m_place.folder();
    m_folderId = ownFolder ? ownFolder : folderIdOf(m_folder);
    return ownFolder ? isFolderThere() : makeDirectories(m_folder);
}

/// A file of no bytes, or none, has nothing to lose in a rename.
bool SafeFile::isSafeOnlyInPlace(const TextFrame &now) const
{
    return !now.bytes().isEmpty() && (m_way == Way::InPlace || hasFragileRenames(m_folder));
}

bool SafeFile::replaceByLeftover()
{
    if (::rename(m_leftover.constData(), m_target.constData()) != 0) {
        ::unlink(m_leftover.constData());
        return false;
    }
    return syncCommitted();
}

std::pair<FileId, QByteArray> SafeFile::nameInFolder() const
{
    return {m_folderId.value_or(FileId()), m_target.sliced(m_target.lastIndexOf('/') + 1)};
}

bool SafeFile::syncCommitted() const
{
    const bool isDurable = syncRenamed(m_target);
    OwedSyncs::instance().set(nameInFolder(), !isDurable);
    return isDurable;
}

bool SafeFile::lock()
{
    if (m_path.isEmpty() || m_lock.isHeld())
        return m_lock.isHeld();
    locate();
    if (beginInFolder())
        m_lock = DirectoryLock(m_folder, DirectoryLock::Patience::Wait);
    return m_lock.isHeld();
}

} // namespace marvola
