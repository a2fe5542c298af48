// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/InPlaceCommit.h"

#include "platform/DiskFile.h"
#include "platform/FileDescriptor.h"
#include "platform/TextJournal.h"

#include <algorithm>
#include <cstring>

#include <sys/stat.h>

namespace marvola {

namespace {

/// What media write whole or not at all.
constexpr qsizetype SectorSize = 512;

/// Where the journal's line begins so that it ends the file. Its mark lies within one sector: a power cut leaves the
/// whole of it or nothing, never an end of it that reads like an entry.
qsizetype journalStart(qsizetype fileSize, qsizetype lineSize)
{
    const qsizetype start = fileSize - lineSize;
    const qsizetype room = SectorSize - (std::max<qsizetype>(start, 0) % SectorSize);
    return room < TextJournal::Mark.size() ? start - (TextJournal::Mark.size() - room) : start;
}

/// A little more than is needed, so that not every commit makes the file longer.
qsizetype sizeWithRoom(qsizetype textEnd, qsizetype lineSize)
{
    constexpr qsizetype Step = 4096;
    const qsizetype needed = textEnd + 1 + TextJournal::Mark.size() + lineSize;
    return (needed + Step - 1) / Step * Step;
}

bool writeDurably(int fd, qsizetype offset, QByteArrayView bytes)
{
    return writeAllAt(fd, offset, bytes) && ::fdatasync(fd) == 0;
}

bool isFileOfSize(int fd, qsizetype size)
{
    struct stat status = {};
    return ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_size == size;
}

/// An earlier commit may have stopped after its journal: its change is made now, and then the journal is overwritten.
/// So is old text behind a content that became shorter: a new journal tells only what differs from the space that
/// everybody takes to be there.
bool finishEarlierCommit(int fd, const TextFrame &now)
{
    const QByteArrayView bytes = now.bytes();
    const qsizetype end = now.contentEnd();
    return now.state() != TextFrame::State::Journaled ||
           (writeDurably(fd, 0, bytes.first(end)) && writeDurably(fd, end, bytes.sliced(end)));
}

bool makeChange(int fd, const TextJournal &journal, qsizetype oldEnd, qsizetype newEnd)
{
    const QByteArray blank(std::max<qsizetype>(oldEnd - newEnd, 0), '\n');
    return writeAllAt(fd, 0, journal.seal.toLine()) && writeAllAt(fd, journal.offset, journal.changed) &&
           writeDurably(fd, newEnd, blank);
}

} // namespace

std::optional<TextFrame> commitInPlace(const QByteArray &path, const TextFrame &now, const TextFrame &next,
                                       Growth growth)
{
    const TextJournal journal = TextJournal::between(now.bytes(), next.bytes(), next.seal());
    const QByteArray line = journal.toLine();
    const qsizetype textEnd = std::max(now.contentEnd(), next.contentEnd());
    const qsizetype oldSize = now.bytes().size();
    const bool isRoomy = journalStart(oldSize, line.size()) > textEnd;
    const qsizetype size = isRoomy ? oldSize : sizeWithRoom(textEnd, line.size());
    if (!isRoomy && (growth == Growth::Forbidden || size > TextFrame::MaxFileSize))
        return std::nullopt;

    const FileDescriptor file = FileDescriptor::open(path.constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK);
    if (!file.isOpen() || !isFileOfSize(file.get(), oldSize) || !finishEarlierCommit(file.get(), now) ||
        !growDiskFile(file.get(), size))
        return std::nullopt;
    const qsizetype start = journalStart(size, line.size());
    const QByteArray blank(size - textEnd, '\n');
    QByteArray tail = blank;
    std::memcpy(tail.data() + (start - textEnd), line.constData(), static_cast<std::size_t>(line.size()));
    if (!writeDurably(file.get(), textEnd, tail)) {
        static_cast<void>(writeDurably(file.get(), textEnd, blank));
        return std::nullopt;
    }
    // The change counts from here on. If it cannot be made now, readers make it, and so does the next commit.
    if (makeChange(file.get(), journal, now.contentEnd(), next.contentEnd()))
        static_cast<void>(writeDurably(file.get(), textEnd, blank));
    return next.ofSize(size);
}

} // namespace marvola
