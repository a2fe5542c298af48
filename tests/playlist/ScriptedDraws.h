// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_PLAYLIST_SCRIPTEDDRAWS_H
#define MARVOLA_TESTS_PLAYLIST_SCRIPTEDDRAWS_H

#include "playlist/RandomOrder.h"

#include <memory>
#include <utility>
#include <vector>

/// A source of random numbers that a test writes down beforehand, and that counts how it is used. Each reseeding starts
/// the script anew, as reseeding from one second's clock does; a script that is used up goes on with zeros.
class ScriptedDraws
{
public:
    explicit ScriptedDraws(std::vector<quint32> script) : m_state(std::make_shared<State>())
    {
        m_state->script = std::move(script);
    }

    marvola::Reseed reseed() const
    {
        return [state = m_state]() -> marvola::Draw {
            ++state->reseeds;
            state->next = 0;
            return [state] {
                ++state->draws;
                return state->next < state->script.size() ? state->script[state->next++] : 0;
            };
        };
    }

    int reseeds() const { return m_state->reseeds; }
    int draws() const { return m_state->draws; }

private:
    struct State
    {
        std::vector<quint32> script;
        std::size_t next = 0;
        int reseeds = 0;
        int draws = 0;
    };
    std::shared_ptr<State> m_state;
};

#endif
