// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SOAK_PLAYER_H
#define MARVOLA_TESTS_SOAK_PLAYER_H

#include "support/TestPhone.h"

#include <marvola/FFmpegPlayerEngine.h>
#include <marvola/MP_MyLibrary.h>

#include <QtCore/QMap>

#include <atomic>
#include <memory>
#include <random>

/// A player that does what its user may do, in any order, with a card that comes and goes; and that knows what the
/// library must have kept.
class Player
{
public:
    /// \a samples is a folder of media files, for the phone and for the card.
    Player(const QString &samples, std::uint_fast32_t seed);
    ~Player();

    /// Does a few things. \return what did not hold; empty when all did
    QString playRound();

private:
    using Step = QString (Player::*)();

    QString refresh();
    QString cancelRefresh();
    QString save();
    QString load();
    QString rename();
    QString remove();
    QString edit();
    QString bookmark();
    QString storeAndRestart();
    QString pullCard();
    QString returnCard();
    QString returnOtherCard();

    int draw(int below) { return static_cast<int>(m_random() % static_cast<unsigned>(below)); }
    QString anyName() { return QStringLiteral("list %1").arg(draw(8)); }
    bool isCardIn() const;
    bool waitForRefresh() const;
    QString verifyLists() const;
    void open();

    TestPhone m_phone;
    FFmpegPlayerEngine m_engine;
    std::mt19937 m_random;
    std::unique_ptr<MP_MyLibrary> m_library;
    std::atomic<int> m_progress = -1;
    QMap<QString, QStringList> m_lists; ///< by name, what was saved
    QStringList m_found;                ///< by the last refresh
};

#endif
