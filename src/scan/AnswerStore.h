// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_ANSWERSTORE_H
#define MARVOLA_SCAN_ANSWERSTORE_H

#include "scan/FileStamp.h"

#include <marvola/PlayerEngine.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QHash>
#include <QtCore/QString>

#include <list>
#include <optional>

namespace marvola {

class ByteReader;

/// The answer to the question for a file's kind.
struct MediaKind
{
    UINT8 hasAudio = 0;
    UINT8 hasVideo = 0;
};

/// Which file was asked about, and how the engine was set.
struct Question
{
    QByteArray path;
    qint32 settingA = 0;
    qint32 settingB = 0;

    bool operator==(const Question &other) const
    {
        return path == other.path && settingA == other.settingA && settingB == other.settingB;
    }
};

inline size_t qHash(const Question &question, size_t seed)
{
    return qHashMulti(seed, question.path, question.settingA, question.settingB);
}

/// A bounded number of remembered answers. When there is no room for another, those go first that were not asked for
/// the longest.
class AnswerStore
{
public:
    struct Limits
    {
        qsizetype answers = 65535;
        qsizetype bytes = qsizetype(16) * 1024 * 1024; ///< as they come to in a file
        qsizetype bytesOfAnswer = qsizetype(64) * 1024;
    };

    AnswerStore() = default;
    explicit AnswerStore(const Limits &limits) : m_limits(limits) {}

    std::optional<MediaKind> kind(const Question &question, const FileStamp &stamp);
    std::optional<ClipInfo> info(const Question &question, const FileStamp &stamp);
    /// What is known of another state of the file is forgotten.
    void remember(const Question &question, const FileStamp &stamp, const MediaKind &kind);
    void remember(const Question &question, const FileStamp &stamp, const ClipInfo &info);
    void clear();

    qsizetype count() const { return m_index.size(); }
    /// Whether anything was remembered since the bytes were read or setSaved() was called.
    bool isChanged() const { return m_isChanged; }
    void setSaved() { m_isChanged = false; }

    /// All answers behind \a identity.
    QByteArray toBytes(const QString &identity) const;
    /// Puts those answers in the place of all. Bytes of another identity, and such that are not in order, have none.
    void fromBytes(QByteArrayView bytes, const QString &identity);

private:
    struct Answer
    {
        Question question;
        FileStamp stamp;
        std::optional<MediaKind> kind;
        QByteArray info; ///< as it stands in the file; empty when it is not known

        qsizetype size() const;
    };
    using Answers = std::list<Answer>;

    Answer *find(const Question &question, const FileStamp &stamp);
    Answer answerFor(const Question &question, const FileStamp &stamp);
    [[nodiscard]] bool put(Answer answer);
    void remove(Answers::iterator answer);
    static Answer readAnswer(ByteReader &reader);

    Limits m_limits;
    Answers m_answers; ///< the one that was asked for last comes last
    QHash<Question, Answers::iterator> m_index;
    qsizetype m_bytes = 0;
    bool m_isChanged = false;
};

} // namespace marvola

#endif
