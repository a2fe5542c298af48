// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// How the engine fares on a medium on which time runs out. No time is waited for: this program has the function that
// tells the time, by the very name that the libraries ask for, and so before theirs.

#include <marvola/FFmpegPlayerEngine.h>

#include "MediaBytes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// How much later it is at each look at the clock.
std::atomic<int> secondsForEachLook{0};
std::atomic<int> secondsPassed{0};

} // namespace

extern "C" Q_DECL_EXPORT int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (result == 0)
        time->tv_sec += secondsPassed += secondsForEachLook;
    return result;
}

TEST(SlowMedium, AnswerForWhichTheTimeRanOutDoesNotLast)
{
    const FileOf file(mp3Frames(50));
    FFmpegPlayerEngine engine;
    engine.exchangeScanSettingB(0);
    UINT8 audio = 0;
    UINT8 video = 0;
    EXPECT_TRUE(engine.getMediaKind(file.path(), audio, video));
    EXPECT_EQ(audio, 1);
    EXPECT_TRUE(engine.isAnswerLasting());

    engine.finishScan();
    secondsForEachLook = 1;
    engine.getMediaKind(file.path(), audio, video);
    secondsForEachLook = 0;
    EXPECT_FALSE(engine.isAnswerLasting());

    EXPECT_TRUE(engine.getMediaKind(file.path(), audio, video)) << "it is asked about once more";
}
