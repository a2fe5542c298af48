// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_ANSWERCACHE_H
#define MARVOLA_SCAN_ANSWERCACHE_H

#include "platform/CacheFile.h"
#include "scan/AnswerStore.h"

#include <functional>

namespace marvola {

/// Answers in an engine's place whatever it has answered before, as long as that is what it would answer now.
///
/// Not so for a file that is no regular one, that changes meanwhile or has changed so lately that a further change
/// might not show in its stamp; for an answer of false; before the engine's settings are known; and for a caller whose
/// variables are not blank, because an engine may leave some of them as they were.
class AnswerCache
{
public:
    using Clock = std::function<FileTime()>;
    using LastingCheck = std::function<bool()>;

    /// \a identity names all that answers depend on besides the file and the settings.
    AnswerCache(const QString &file, const QString &identity, Clock clock = FileTime::now);

    void setIdentity(const QString &identity);
    /// \a isLasting tells after an answer whether it is worth remembering; an empty function: always.
    void setLastingCheck(LastingCheck isLasting) { m_isLasting = std::move(isLasting); }
    void setSettingA(int value) { m_settingA = value; }
    void setSettingB(int value) { m_settingB = value; }

    bool kind(PlayerEngine &engine, const QByteArray &path, UINT8 &hasAudio, UINT8 &hasVideo);
    bool info(PlayerEngine &engine, const QByteArray &path, ClipInfo &info);

    /// Writes the file if anything was remembered since it was read or written.
    void save();

private:
    /// A file as it was when it was looked at.
    struct Look
    {
        Question question;
        FileStamp stamp;
        FileTime moment;
    };

    std::optional<Look> look(const QByteArray &path);
    std::optional<Look> lookUnless(const std::optional<Look> &last, const QByteArray &path);
    FileTime readSince(const Look &before);
    bool isLasting(const Look &before, const FileTime &since, const Look &after) const;
    void load();

    CacheFile m_file;
    QString m_identity;
    Clock m_clock;
    LastingCheck m_isLasting;
    std::optional<int> m_settingA;
    std::optional<int> m_settingB;
    AnswerStore m_store;
    bool m_isLoaded = false;
    std::optional<Look> m_last;  ///< of the first question, for the second one about the same file
    std::optional<Look> m_asked; ///< before the first of the latest questions to the engine about one state of one file
};

} // namespace marvola

#endif
