// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"

#include "playlist/ListText.h"
#include "playlist/NaiveList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

using namespace marvola;

namespace {

/// What the random walk may do: keep to what players do, or also leave copies of texts, orders with gaps and cursors
/// out of range behind.
enum class Manners { Good, Bad };

constexpr int Seeds = 60;
constexpr int StepsPerSeed = 2000;

QStringList toQt(const NaiveList::Texts &texts)
{
    QStringList list;
    for (const std::string &text : texts)
        list.append(QString::fromStdString(text));
    return list;
}

std::string shownNaively(const NaiveList &list)
{
    std::string flags;
    for (const int flag : list.flags)
        flags += (flags.empty() ? "" : " ") + std::to_string(flag);
    std::string order;
    for (const auto &[place, index] : list.order)
        order += (order.empty() ? "" : " ") + std::to_string(index);
    return ::shown(toQt(list.items)) + " | " + flags + " | " + order + " | " + std::to_string(list.cursor);
}

NaiveList::Text naive(const QString &text)
{
    return text.isNull() ? NaiveList::Text() : NaiveList::Text(text.toStdString());
}

/// Both lists, side by side through the same steps.
class Walk
{
public:
    Walk(unsigned int seed, Manners manners)
        : m_random(seed)
        , m_manners(manners)
        , m_list([this] { return Draw(dice()); })
        , m_naive([this] { return dice(); })
    {
    }

    void step();
    void compare() const;
    int largest() const { return m_largest; }

private:
    std::function<quint32()> dice() const
    {
        auto generator = std::make_shared<std::minstd_rand>(m_diceSeed);
        return [generator] { return static_cast<quint32>((*generator)()); };
    }

    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(m_random); }
    bool coin() { return below(2) == 0; }
    std::string text() { return std::string(1, static_cast<char>('a' + below(20))); }
    NaiveList::Texts texts(int most);
    NaiveList::Texts distinctTexts(int most);
    int index() { return below(m_list.count() + 2); }

    void fill();
    void edit();
    void move();
    void reorder();

    std::mt19937 m_random;
    Manners m_manners;
    unsigned int m_diceSeed = 1;
    bool m_shuffle = false;
    bool m_repeat = false;
    int m_largest = 0;
    CurrentList m_list;
    NaiveList m_naive;
};

NaiveList::Texts Walk::texts(int most)
{
    NaiveList::Texts texts(static_cast<std::size_t>(below(most + 1)));
    std::generate(texts.begin(), texts.end(), [this] { return text(); });
    return texts;
}

NaiveList::Texts Walk::distinctTexts(int most)
{
    NaiveList::Texts list = texts(most);
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
    std::shuffle(list.begin(), list.end(), m_random);
    return list;
}

void Walk::fill()
{
    const Shuffle shuffle = shuffleOf(m_shuffle);
    const NaiveList::Texts some = texts(6);
    const int limit = below(20);
    switch (below(m_manners == Manners::Good ? 12 : 14)) {
    case 0:
        m_list.setItem(toQt(some).value(0));
        m_naive.setOne(some.empty() ? std::string() : some.front());
        break;
    case 1:
        m_list.setItems(toQt(some), static_cast<quint16>(limit), shuffle);
        m_naive.setSeveral(some, limit, m_shuffle);
        break;
    case 2: {
        const NaiveList::Texts stored = distinctTexts(8);
        const auto count = static_cast<int>(stored.size());
        m_list.load(QStringLiteral("pl-x"), toQt(stored), count, shuffle);
        m_naive.load("pl-x", stored, count, m_shuffle);
        break;
    }
    case 3: {
        const NaiveList::Texts stored = distinctTexts(8);
        const int current = below(static_cast<int>(stored.size()) + 3) - 1;
        m_list.clear();
        m_naive.clear();
        m_list.restore(QStringLiteral("pl-y"), toQt(stored), current, shuffle);
        m_naive.restore("pl-y", stored, current, m_shuffle);
        break;
    }
    case 12: {
        const int claimed = static_cast<int>(some.size()) + below(4);
        m_list.load(QStringLiteral("pl-z"), toQt(some), claimed, shuffle);
        m_naive.load("pl-z", some, claimed, m_shuffle);
        break;
    }
    case 13:
        if (m_list.count() < 30) {
            const int current = below(12) - 1;
            m_list.restore(QStringLiteral("pl-z"), toQt(some), current, shuffle);
            m_naive.restore("pl-z", some, current, m_shuffle);
        }
        break;
    default:
        EXPECT_EQ(m_list.append(toQt(some), static_cast<quint16>(limit), shuffle), m_naive.add(some, limit, m_shuffle));
    }
}

