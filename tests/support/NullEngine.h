// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_NULLENGINE_H
#define MARVOLA_TESTS_SUPPORT_NULLENGINE_H

#include <marvola/PlayerEngine.h>

/// An engine that can read nothing.
class NullEngine : public PlayerEngine
{
public:
    int exchangeScanSettingA(int) override { return 0; }
    int exchangeScanSettingB(int) override { return 0; }
    bool getMediaKind(const QByteArray &, UINT8 &, UINT8 &) override { return false; }
    bool getClipInfo(const QByteArray &, ClipInfo &) override { return false; }
    void finishScan() override {}
};

#endif
