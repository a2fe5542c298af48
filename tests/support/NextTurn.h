// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_NEXTTURN_H
#define MARVOLA_TESTS_SUPPORT_NEXTTURN_H

#include <QtCore/QTimer>

#include <functional>
#include <utility>

/// Has \a event happen once in the next turn of the event loop, unless \a context is gone by then.
inline void inNextTurn(QObject &context, std::function<void()> event)
{
    auto *timer = new QTimer(&context);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, &context, std::move(event));
    timer->start(0);
}

#endif
