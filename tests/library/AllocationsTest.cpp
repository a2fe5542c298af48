// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include "support/NullEngine.h"
#include "support/TestPhone.h"

#include <functional>
#include <utility>

namespace {

thread_local int allocations = 0;

} // namespace

extern "C" {

void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);

// In the place of the C library's, for all of this program, Qt and operator new too.
void *malloc(size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}
void *calloc(size_t count, size_t size)
{
    ++allocations;
    return __libc_calloc(count, size);
}
void *realloc(void *block, size_t size)
{
    ++allocations;
    return __libc_realloc(block, size);
}
}

namespace {

using namespace Qt::StringLiterals;

/// The longest list being played that there can be, and the allocations that an operation on it makes.
class Allocations : public testing::Test
{
protected:
    static constexpr int Count = 65535;

    Allocations()
    {
        {
            ConfigFile settings(phone.settingsFile(), false);
            for (const QString &limit : {u"MaxNumOfMediaFile"_s, u"MaxNumOfItem"_s})
                EXPECT_TRUE(settings.writeEntry(u"MediaLimitationItem"_s, limit, Count));
        }
        library = std::make_unique<MP_MyLibrary>(&engine);
        QStringList items;
        for (int number = 0; number < Count; ++number)
            items.append(u"/music/%1.mp3"_s.arg(number));
        library->setCurrentPlayingList(items);
        EXPECT_EQ(library->getCurrentPlayingListNumber(), unsigned(Count));
        library->setActiveItem(0, false);
    }

    static int of(const std::function<void()> &operation)
    {
        allocations = 0;
        operation();
        return std::exchange(allocations, 0);
    }
    /// Of a whole round through the list with this operation, which must always give an item.
    int ofARound(QString (MP_MyLibrary::*step)()) const
    {
        int missing = 0;
        const int made = of([&] {
            for (int number = 0; number < Count; ++number)
                missing += ((*library).*step)().isNull() ? 1 : 0;
        });
        EXPECT_EQ(missing, 0);
        return made;
    }

    const TestPhone phone;
    NullEngine engine;
    std::unique_ptr<MP_MyLibrary> library;
};

} // namespace

TEST_F(Allocations, AreCounted)
{
    EXPECT_EQ(of([] { delete new int; }), 1);
    EXPECT_EQ(of([] { QString(100, u'x'); }), 1);
}

TEST_F(Allocations, TheActiveItemNeedsNone)
{
    QString item;
    EXPECT_EQ(of([&] { item = library->getActiveItem(); }), 0);
    EXPECT_EQ(item, u"/music/0.mp3"_s);
}

TEST_F(Allocations, SteppingThroughTheListNeedsNone)
{
    library->setRepeat(true);
    EXPECT_EQ(ofARound(&MP_MyLibrary::getNextItem), 0);
    EXPECT_EQ(library->getActiveItem(), u"/music/0.mp3"_s);
    EXPECT_EQ(ofARound(&MP_MyLibrary::getPrevItem), 0);
    EXPECT_EQ(library->getActiveItem(), u"/music/0.mp3"_s);
}

// At its end the list is shuffled anew, in its place.
TEST_F(Allocations, SteppingThroughAShuffledListNeedsNone)
{
    library->setRepeat(true);
    library->setShuffle(true);
    EXPECT_EQ(ofARound(&MP_MyLibrary::getNextItem), 0);
    EXPECT_EQ(ofARound(&MP_MyLibrary::getNextItem), 0);
}
