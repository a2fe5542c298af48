// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SCAN_DOORBELL_H
#define MARVOLA_TESTS_SCAN_DOORBELL_H

#include <QtCore/QObject>

#include <atomic>

/// An object of one thread that another thread rings, and waits until it has rung.
class Doorbell : public QObject
{
    Q_OBJECT

public:
    void ringAndWait() { QMetaObject::invokeMethod(this, "note", Qt::BlockingQueuedConnection); }
    bool hasRung() const { return m_rung; }

    Q_INVOKABLE void note() { m_rung = true; }

private:
    std::atomic<bool> m_rung = false;
};

#endif
