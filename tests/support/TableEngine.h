// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_TABLEENGINE_H
#define MARVOLA_TESTS_SUPPORT_TABLEENGINE_H

#include <marvola/PlayerEngine.h>

#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QStringList>

#include <functional>
#include <mutex>

/// An engine that answers from a table of file names, and notes its calls as "A 0", "B 0", "kind x.mp3", "info x.mp3"
/// and "finish". Set the table up before a refresh; the log may be read meanwhile.
class TableEngine : public PlayerEngine
{
public:
    struct Answer
    {
        bool kindKnown = true;
        UINT8 hasAudio = 1;
        UINT8 hasVideo = 0;
        bool infoKnown = true;
        ClipInfo info;
    };

    static Answer audio(const QString &artist, const QString &album, const QString &genre)
    {
        Answer answer;
        answer.info.artist = artist;
        answer.info.album = album;
        answer.info.genre = genre;
        return answer;
    }
    static Answer video(const QString &artist = {}, const QString &album = {}, const QString &genre = {})
    {
        Answer answer = audio(artist, album, genre);
        answer.hasVideo = 1;
        return answer;
    }

    QHash<QString, Answer> answers; ///< by file name
    Answer other;                   ///< for all other files
    /// What the exchanges give back; they hold what was set last.
    int settingA = 7;
    int settingB = 9;
    /// Called before each call is answered, on the calling thread, with the call's text.
    std::function<void(const QString &)> hook;

    QStringList calls() const
    {
        const std::lock_guard lock(m_mutex);
        return m_calls;
    }

    int exchangeScanSettingA(int value) override
    {
        note(QStringLiteral("A %1").arg(value));
        return std::exchange(settingA, value);
    }
    int exchangeScanSettingB(int value) override
    {
        note(QStringLiteral("B %1").arg(value));
        return std::exchange(settingB, value);
    }
    bool getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo) override
    {
        const Answer answer = answerFor("kind ", utf8Path);
        hasAudio = answer.hasAudio;
        hasVideo = answer.hasVideo;
        return answer.kindKnown;
    }
    bool getClipInfo(const QByteArray &utf8Path, ClipInfo &info) override
    {
        const Answer answer = answerFor("info ", utf8Path);
        info = answer.info;
        return answer.infoKnown;
    }
    void finishScan() override { note(QStringLiteral("finish")); }

private:
    Answer answerFor(const char *call, const QByteArray &utf8Path)
    {
        const QString name = QFileInfo(QString::fromUtf8(utf8Path)).fileName();
        note(QString::fromLatin1(call) + name);
        return answers.value(name, other);
    }

    void note(const QString &call)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_calls.append(call);
        }
        if (hook)
            hook(call);
    }

    mutable std::mutex m_mutex;
    QStringList m_calls;
};

#endif
