// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/CachingPlayerEngine.h>

#include "scan/AnswerCache.h"

#include <utility>

struct CachingPlayerEngine::Private
{
    PlayerEngine &engine;
    marvola::AnswerCache cache;
};

CachingPlayerEngine::CachingPlayerEngine(PlayerEngine &engine, const QString &cacheFile, const QString &identity)
    : d(new Private{engine, marvola::AnswerCache(cacheFile, identity)})
{
}

CachingPlayerEngine::~CachingPlayerEngine() = default;

void CachingPlayerEngine::setIdentity(const QString &identity)
{
    d->cache.setIdentity(identity);
}

void CachingPlayerEngine::setLastingCheck(std::function<bool()> isLasting)
{
    d->cache.setLastingCheck(std::move(isLasting));
}

int CachingPlayerEngine::exchangeScanSettingA(int value)
{
    d->cache.setSettingA(value);
    return d->engine.exchangeScanSettingA(value);
}

int CachingPlayerEngine::exchangeScanSettingB(int value)
{
    d->cache.setSettingB(value);
    return d->engine.exchangeScanSettingB(value);
}

bool CachingPlayerEngine::getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo)
{
    return d->cache.kind(d->engine, utf8Path, hasAudio, hasVideo);
}

bool CachingPlayerEngine::getClipInfo(const QByteArray &utf8Path, ClipInfo &info)
{
    return d->cache.info(d->engine, utf8Path, info);
}

void CachingPlayerEngine::finishScan()
{
    d->engine.finishScan();
    d->cache.save();
}
