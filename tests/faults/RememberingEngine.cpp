// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "RememberingEngine.h"

#include <QtCore/QFile>

using namespace Qt::StringLiterals;

namespace {

constexpr int ScanSetting = 0;

marvola::AnswerCache cacheOf(const QString &file)
{
    return marvola::AnswerCache(file, u"engine 1"_s, [] {
        constexpr qint64 Hour = 3600;
        marvola::FileTime now = marvola::FileTime::now();
        now.seconds += Hour;
        return now;
    });
}

} // namespace

QHash<QString, TableEngine::Answer> mediaAnswers()
{
    return {{u"one.mp3"_s, TableEngine::audio(u"Ann"_s, u"First"_s, u"Folk"_s)},
            {u"two.mp3"_s, TableEngine::audio(u"Bo"_s, u"First"_s, u"Pop"_s)},
            {u"three.mp3"_s, TableEngine::audio(u"Cleo"_s, u"Second"_s, u"Pop"_s)},
            {u"four.mp3"_s, TableEngine::audio(u"Dan"_s, u"Third"_s, u"Rock"_s)},
            {u"five.mp3"_s, TableEngine::video(u"Eve"_s)}};
}

RememberingEngine::RememberingEngine(const QString &cacheFile) : m_cache(cacheOf(cacheFile))
{
    m_engine.answers = mediaAnswers();
}

int RememberingEngine::exchangeScanSettingA(int value)
{
    m_cache.setSettingA(value);
    return m_engine.exchangeScanSettingA(value);
}

int RememberingEngine::exchangeScanSettingB(int value)
{
    m_cache.setSettingB(value);
    return m_engine.exchangeScanSettingB(value);
}

bool RememberingEngine::getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo)
{
    return m_cache.kind(m_engine, utf8Path, hasAudio, hasVideo);
}

bool RememberingEngine::getClipInfo(const QByteArray &utf8Path, ClipInfo &info)
{
    return m_cache.info(m_engine, utf8Path, info);
}

void RememberingEngine::finishScan()
{
    m_engine.finishScan();
    m_cache.save();
}

void RememberingEngine::scan(const QStringList &files)
{
    exchangeScanSettingA(ScanSetting);
    exchangeScanSettingB(ScanSetting);
    for (const QString &file : files) {
        UINT8 hasAudio = 0;
        UINT8 hasVideo = 0;
        ClipInfo info;
        getMediaKind(file.toUtf8(), hasAudio, hasVideo);
        getClipInfo(file.toUtf8(), info);
    }
    finishScan();
}

QStringList rememberedAnswers(const QString &cacheFile, const QStringList &files)
{
    if (QFile::exists(cacheFile) && marvola::CacheFile(cacheFile).read().isEmpty())
        return {u"broken"_s};
    TableEngine knowsNothing;
    knowsNothing.other.kindKnown = false;
    knowsNothing.other.infoKnown = false;
    marvola::AnswerCache cache = cacheOf(cacheFile);
    cache.setSettingA(ScanSetting);
    cache.setSettingB(ScanSetting);
    QStringList answers;
    for (const QString &file : files) {
        UINT8 hasAudio = 0;
        UINT8 hasVideo = 0;
        ClipInfo info;
        if (cache.kind(knowsNothing, file.toUtf8(), hasAudio, hasVideo))
            answers.append(file + u" is "_s + QString::number(hasAudio) + QString::number(hasVideo));
        if (cache.info(knowsNothing, file.toUtf8(), info))
            answers.append(file + u" has "_s + QStringList{info.artist, info.album, info.genre}.join(u'/'));
    }
    return answers;
}
