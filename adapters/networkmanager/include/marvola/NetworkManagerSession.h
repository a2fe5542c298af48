// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKMANAGERSESSION_H
#define MARVOLA_NETWORKMANAGERSESSION_H

#include <marvola/DataSessionManager.h>
#include <marvola/NetworkManagerExport.h>

#include <QtCore/QStringList>

#include <chrono>
#include <memory>

QT_FORWARD_DECLARE_CLASS(QDBusConnection)

namespace marvola {
class Links;
}

/// A link service on NetworkManager's D-Bus interface. A link is a connection profile of NetworkManager, named by its
/// id as people see it ("Operator GPRS"), brought up.
///
/// Nothing but profileNames() and the destructor waits for an answer: all else is sent and returns, and every signal
/// comes from the event loop of the thread that made the session, which is the one to call it from. After an id,
/// exactly one of connected() and openFailed() follows, however the service behaves: within timeLimit() at the latest.
/// No signal comes from inside a call, and a session may be deleted in a slot of its signals. Qt runs a thread of its
/// own for D-Bus; nothing of this class runs there.
///
/// A profile that is up or coming up already, through whomever, is shared and not activated again, because
/// NetworkManager would first take it down for everybody. Closing a link takes down only what this session activated,
/// and only when no other link of the session is on it. Where several profiles bear one id, the one with the smallest
/// UUID is taken.
class MARVOLA_NETWORKMANAGER_EXPORT NetworkManagerSession : public DataSessionManager
{
    Q_OBJECT

public:
    /// The first number of openFailed(). The second is NetworkManager's reason for a change of the device's state
    /// (NMDeviceStateReason) with ActivationFailed and SecretsRejected, as far as it gave one, else 0.
    enum OpenError : unsigned short {
        ServiceMissing = 1,    ///< nothing on the bus bears the service's name
        ServiceVanished = 2,   ///< the service left the bus during the opening
        BusUnavailable = 3,    ///< there is no connection to the bus, or it was lost
        ProfileNotFound = 4,   ///< no profile that this user may see has that id
        NoDevice = 5,          ///< no device is there that the profile fits
        NotPermitted = 6,      ///< the service does not let this user do that
        Refused = 7,           ///< the service refused for another reason
        ActivationFailed = 8,  ///< the device was tried and failed, or was taken away
        SecretsRejected = 9,   ///< a password, PIN or other secret is wrong, or missing, if only after timeLimit()
        TimedOut = 10,         ///< the link was not up within timeLimit(); the attempt was given up
        UnexpectedAnswer = 11, ///< the service's answer made no sense
        Closed = 12            ///< closeLink() came before the link was up
    };

    /// How long an opening may take unless set.
    static constexpr std::chrono::milliseconds DefaultTimeLimit = std::chrono::seconds(60);
    /// How long profileNames() and the destructor wait at most for a service that does not answer.
    static constexpr std::chrono::milliseconds DefaultPatience = std::chrono::seconds(2);

    /// A session with NetworkManager on the system bus.
    explicit NetworkManagerSession(QObject *parent = nullptr);
    /// A session with the service called \a serviceName on \a bus. (Who calls this links Qt6::DBus.)
    NetworkManagerSession(const QDBusConnection &bus, const QString &serviceName, QObject *parent = nullptr);
    /// Closes every link, without a signal. Waits, at most DefaultPatience, until the service has taken notice: it
    /// refuses the request of a program that is gone, and would keep the link up.
    ~NetworkManagerSession() override;

    /// How long an opening may take, from openLink() on. Setting it is for links opened from then on; 0 or less gives
    /// each up as soon as the event loop runs.
    std::chrono::milliseconds timeLimit() const;
    /// Sets how long an opening may take.
    void setTimeLimit(std::chrono::milliseconds limit);

    /// Starts bringing up the profile whose id is \a profileName and returns at once.
    /// \return an id greater than 0 that this session never gave before. It is never negative: what cannot be opened
    /// ends in openFailed().
    int openLink(const QString &profileName) override;

    /// Closes the link \a id: one that is open without a further signal; one that is being opened with openFailed() and
    /// Closed, so that whoever waits for it is not left waiting. Any other id is ignored.
    void closeLink(int id) override;

    /// Gives the name of the network interface with the addresses (for a modem that is "wwan0", not its serial port) of
    /// a link since its connected(), and in \a value, unless it is null, NetworkManager's number for the kind of device
    /// (NMDeviceType: 1 Ethernet, 2 Wi-Fi, 8 modem; 0 when unknown).
    /// \return 0, or -1 when the link is not open or its interface is not known
    int getDeviceInfo(int id, QString &interfaceName, unsigned long *value) override;

    /// The ids of all profiles, sorted and each once, for a chooser. Waits for the service, at most \a patience, and
    /// gives what was read until then.
    QStringList profileNames(std::chrono::milliseconds patience = DefaultPatience) const;

private:
    std::unique_ptr<marvola::Links> d;
};

#endif
