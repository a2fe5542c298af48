// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_PLAYLIST_NAIVELIST_H
#define MARVOLA_TESTS_PLAYLIST_NAIVELIST_H

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The playing list once more, written step by step with loops and no regard for speed, sharing nothing with the real
/// one: what the real one is compared with. The play order is a map from place to index, texts are plain strings.
class NaiveList
{
public:
    using Text = std::optional<std::string>; ///< none: the null text
    using Texts = std::vector<std::string>;
    using Dice = std::function<std::uint32_t()>;

    explicit NaiveList(std::function<Dice()> newDice) : m_newDice(std::move(newDice)) {}

    Texts items;
    std::list<int> flags;
    std::map<int, int> order; ///< places 0, 1, ... without gaps
    int cursor = -1;
    Text storedName;
    bool changed = false;

    int size() const { return static_cast<int>(items.size()); }

    int find(const std::string &text) const
    {
        for (int index = 0; index < size(); ++index) {
            if (items[static_cast<std::size_t>(index)] == text)
                return index;
        }
        return -1;
    }

    int findPlace(int index) const
    {
        for (const auto &[place, held] : order) {
            if (held == index)
                return place;
        }
        return -1;
    }

    Text at(int index) const
    {
        if (index < 0 || index >= size())
            return {};
        return items[static_cast<std::size_t>(index)];
    }

    Text active() const { return order.count(cursor) != 0 ? at(order.at(cursor)) : Text(); }

    void setFlag(const std::string &text, int flag)
    {
        const int index = find(text);
        if (index == -1)
            return;
        auto position = flags.begin();
        std::advance(position, index);
        *position = flag;
    }

    void setOne(const std::string &text)
    {
        if (text.empty())
            return;
        storedName.reset();
        items = {text};
        flags = {0};
        order = {{0, 0}};
        cursor = 0;
    }

    void setSeveral(const Texts &texts, int limit, bool shuffle)
    {
        if (texts.empty())
            return;
        storedName.reset();
        items.clear();
        flags.clear();
        order.clear();
        add(texts, limit, shuffle);
    }

    bool add(const Texts &texts, int limit, bool shuffle)
    {
        bool limitHit = false;
        std::vector<int> fresh;
        Texts accepted;
        for (const std::string &text : texts) {
            bool known = find(text) != -1;
            for (const std::string &other : accepted)
                known = known || other == text;
            if (known)
                continue;
            const int index = size() + static_cast<int>(accepted.size());
            if (index + 1 > limit) {
                limitHit = true;
                break;
            }
            accepted.push_back(text);
            flags.push_back(0);
            fresh.push_back(index);
        }
        if (!accepted.empty()) {
            changed = true;
            for (const std::string &text : accepted)
                items.push_back(text);
            if (shuffle)
                shuffleNumbers(fresh);
            for (const int index : fresh)
                order[static_cast<int>(order.size())] = index;
            if (cursor == -1)
                cursor = 0;
        }
        return !limitHit;
    }

    void load(const std::string &name, const Texts &texts, int claimed, bool shuffle)
    {
        storedName = name;
        items = texts;
        flags.assign(texts.size(), 0);
        std::vector<int> numbers;
        for (int number = 1; number <= claimed; ++number)
            numbers.push_back(number - 1);
        if (shuffle)
            shuffleNumbers(numbers);
        setOrder(numbers);
        cursor = claimed != 0 ? 0 : -1;
    }

    void restore(const std::string &name, const Texts &texts, int current, bool shuffle)
    {
        storedName = name;
        cursor = current;
        for (std::size_t i = 1; i <= texts.size(); ++i) {
            items.push_back(texts[i - 1]);
            flags.push_back(0);
            order[static_cast<int>(order.size())] = static_cast<int>(i) - 1;
        }
        if (!shuffle || cursor == -1)
            return;
        if (findPlace(cursor) == -1) {
            cursor = -1;
            return;
        }
        shuffleOrder();
        std::swap(order[0], order[findPlace(current)]);
        cursor = 0;
    }

    void clear()
    {
        items.clear();
        flags.clear();
        order.clear();
        cursor = -1;
    }

    void editUrl(const std::string &from, const std::string &to)
    {
        if (from.empty() || to.empty() || from == to)
            return;
        for (const std::string &text : items) {
            if (text == to)
                return;
        }
        for (std::string &text : items) {
            if (text == from) {
                text = to;
                return;
            }
        }
    }

