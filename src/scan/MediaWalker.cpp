// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/MediaWalker.h"

#include <marvola/TROVE_Global.h>

#include <QtCore/QStringBuilder>

#include <algorithm>

namespace marvola {

namespace {

constexpr QLatin1Char slash('/');

/// Levels of the folder \a path, written with a "/" at its end, below the root of its storage place.
int depthOf(const QString &path)
{
    return static_cast<int>(path.count(slash)) - TROVE_Global::instance()->getPartiFolderLevel(path) - 1;
}

/// Counts one more unless \a count has reached \a limit; says whether it did count.
bool countUpTo(int limit, int &count)
{
    if (count >= limit)
        return false;
    ++count;
    return true;
}

} // namespace

MediaWalker::MediaWalker(const NameFilter &filter, const LinkLimits &linkLimits)
    : m_linkLimits(linkLimits), m_filter(filter), m_reader(m_filter)
{
}

void MediaWalker::walk(const QString &dir, QStringList &files)
{
    if (dir.isEmpty())
        return;
    m_levels.clear();
    m_entriesAbove.clear();
    m_allEntriesAbove = 0;
    m_entriesElsewhere.clear();
    m_filesBelowLinks = 0;
    m_entriesBelowLinks = 0;

    enter(dir.endsWith(slash) ? dir : dir + slash, Reached::Directly, files);
    while (!m_levels.empty()) {
        Level &level = m_levels.back();
        if (level.next == level.folders.size()) {
            m_levels.pop_back();
            continue;
        }
        const SubFolder &folder = level.folders[level.next++];
        const QString path = level.path + folder.name + slash;
        enter(path, folder.reached, files);
    }
}

void MediaWalker::enter(const QString &path, Reached reached, QStringList &files)
{
    if (depthOf(path) > MaxFolderDepth)
        return;
    const std::optional<FileId> id = m_reader.open(path);
    if (!id || (reached == Reached::ThroughLink && !mayEnterByLink(*id)))
        return;
    if (!m_levels.empty() && m_levels.back().reached == Reached::ThroughLink)
        reached = Reached::ThroughLink;
    Listing listing = m_reader.read();
    for (const QString &file : std::as_const(listing.files))
        files.append(path % file);
    if (reached == Reached::ThroughLink) {
        m_filesBelowLinks += listing.files.size();
        m_entriesBelowLinks += 1 + listing.entries;
    }
    m_levels.push_back({path, *id, reached, std::move(listing.folders), 0});
}

bool MediaWalker::mayEnterByLink(const FileId &id)
{
    if (m_filesBelowLinks >= m_linkLimits.filesBelowLinks || m_entriesBelowLinks >= m_linkLimits.entriesBelowLinks)
        return false;
    const bool above = std::any_of(m_levels.begin(), m_levels.end(), [&id](const Level &l) { return l.id == id; });
    if (!above)
        return countUpTo(m_linkLimits.perFolderElsewhere, m_entriesElsewhere[id]);
    return countUpTo(m_linkLimits.perFolderAbove, m_entriesAbove[id]) &&
           countUpTo(m_linkLimits.allFoldersAbove, m_allEntriesAbove);
}

} // namespace marvola