void Walk::edit()
{
    const int at = index();
    switch (below(5)) {
    case 0:
        EXPECT_EQ(m_list.remove(at), m_naive.remove(at));
        break;
    case 1:
        EXPECT_EQ(m_list.moveUp(at, shuffleOf(m_shuffle)), m_naive.move(at, -1, m_shuffle));
        break;
    case 2:
        EXPECT_EQ(m_list.moveDown(at, shuffleOf(m_shuffle)), m_naive.move(at, +1, m_shuffle));
        break;
    case 3: {
        const std::string from = text();
        const std::string to = text();
        m_list.editUrl(QString::fromStdString(from), QString::fromStdString(to));
        m_naive.editUrl(from, to);
        break;
    }
    default: {
        const std::string item = text();
        const int flag = below(5);
        m_list.setFlag(QString::fromStdString(item), static_cast<MP_MEDIA_FILE_TYPE_T>(flag));
        m_naive.setFlag(item, flag);
    }
    }
}

void Walk::move()
{
    switch (below(4)) {
    case 0: {
        const int at = index();
        const bool pickFirst = coin();
        m_list.setActive(at, shuffleOf(m_shuffle), pickFirstOf(pickFirst));
        m_naive.setActive(at, m_shuffle, pickFirst);
        break;
    }
    case 1:
        EXPECT_EQ(naive(m_list.previous(repeatOf(m_repeat))), m_naive.previous(m_repeat));
        break;
    default:
        EXPECT_EQ(naive(m_list.next(repeatOf(m_repeat), shuffleOf(m_shuffle))), m_naive.next(m_repeat, m_shuffle));
    }
}

void Walk::reorder()
{
    switch (below(6)) {
    case 0: {
        const bool before = m_shuffle;
        m_shuffle = !m_shuffle;
        m_list.setShuffle(shuffleOf(before), shuffleOf(m_shuffle));
        m_naive.shuffleChanged(m_shuffle);
        break;
    }
    case 1:
        m_repeat = !m_repeat;
        break;
    case 2:
        m_list.randomizeItems();
        m_naive.randomizeItems();
        break;
    case 3:
        if (below(10) == 0) {
            m_list.clear();
            m_naive.clear();
        }
        break;
    case 4:
        m_list.setChanged(false);
        m_naive.changed = false;
        break;
    default:
        m_list.setShuffle(shuffleOf(m_shuffle), shuffleOf(m_shuffle));
    }
}

void Walk::step()
{
    m_diceSeed = static_cast<unsigned int>(m_random());
    switch (below(8)) {
    case 0:
    case 1:
        fill();
        break;
    case 2:
    case 3:
    case 4:
        edit();
        break;
    case 5:
    case 6:
        move();
        break;
    default:
        reorder();
    }
    m_largest = std::max(m_largest, m_list.count());
}

void Walk::compare() const
{
    EXPECT_EQ(shown(m_list), shownNaively(m_naive));
    EXPECT_EQ(m_list.isChanged(), m_naive.changed);
    EXPECT_EQ(naive(m_list.storedName()), m_naive.storedName);
    EXPECT_EQ(naive(m_list.active()), m_naive.active());
    for (const bool repeat : {false, true}) {
        EXPECT_EQ(m_list.hasNext(repeatOf(repeat)), m_naive.hasNext(repeat));
        EXPECT_EQ(m_list.hasPrevious(repeatOf(repeat)), m_naive.hasPrevious(repeat));
    }
    for (const char letter : {'a', 'f', 'p'}) {
        const std::string text(1, letter);
        EXPECT_EQ(m_list.isLast(QString::fromStdString(text)), m_naive.isLast(text));
        EXPECT_EQ(m_list.indexOf(QString::fromStdString(text)), m_naive.find(text));
    }
    EXPECT_GE(m_list.flags().size(), m_list.count());
    EXPECT_GE(m_list.cursor(), -1);
    if (m_manners == Manners::Bad)
        return;
    QList<quint32> sorted = m_list.order();
    std::sort(sorted.begin(), sorted.end());
    QList<quint32> everyIndex(m_list.count());
    std::iota(everyIndex.begin(), everyIndex.end(), 0U);
    EXPECT_EQ(shownNumbers(sorted), shownNumbers(everyIndex));
    EXPECT_EQ(m_list.flags().size(), m_list.count());
}

void walk(Manners manners)
{
    // A failure is repeated with --gtest_random_seed and the seed that it printed.
    const int given = GTEST_FLAG_GET(random_seed);
    const unsigned int firstSeed = given != 0 ? static_cast<unsigned int>(given) : 1 + std::random_device()() % 99000;
    int largest = 0;
    for (unsigned int seed = firstSeed; seed != firstSeed + Seeds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Walk walk(seed, manners);
        for (int step = 0; step < StepsPerSeed; ++step) {
            walk.step();
            walk.compare();
            ASSERT_FALSE(testing::Test::HasFailure()) << "step " << step;
        }
        largest = std::max(largest, walk.largest());
    }
    EXPECT_GE(largest, 10) << "the walk never got far, first seed " << firstSeed;
}

} // namespace

TEST(CurrentListRandom, EveryStepIsAsTheNaiveListHasIt)
{
    walk(Manners::Good);
}

TEST(CurrentListRandom, CopiesGapsAndLeftoversToo)
{
    walk(Manners::Bad);
}
