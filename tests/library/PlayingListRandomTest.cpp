// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/NaiveList.h"
#include "support/NullEngine.h"
#include "support/TestPhone.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>

using namespace Qt::StringLiterals;

namespace {

/// The second that the whole program lives in, once it is set: shuffles are seeded with the time.
std::time_t theSecond = 0;

} // namespace

/// Takes the place of the C library's clock in seconds, so that a shuffle and the reference's never fall into two
/// different seconds.
extern "C" std::time_t time(std::time_t *result) noexcept
{
    timespec now = {theSecond, 0};
    if (theSecond == 0)
        ::clock_gettime(CLOCK_REALTIME, &now);
    if (result != nullptr)
        *result = now.tv_sec;
    return now.tv_sec;
}

namespace {

constexpr int Seeds = 50;
constexpr int StepsPerSeed = 2000;
constexpr int ItemLimit = 12;

QStringList toQt(const NaiveList::Texts &texts)
{
    QStringList list;
    for (const std::string &text : texts)
        list.append(QString::fromStdString(text));
    return list;
}

NaiveList::Dice diceOfThisSecond()
{
    std::srand(static_cast<unsigned int>(std::time(nullptr)));
    return [] { return static_cast<std::uint32_t>(std::rand()); };
}

NaiveList::Text naive(const QString &text)
{
    return text.isNull() ? NaiveList::Text() : NaiveList::Text(text.toStdString());
}

/// The library and the naive list, side by side through the same steps, with restarts of the player in between.
class Walk
{
public:
    explicit Walk(unsigned int seed) : m_random(seed)
    {
        {
            ConfigFile file(m_phone.settingsFile(), false);
            EXPECT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfMediaFile"_s, 100));
            EXPECT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfItem"_s, ItemLimit));
            EXPECT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfList"_s, 100));
        }
        m_library = std::make_unique<MP_MyLibrary>(&m_engine);
    }

    void step();
    void compare() const;
    int restarts() const { return m_restarts; }
    int loads() const { return m_loads; }

private:
    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(m_random); }
    bool coin() { return below(2) == 0; }
    std::string text() { return std::string(1, static_cast<char>('a' + below(20))); }
    NaiveList::Texts texts(int most)
    {
        NaiveList::Texts some(static_cast<std::size_t>(below(most + 1)));
        std::generate(some.begin(), some.end(), [this] { return text(); });
        return some;
    }
    unsigned short index() { return static_cast<unsigned short>(below(m_naive.size() + 2)); }

    void fill();
    void edit();
    void move();
    void changeMode();
    void store();
    void restart();
    void savePlaylist();
    void loadPlaylist();

    std::mt19937 m_random;
    TestPhone m_phone;
    NullEngine m_engine;
    std::unique_ptr<MP_MyLibrary> m_library;
    NaiveList m_naive{diceOfThisSecond};
    NaiveList::Texts m_saved; ///< the items of the one playlist
    bool m_isSaved = false;
    bool m_shuffle = false;
    bool m_repeat = false;
    int m_restarts = 0;
    int m_loads = 0;
};

void Walk::fill()
{
    const NaiveList::Texts some = texts(6);
    QStringList items = toQt(some);
    switch (below(6)) {
    case 0:
        m_library->setCurrentPlayingList(items.value(0));
        m_naive.setOne(some.empty() ? std::string() : some.front());
        break;
    case 1:
        m_library->setCurrentPlayingList(items);
        m_naive.setSeveral(some, ItemLimit, m_shuffle);
        break;
    default:
        EXPECT_EQ(m_library->addItemsToPlayList(items), m_naive.add(some, ItemLimit, m_shuffle));
    }
}

void Walk::edit()
{
    const unsigned short at = index();
    switch (below(5)) {
    case 0:
        EXPECT_EQ(m_library->removeItemFromPlayList(at), m_naive.remove(at));
        break;
    case 1:
        EXPECT_EQ(m_library->itemUp(at), m_naive.move(at, -1, m_shuffle));
        break;
    case 2:
        EXPECT_EQ(m_library->itemDown(at), m_naive.move(at, +1, m_shuffle));
        break;
    case 3: {
        const std::string from = text();
        const std::string to = text();
        m_library->editUrl(QString::fromStdString(from), QString::fromStdString(to));
        m_naive.editUrl(from, to);
        break;
    }
    default: {
        const std::string item = text();
        const int flag = below(3);
        m_library->setItemFlag(QString::fromStdString(item), static_cast<MP_MEDIA_FILE_TYPE_T>(flag));
        m_naive.setFlag(item, flag);
    }
    }
}

void Walk::move()
{
    switch (below(4)) {
    case 0: {
        const unsigned short at = index();
        const bool pickFirst = coin();
        m_library->setActiveItem(at, pickFirst);
        m_naive.setActive(at, m_shuffle, pickFirst);
        break;
    }
    case 1:
        EXPECT_EQ(naive(m_library->getPrevItem()), m_naive.previous(m_repeat));
        break;
    default:
        EXPECT_EQ(naive(m_library->getNextItem()), m_naive.next(m_repeat, m_shuffle));
    }
}

