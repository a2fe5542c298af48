// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/AnswerStore.h"

#include "scan/ByteFields.h"

#include <iterator>
#include <utility>

namespace marvola {

namespace {

constexpr quint8 HasKind = 1;
constexpr quint8 HasInfo = 2;
/// All fields of an answer but for the bytes of path and info.
constexpr qsizetype FixedSize = 4 + 2 * 4 + 8 + 2 * (8 + 4) + 3 + 4;

QByteArray infoBytes(const ClipInfo &info)
{
    ByteWriter writer;
    for (const QString *text :
         {&info.title, &info.artist, &info.album, &info.genre, &info.composer, &info.copyright, &info.comment}) {
        writer.text(*text);
    }
    writer.number(info.durationMs);
    for (const int number : {info.bitrate, info.sampleRate, info.channels, info.width, info.height})
        writer.number(static_cast<qint32>(number));
    return writer.take();
}

std::optional<ClipInfo> infoFrom(QByteArrayView bytes)
{
    ByteReader reader(bytes);
    ClipInfo info;
    for (QString *text :
         {&info.title, &info.artist, &info.album, &info.genre, &info.composer, &info.copyright, &info.comment}) {
        *text = reader.text();
    }
    info.durationMs = reader.number<qint64>();
    for (int *number : {&info.bitrate, &info.sampleRate, &info.channels, &info.width, &info.height})
        *number = reader.number<qint32>();
    return reader.isDone() ? std::optional(info) : std::nullopt;
}

void writeTime(ByteWriter &writer, const FileTime &time)
{
    writer.number(time.seconds);
    writer.number(time.nanoseconds);
}

FileTime readTime(ByteReader &reader)
{
    FileTime time;
    time.seconds = reader.number<qint64>();
    time.nanoseconds = reader.number<quint32>();
    return time;
}

} // namespace

qsizetype AnswerStore::Answer::size() const
{
    return FixedSize + question.path.size() + info.size();
}

std::optional<MediaKind> AnswerStore::kind(const Question &question, const FileStamp &stamp)
{
    const Answer *answer = find(question, stamp);
    return answer != nullptr ? answer->kind : std::nullopt;
}

std::optional<ClipInfo> AnswerStore::info(const Question &question, const FileStamp &stamp)
{
    const Answer *answer = find(question, stamp);
    return answer != nullptr ? infoFrom(answer->info) : std::nullopt;
}

void AnswerStore::remember(const Question &question, const FileStamp &stamp, const MediaKind &kind)
{
    Answer answer = answerFor(question, stamp);
    answer.kind = kind;
    m_isChanged |= put(std::move(answer));
}

void AnswerStore::remember(const Question &question, const FileStamp &stamp, const ClipInfo &info)
{
    Answer answer = answerFor(question, stamp);
    answer.info = infoBytes(info);
    m_isChanged |= put(std::move(answer));
}

void AnswerStore::clear()
{
    m_index.clear();
    m_answers.clear();
    m_bytes = 0;
    m_isChanged = false;
}

QByteArray AnswerStore::toBytes(const QString &identity) const
{
    ByteWriter writer;
    writer.reserve(m_bytes + identity.size() * 2 + 8);
    writer.text(identity);
    writer.number(static_cast<quint32>(m_answers.size()));
    for (const Answer &answer : m_answers) {
        writer.bytes(answer.question.path);
        writer.number(answer.question.settingA);
        writer.number(answer.question.settingB);
        writer.number(answer.stamp.size);
        writeTime(writer, answer.stamp.modified);
        writeTime(writer, answer.stamp.changed);
        writer.number(static_cast<quint8>((answer.kind ? HasKind : 0) | (answer.info.isEmpty() ? 0 : HasInfo)));
        const MediaKind kind = answer.kind.value_or(MediaKind());
        writer.number(kind.hasAudio);
        writer.number(kind.hasVideo);
        writer.bytes(answer.info);
    }
    return writer.take();
}

void AnswerStore::fromBytes(QByteArrayView bytes, const QString &identity)
{
    clear();
    ByteReader reader(bytes);
    if (reader.text() != identity)
        return;
    // Each turn takes bytes or ends the loop, so a count that is too large costs nothing.
    for (auto left = reader.number<quint32>(); left > 0 && reader.isGood(); --left) {
        Answer answer = readAnswer(reader);
        if (reader.isGood())
            static_cast<void>(put(std::move(answer)));
    }
    if (!reader.isDone())
        clear();
}

AnswerStore::Answer AnswerStore::readAnswer(ByteReader &reader)
{
    Answer answer;
    answer.question.path = reader.bytes().toByteArray();
    answer.question.settingA = reader.number<qint32>();
    answer.question.settingB = reader.number<qint32>();
    answer.stamp.size = reader.number<qint64>();
    answer.stamp.modified = readTime(reader);
    answer.stamp.changed = readTime(reader);
    const auto known = reader.number<quint8>();
    MediaKind kind;
    kind.hasAudio = reader.number<UINT8>();
    kind.hasVideo = reader.number<UINT8>();
    if ((known & HasKind) != 0)
        answer.kind = kind;
    const QByteArrayView info = reader.bytes();
    if ((known & HasInfo) != 0)
        answer.info = info.toByteArray();
    return answer;
}

/// The answer for this state of the file, which from now on is the one that was asked for last.
AnswerStore::Answer *AnswerStore::find(const Question &question, const FileStamp &stamp)
{
    const auto found = m_index.constFind(question);
    if (found == m_index.constEnd() || !((*found)->stamp == stamp))
        return nullptr;
    m_answers.splice(m_answers.end(), m_answers, *found);
    return &m_answers.back();
}

/// What is known so far of this state of the file.
AnswerStore::Answer AnswerStore::answerFor(const Question &question, const FileStamp &stamp)
{
    const Answer *known = find(question, stamp);
    return known != nullptr ? *known : Answer{question, stamp, {}, {}};
}

/// \return false when the answer is too long to be kept; then nothing has changed.
bool AnswerStore::put(Answer answer)
{
    if (answer.size() > m_limits.bytesOfAnswer)
        return false;
    const auto old = m_index.constFind(answer.question);
    if (old != m_index.constEnd())
        remove(*old);
    m_bytes += answer.size();
    m_answers.push_back(std::move(answer));
    m_index.insert(m_answers.back().question, std::prev(m_answers.end()));
    while (m_index.size() > m_limits.answers || m_bytes > m_limits.bytes)
        remove(m_answers.begin());
    return true;
}

void AnswerStore::remove(Answers::iterator answer)
{
    m_bytes -= answer->size();
    m_index.remove(answer->question);
    m_answers.erase(answer);
}

} // namespace marvola
