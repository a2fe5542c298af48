// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// soak SAMPLES SECONDS [SEED]: plays for that long with the media files of the folder SAMPLES, and fails when anything
// that was kept is not as it was, or when memory, file descriptors or threads do not stay flat.

#include "Player.h"
#include "Usage.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

#include <malloc.h>

namespace {

using Clock = std::chrono::steady_clock;

/// What may be more in the last quarter than in the second: playlists and histories are longer or shorter by chance.
constexpr std::size_t AllocatedSlackKb = 128;
constexpr std::size_t ResidentSlackKb = 4096;
constexpr std::size_t FewestRounds = 8;

void print(const char *when, const Usage &usage)
{
    std::printf("%-16s %8zu kB resident %8zu kB allocated %4d descriptors %3d threads\n", when, usage.residentKb,
                usage.allocatedKb, usage.descriptors, usage.threads);
    std::fflush(stdout);
}

/// The most of each.
Usage mostOf(const Usage *first, const Usage *last)
{
    Usage most;
    for (; first != last; ++first) {
        most.residentKb = std::max(most.residentKb, first->residentKb);
        most.allocatedKb = std::max(most.allocatedKb, first->allocatedKb);
        most.descriptors = std::max(most.descriptors, first->descriptors);
        most.threads = std::max(most.threads, first->threads);
    }
    return most;
}

/// The first quarter is for what is made once; the second is compared with the last.
bool isFlat(const std::vector<Usage> &rounds)
{
    const std::size_t quarter = rounds.size() / 4;
    const Usage early = mostOf(rounds.data() + quarter, rounds.data() + 2 * quarter);
    const Usage late = mostOf(rounds.data() + 3 * quarter, rounds.data() + rounds.size());
    print("second quarter", early);
    print("last quarter", late);
    return late.residentKb <= early.residentKb + ResidentSlackKb &&
           late.allocatedKb <= early.allocatedKb + AllocatedSlackKb && late.descriptors <= early.descriptors &&
           late.threads <= early.threads;
}

int soak(const QString &samples, std::chrono::seconds time, std::uint_fast32_t seed)
{
    std::printf("seed %lu\n", static_cast<unsigned long>(seed));
    Player player(samples, seed);
    std::vector<Usage> rounds;
    rounds.reserve(1 << 16);
    const auto start = Clock::now();
    auto nextReport = start;
    while (Clock::now() - start < time || rounds.size() < FewestRounds) {
        const QString problem = player.playRound();
        if (!problem.isEmpty()) {
            std::printf("round %zu: does not hold: %s\n", rounds.size() + 1, qPrintable(problem));
            return 1;
        }
        ::malloc_trim(0);
        rounds.push_back(Usage::now());
        if (Clock::now() >= nextReport) {
            print(qPrintable(QStringLiteral("round %1").arg(rounds.size())), rounds.back());
            nextReport = Clock::now() + time / 20;
        }
    }
    std::printf("%zu rounds in %lld s\n", rounds.size(), static_cast<long long>(time.count()));
    const bool hasStayedFlat = isFlat(rounds);
    std::printf(hasStayedFlat ? "flat\n" : "not flat\n");
    return hasStayedFlat ? 0 : 1;
}

} // namespace

int main(int count, char **arguments)
{
    const QCoreApplication application(count, arguments);
    const QStringList texts = QCoreApplication::arguments();
    const int seconds = texts.value(2).toInt();
    if (seconds <= 0 || texts.size() > 4) {
        std::fputs("usage: soak SAMPLES SECONDS [SEED]\n", stderr);
        return 2;
    }
    return soak(texts.at(1), std::chrono::seconds(seconds),
                texts.size() > 3 ? texts.at(3).toUInt() : std::random_device()());
}
