// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKMANAGER_DEACTIVATIONS_H
#define MARVOLA_NETWORKMANAGER_DEACTIVATIONS_H

#include "NetworkService.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtDBus/QDBusPendingCallWatcher>

#include <chrono>
#include <memory>
#include <vector>

namespace marvola {

/// The taking down of what links that are closed or given up have activated.
///
/// It lasts until the service has answered, because the service looks up who asks, and refuses when the asker is gone.
class Deactivations : public QObject
{
    Q_OBJECT

public:
    /// \a patience is how long the destructor waits at most.
    Deactivations(const NetworkService &service, std::chrono::milliseconds patience);
    ~Deactivations() override;

    void deactivate(const QString &activeConnection);
    /// Takes down what the call \a activation brings up; nobody else has seen its answer.
    void deactivateOnceActive(std::unique_ptr<QDBusPendingCallWatcher> activation);

    /// Tells whether \a activeConnection is being taken down from here, whatever the service still says of it.
    bool isGoing(const QString &activeConnection) const { return m_going.contains(activeConnection); }
    /// Tells whether something is yet to come up only to be taken down.
    bool isExpectingActivations() const { return !m_activations.empty(); }

Q_SIGNALS:
    /// isExpectingActivations() no longer holds.
    void activationsArrived();

private:
    void activationAnswered(QDBusPendingCallWatcher *activation);

    NetworkService m_service;
    std::chrono::milliseconds m_patience;
    std::vector<std::unique_ptr<QDBusPendingCallWatcher>> m_activations;
    QHash<QString, QDBusPendingCall> m_going;
};

} // namespace marvola

#endif