void Walk::changeMode()
{
    switch (below(5)) {
    case 0:
    case 1:
        m_shuffle = !m_shuffle;
        m_library->setShuffle(m_shuffle);
        m_naive.shuffleChanged(m_shuffle);
        break;
    case 2:
        m_repeat = !m_repeat;
        m_library->setRepeat(m_repeat);
        break;
    case 3:
        m_library->randomizePlayList();
        m_naive.randomizeItems();
        break;
    default:
        m_library->setCurrentPlaylistChangedState(false);
        m_naive.changed = false;
    }
}

// The player goes on with an index as its cursor.
void Walk::store()
{
    m_library->storeMyLibrary();
    const int index = m_naive.order.count(m_naive.cursor) != 0 ? m_naive.order.at(m_naive.cursor) : -1;
    m_naive.cursor = index;
}

void Walk::restart()
{
    store();
    m_library = std::make_unique<MP_MyLibrary>(&m_engine);
    NaiveList restored(diceOfThisSecond);
    restored.restore(m_naive.storedName.value_or(""), m_naive.items, m_naive.cursor, m_shuffle);
    m_naive = restored;
    EXPECT_EQ(m_library->getShuffle(), m_shuffle);
    EXPECT_EQ(m_library->getRepeat(), m_repeat);
    ++m_restarts;
}

void Walk::savePlaylist()
{
    EXPECT_EQ(m_library->savePlayList(u"p"_s), 0);
    m_saved = m_naive.items;
    m_naive.storedName = "pl-p";
    m_isSaved = true;
}

void Walk::loadPlaylist()
{
    const QStringList loaded = m_library->loadPlayList(u"p"_s);
    if (!m_isSaved) {
        EXPECT_TRUE(loaded.isEmpty());
        return;
    }
    EXPECT_EQ(loaded, toQt(m_saved));
    m_naive.load("pl-p", m_saved, static_cast<int>(m_saved.size()), m_shuffle);
    ++m_loads;
}

void Walk::step()
{
    // What touches the medium is rarer, so that the steps in between have something to say.
    constexpr int StepsBetweenWrites = 150;
    ++theSecond;
    if (below(StepsBetweenWrites) == 0) {
        void (Walk::*const writes[])() = {&Walk::store, &Walk::restart, &Walk::restart, &Walk::savePlaylist};
        (this->*writes[below(4)])();
        return;
    }
    if (below(StepsBetweenWrites) == 0) {
        loadPlaylist();
        return;
    }
    void (Walk::*const steps[])() = {&Walk::fill, &Walk::edit, &Walk::edit,      &Walk::edit,
                                     &Walk::move, &Walk::move, &Walk::changeMode};
    (this->*steps[below(7)])();
}

void Walk::compare() const
{
    EXPECT_EQ(m_library->getCurrentPlayingList(), toQt(m_naive.items));
    EXPECT_EQ(naive(m_library->getActiveItem()), m_naive.active());
    EXPECT_EQ(m_library->hasNextItem(), m_naive.hasNext(m_repeat));
    EXPECT_EQ(m_library->hasPrevItem(), m_naive.hasPrevious(m_repeat));
    EXPECT_EQ(m_library->getCurrentPlaylistChangedState(), m_naive.changed);
    const std::string name = m_naive.storedName.value_or("");
    EXPECT_EQ(m_library->getCurrentPlayingListName().toStdString(), name.size() > 3 ? name.substr(3) : "");
    auto flag = m_naive.flags.begin();
    for (const std::string &item : m_naive.items) {
        const QString text = QString::fromStdString(item);
        EXPECT_EQ(m_library->getItemFlag(text), *flag++);
        EXPECT_EQ(m_library->isLastItem(text), m_naive.isLast(item));
        EXPECT_EQ(m_library->getItemIndex(text), m_naive.find(item));
    }
}

} // namespace

TEST(PlayingListRandom, EveryStepIsAsTheNaiveListHasItAcrossRestarts)
{
    theSecond = std::time(nullptr);
    ASSERT_EQ(std::time(nullptr), theSecond) << "the clock stands still between steps";
    // A failure is repeated with --gtest_random_seed and the seed that it printed.
    const int given = GTEST_FLAG_GET(random_seed);
    const unsigned int firstSeed = given != 0 ? static_cast<unsigned int>(given) : 1 + std::random_device()() % 99000;
    int restarts = 0;
    int loads = 0;
    for (unsigned int seed = firstSeed; seed != firstSeed + Seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        // The shuffles of a seed are the same each time, too.
        theSecond = static_cast<std::time_t>(seed) * StepsPerSeed;
        Walk walk(seed);
        for (int step = 0; step < StepsPerSeed; ++step) {
            walk.step();
            walk.compare();
            ASSERT_FALSE(testing::Test::HasFailure()) << "step " << step;
        }
        restarts += walk.restarts();
        loads += walk.loads();
    }
    theSecond = 0;
    EXPECT_GE(restarts, Seeds) << "the walk hardly ever restarted, first seed " << firstSeed;
    EXPECT_GE(loads, Seeds) << "the walk hardly ever loaded, first seed " << firstSeed;
}
