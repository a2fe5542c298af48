// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CountingEngine.h"

namespace marvola {

CountingEngine::CountingEngine(PlayerEngine &engine) : m_engine(&engine)
{
}

int CountingEngine::exchangeScanSettingA(int value)
{
    return m_engine->exchangeScanSettingA(value);
}

int CountingEngine::exchangeScanSettingB(int value)
{
    return m_engine->exchangeScanSettingB(value);
}

bool CountingEngine::getMediaKind(const QByteArray &utf8Path, UINT8 &hasAudio, UINT8 &hasVideo)
{
    m_files.append(QString::fromUtf8(utf8Path));
    ++m_count;
    return m_engine->getMediaKind(utf8Path, hasAudio, hasVideo);
}

bool CountingEngine::getClipInfo(const QByteArray &utf8Path, ClipInfo &info)
{
    return m_engine->getClipInfo(utf8Path, info);
}

void CountingEngine::finishScan()
{
    m_scanEnds.append(m_files.size());
    m_engine->finishScan();
}

} // namespace marvola
