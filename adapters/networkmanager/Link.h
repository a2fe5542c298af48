// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKMANAGER_LINK_H
#define MARVOLA_NETWORKMANAGER_LINK_H

#include "Answers.h"
#include "Deactivations.h"
#include "NetworkService.h"
#include "OpenErrors.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtDBus/QDBusPendingCallWatcher>

#include <chrono>
#include <memory>
#include <optional>

namespace marvola {

/// One link on its way from a profile's id to an active connection with a network interface, and until it is lost.
///
/// After construction exactly one of opened() and failed() comes, unless the link is deleted before, and after opened()
/// at most one lost(). A link undoes nothing: whoever deletes it asks ownsActivation() and takePendingActivation()
/// first.
class Link : public QObject
{
    Q_OBJECT

public:
    /// The time limit runs from here on.
    Link(const NetworkService &service, const Deactivations &deactivations, const QString &profileName,
         std::chrono::milliseconds limit);

    /// Starts looking for the profile; only once.
    void start();
    bool isStarted() const { return m_stage != Stage::Waiting; }
    /// From start() until the service knows of the activation. Another link of the profile that started meanwhile would
    /// activate it a second time.
    bool isResolving() const { return m_stage == Stage::Searching || m_stage == Stage::Activating; }

    const QString &profileName() const { return m_profileName; }
    const QString &interfaceName() const { return m_interfaceName; }
    uint deviceType() const { return m_deviceType; }

    /// The active connection that carries the link; empty while there is none.
    const QString &activeConnection() const { return m_active; }
    bool ownsActivation() const { return m_owned; }
    void takeOwnership() { m_owned = true; }
    /// The call that was sent to activate the profile, while its answer has not been seen; null when there is none. It
    /// is handed over and not copied, because Qt tells an answer that has come in only to who was watching by then.
    std::unique_ptr<QDBusPendingCallWatcher> takePendingActivation();

    /// News from the bus: \a sender is the unique name that they come from.
    void activeConnectionChanged(const QString &sender, const QString &path, uint state);
    void deviceChanged(const QString &sender, const QString &path, uint state, uint reason);
    void serviceLeft(const QString &uniqueName);
    void busLost();

Q_SIGNALS:
    /// isResolving() no longer holds.
    void resolved();
    void opened();
    void failed(NetworkManagerSession::OpenError error, unsigned short detail);
    void lost();

private:
    enum class Stage { Waiting, Searching, Activating, ComingUp, Naming, Open, Ended };

    using Answer = void (Link::*)(const QDBusMessage &answer);
    void ask(const QDBusPendingCall &call, Answer then);
    void findProfile();
    void consider(const Profile &profile, const QString &uniqueName);
    void findActivation();
    /// Tells whether the active connection \a path is the profile's and can be shared; it is then the link's.
    bool shares(const QString &path, const QDBusMessage &properties);
    void activate();
    void activationAnswered();
    void carriedBy(const QString &active, const QString &uniqueName);
    void stateRead(const QDBusMessage &properties);
    void follow(uint state);
    void findInterface();
    void deviceFound(const QDBusMessage &activeProperties);
    void interfaceFound(const QDBusMessage &deviceProperties);
    void open();
    void goneDown();
    void forgetActivation();
    bool waitsForSecrets() const;
    void fail(OpenError error);
    void end(OpenError error, uint reason = 0);

    NetworkService m_service;
    const Deactivations &m_deactivations;
    QString m_profileName;
    QTimer m_limit;
    Stage m_stage = Stage::Waiting;

    std::optional<Profile> m_profile;
    std::unique_ptr<QDBusPendingCallWatcher> m_activation;
    QString m_active;
    QString m_uniqueName; ///< the service's on the bus, from its answers
    bool m_owned = false;

    QString m_device;
    uint m_deviceType = 0;
    QString m_interfaceName;
    QString m_askingDevice; ///< waits for a secret
    QString m_failedDevice;
    uint m_reason = 0; ///< why m_failedDevice failed
};

} // namespace marvola

#endif
