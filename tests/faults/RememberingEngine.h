// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FAULTS_REMEMBERINGENGINE_H
#define MARVOLA_TESTS_FAULTS_REMEMBERINGENGINE_H

#include "scan/AnswerCache.h"
#include "support/TableEngine.h"

/// What an engine answers about each media file of a phone.
QHash<QString, TableEngine::Answer> mediaAnswers();

/// An engine with these answers, which are remembered as a CachingPlayerEngine remembers them; but on a clock that is
/// an hour ahead, since a test's files are new, and what is said of new files is not remembered.
class RememberingEngine : public PlayerEngine
{
public:
    explicit RememberingEngine(const QString &cacheFile);

    int exchangeScanSettingA(int value) override;
    int exchangeScanSettingB(int value) override;
    bool getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo) override;
    bool getClipInfo(const QByteArray &utf8Path, ClipInfo &info) override;
    void finishScan() override;

    /// Asks about \a files as a refresh does.
    void scan(const QStringList &files);

private:
    TableEngine m_engine;
    marvola::AnswerCache m_cache;
};

/// What \a cacheFile has about each of \a files that it has something about; "broken" alone when it is there and not
/// whole.
QStringList rememberedAnswers(const QString &cacheFile, const QStringList &files);

#endif
