// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/AnswerCache.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace marvola {

namespace {

constexpr qint64 NanosecondsPerSecond = 1'000'000'000;
/// Both questions about a file that come within so much of one another get by with one look at it.
constexpr qint64 LookLastsNanoseconds = 10'000'000;

bool isBlank(const ClipInfo &info)
{
    const auto areNull = [](std::initializer_list<const QString *> texts) {
        return std::all_of(texts.begin(), texts.end(), [](const QString *text) { return text->isNull(); });
    };
    return areNull(
               {&info.title, &info.artist, &info.album, &info.genre, &info.composer, &info.copyright, &info.comment}) &&
           info.durationMs == 0 && info.bitrate == 0 && info.sampleRate == 0 && info.channels == 0 && info.width == 0 &&
           info.height == 0;
}

bool isJustAfter(const FileTime &moment, const FileTime &now)
{
    // A clock that was set makes the difference negative, or too large.
    const qint64 seconds = now.seconds - moment.seconds;
    if (seconds < 0 || seconds > 1)
        return false;
    const qint64 passed = seconds * NanosecondsPerSecond + now.nanoseconds - qint64(moment.nanoseconds);
    return passed >= 0 && passed < LookLastsNanoseconds;
}

} // namespace

AnswerCache::AnswerCache(const QString &file, const QString &identity, Clock clock)
    : m_file(file), m_identity(identity), m_clock(std::move(clock))
{
}

void AnswerCache::setIdentity(const QString &identity)
{
    if (identity == m_identity)
        return;
    m_identity = identity;
    m_store.clear();
    m_isLoaded = false;
}

bool AnswerCache::kind(PlayerEngine &engine, const QByteArray &path, UINT8 &hasAudio, UINT8 &hasVideo)
{
    const auto before = hasAudio == 0 && hasVideo == 0 ? look(path) : std::nullopt;
    m_last = before;
    const auto known = before ? m_store.kind(before->question, before->stamp) : std::nullopt;
    if (known) {
        hasAudio = known->hasAudio;
        hasVideo = known->hasVideo;
        return true;
    }
    m_last.reset();
    const FileTime since = before ? readSince(*before) : FileTime();
    if (!engine.getMediaKind(path, hasAudio, hasVideo))
        return false;
    m_last = look(path);
    if (before && m_last && isLasting(*before, since, *m_last))
        m_store.remember(before->question, before->stamp, MediaKind{hasAudio, hasVideo});
    return true;
}

bool AnswerCache::info(PlayerEngine &engine, const QByteArray &path, ClipInfo &info)
{
    const auto last = std::exchange(m_last, std::nullopt);
    const auto before = isBlank(info) ? lookUnless(last, path) : std::nullopt;
    auto known = before ? m_store.info(before->question, before->stamp) : std::nullopt;
    if (known) {
        info = std::move(*known);
        return true;
    }
    const FileTime since = before ? readSince(*before) : FileTime();
    if (!engine.getClipInfo(path, info))
        return false;
    const auto after = before ? look(path) : std::nullopt;
    if (after && isLasting(*before, since, *after))
        m_store.remember(before->question, before->stamp, info);
    return true;
}

void AnswerCache::save()
{
    m_last.reset();
    m_asked.reset();
    if (m_store.isChanged() && m_file.write(m_store.toBytes(m_identity)))
        m_store.setSaved();
}

/// The state of the file now; nothing when nothing could be remembered about it.
std::optional<AnswerCache::Look> AnswerCache::look(const QByteArray &path)
{
    if (!m_settingA || !m_settingB)
        return std::nullopt;
    load();
    // The clock first: what happens to the file behind this line counts as later.
    const FileTime now = m_clock();
    const auto stamp = FileStamp::of(path);
    return stamp ? std::optional(Look{{path, *m_settingA, *m_settingB}, *stamp, now}) : std::nullopt;
}

/// The same, unless the first question about the file was just before: then as it was \a last.
std::optional<AnswerCache::Look> AnswerCache::lookUnless(const std::optional<Look> &last, const QByteArray &path)
{
    const bool isSame = last && m_settingA && m_settingB && last->question == Question{path, *m_settingA, *m_settingB};
    return isSame && isJustAfter(last->moment, m_clock()) ? last : look(path);
}

/// From when on the engine may have read what it answers with next. An engine may read a file once for both questions,
/// and give the second answer from what it has kept, long after the file's stamp has settled.
FileTime AnswerCache::readSince(const Look &before)
{
    if (!m_asked || !(m_asked->question == before.question) || !(m_asked->stamp == before.stamp))
        m_asked = before;
    return m_asked->moment;
}

/// Whether an answer that was given between two looks, about what was read after \a since, would be given again as
/// long as the stamp stays.
bool AnswerCache::isLasting(const Look &before, const FileTime &since, const Look &after) const
{
    return after.stamp == before.stamp && before.stamp.isSettledAt(since) && (!m_isLasting || m_isLasting());
}

void AnswerCache::load()
{
    if (!std::exchange(m_isLoaded, true))
        m_store.fromBytes(m_file.read(), m_identity);
}

} // namespace marvola
