// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Folder.h"
#include "platform/NumberedGroup.h"

#include <marvola/ConfigFile.h>
#include <marvola/MediaTypeRegistry.h>
#include <marvola/TROVE_Global.h>

#include <cstdlib>
#include <cstring>
#include <unistd.h>

using namespace marvola;
using namespace Qt::StringLiterals;

/// Nobody waits for a refresh when the process ends: its worker may still run while, or after, static objects go.
namespace {

constexpr int Intact = 7;
constexpr int Destroyed = 8;

bool isArmed = false;

bool worksAsEver()
{
    ConfigFile list(qEnvironmentVariable("MARVOLA_TEST_LIST"), false);
    QStringList extensions;
    MediaTypeRegistry::querySupportedExtensions(extensions, MediaTypeRegistry::MediaPlayer);
    return NumberedGroup(list, u"g"_s).count() == 2 && extensions.contains(u"mp3"_s) &&
           TROVE_Global::instance()->getPartiFolderLevel(u"/"_s) == 0;
}

/// So that the use of memory that was given back shows.
void overwriteFreeMemory()
{
    constexpr std::size_t LargestBlock = 256;
    constexpr int BlocksOfASize = 1000;
    for (std::size_t size = 8; size <= LargestBlock; size += 8) {
        for (int block = 0; block < BlocksOfASize; ++block) {
            if (void *taken = std::malloc(size))
                std::memset(taken, 'Z', size);
        }
    }
}

/// Comes behind the destructors of all static objects, those of libraries too.
__attribute__((destructor)) void leaveLast()
{
    if (!isArmed)
        return;
    overwriteFreeMemory();
    ::_exit(worksAsEver() ? Intact : Destroyed);
}

[[noreturn]] void endTheProcess()
{
    isArmed = true;
    std::exit(worksAsEver() ? 0 : 1);
}

} // namespace

TEST(ProcessExit, WhatTheWorkerUsesOutlivesStaticObjects)
{
    const Folder folder;
    const QString path = folder.path(u"list"_s);
    {
        ConfigFile file(path, false);
        ASSERT_TRUE(NumberedGroup(file, u"g"_s).replace({u"a"_s, u"b"_s}));
    }
    ASSERT_TRUE(qputenv("MARVOLA_TEST_LIST", path.toUtf8()));
    EXPECT_EXIT(endTheProcess(), testing::ExitedWithCode(Intact), "");
    qunsetenv("MARVOLA_TEST_LIST");
}