    void shuffleChanged(bool on)
    {
        const int before = cursor;
        if (!on) {
            if (cursor != -1)
                cursor = order.count(before) != 0 ? order.at(before) : -1;
            order.clear();
            for (int index = 0; index < size(); ++index)
                order[index] = index;
        } else if (size() == 0) {
            cursor = -1;
        } else {
            shuffleOrder();
            const int place = findPlace(before);
            if (before == -1 || place == -1) {
                cursor = -1;
            } else {
                std::swap(order[0], order[place]);
                cursor = 0;
            }
        }
    }

    void randomizeItems()
    {
        if (size() == 0)
            return;
        const Text noted = active();
        const Dice dice = m_newDice();
        std::vector<int> marks(flags.begin(), flags.end());
        for (int pass = 0; pass < size(); ++pass) {
            const std::size_t other = dice() % items.size();
            std::swap(items[0], items[other]);
            std::swap(marks[0], marks[other]);
        }
        flags.assign(marks.begin(), marks.end());
        if (noted)
            cursor = findPlace(find(*noted));
    }

    void setActive(int index, bool shuffle, bool pickFirst)
    {
        if (index >= size())
            return;
        const int place = findPlace(index);
        cursor = place;
        if (shuffle && pickFirst && place != -1) {
            std::swap(order[0], order[place]);
            cursor = 0;
        }
    }

    Text next(bool repeat, bool shuffle)
    {
        if (size() == 0)
            return {};
        if (cursor == size() - 1 && !repeat)
            return {};
        if (cursor == size() - 1 && shuffle) {
            shuffleOrder();
            cursor = -1;
        }
        cursor = (cursor + 1) % size();
        return active();
    }

    Text previous(bool repeat)
    {
        if (size() == 0 || cursor == -1)
            return {};
        if (cursor == 0 && !repeat)
            return {};
        cursor = cursor == 0 ? size() - 1 : cursor - 1;
        return active();
    }

    bool hasNext(bool repeat) const { return size() != 0 && cursor != -1 && (repeat || cursor != size() - 1); }

    bool hasPrevious(bool repeat) const { return size() != 0 && cursor != -1 && (repeat || cursor != 0); }

    bool isLast(const std::string &text) const
    {
        return order.count(size() - 1) != 0 && at(order.at(size() - 1)) == text;
    }

    bool remove(int index)
    {
        const int n = size();
        if (index >= n)
            return false;
        dropText(*at(index));
        dropFlag(index);
        const int p = findPlace(index);
        std::vector<int> rest;
        for (const auto &[place, held] : order) {
            if (held != index)
                rest.push_back(held > index ? held - 1 : held);
        }
        setOrder(rest);
        changed = true;
        if (p == -1)
            return true;
        if (p < cursor)
            cursor = cursor - 1;
        else if (p == cursor && items.empty())
            cursor = -1;
        else if (p == cursor && p == n - 1)
            cursor = 0;
        else if (p == cursor && p == 0)
            cursor = 0;
        else if (p == cursor)
            cursor = p - 1;
        return true;
    }

    bool move(int index, int step, bool shuffle)
    {
        if (index >= size())
            return false;
        const int target = index + step;
        if (target < 0 || target >= size())
            return true;
        const std::string text = *at(index);
        dropText(text);
        const Text inTheWay = at(target);
        items.insert(inTheWay ? items.begin() + find(*inTheWay) : items.end(), text);
        const int flag = dropFlag(index);
        auto position = flags.begin();
        std::advance(position, target);
        flags.insert(position, flag);
        if (shuffle) {
            const int a = findPlace(target);
            const int b = findPlace(index);
            if (a != -1)
                order[a] = index;
            if (b != -1)
                order[b] = target;
        } else if (cursor == index || cursor == target) {
            cursor = index + target - cursor;
        }
        return true;
    }

private:
    void shuffleNumbers(std::vector<int> &numbers) const
    {
        if (numbers.empty())
            return;
        const Dice dice = m_newDice();
        for (std::size_t pass = 0; pass < numbers.size(); ++pass)
            std::swap(numbers[0], numbers[dice() % numbers.size()]);
    }

    void shuffleOrder()
    {
        std::vector<int> numbers;
        for (const auto &[place, held] : order)
            numbers.push_back(held);
        shuffleNumbers(numbers);
        setOrder(numbers);
    }

    void setOrder(const std::vector<int> &numbers)
    {
        order.clear();
        for (const int number : numbers)
            order[static_cast<int>(order.size())] = number;
    }

    void dropText(const std::string &text)
    {
        Texts rest;
        for (const std::string &other : items) {
            if (other != text)
                rest.push_back(other);
        }
        items = rest;
    }

    int dropFlag(int index)
    {
        auto position = flags.begin();
        std::advance(position, index);
        const int flag = *position;
        flags.erase(position);
        return flag;
    }

    std::function<Dice()> m_newDice;
};

#endif
