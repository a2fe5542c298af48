// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NET_DATACONNECTION_H
#define MARVOLA_NET_DATACONNECTION_H

#include "net/LinkStatusFile.h"

#include <marvola/DataSessionManager.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <chrono>
#include <functional>
#include <memory>

namespace marvola {

/// What is told about the link; the values are the player's.
enum class LinkStatus : int {
    Failed = 2, ///< the wait ended without a link
    Opening = 3,
    Broken = 4,
};

/// What the link service tells about a link.
enum class LinkEvent { Connected, OpenFailed, Broken };

/// Whom the connection works for. Both are called until close() and never after it.
struct LinkOwner
{
    std::function<void(LinkStatus)> statusChanged;
    std::function<void(const QString &)> profileChosen; ///< the user chose this network profile
};

/// The one packet-data link of the library: its id, negative when there is none, and the link service that it is from.
///
/// Owned by a shared pointer, because setUp() runs the application's events: whatever handles them may call back, or
/// close() the connection and let go of it, while the call still runs. Used by one thread.
class DataConnection : public std::enable_shared_from_this<DataConnection>
{
public:
    /// Keeps the thread from running on for that long.
    using Sleep = std::function<void(std::chrono::microseconds)>;

    /// Takes the link service over. The name of the link's network interface goes to \a statusFile. The wait for a link
    /// uses \a sleep between two looks at the events.
    DataConnection(std::unique_ptr<DataSessionManager> manager, LinkOwner owner,
                   QString statusFile = LinkStatusFileName, Sleep sleep = sleepFor);
    /// As close().
    ~DataConnection();
    DataConnection(const DataConnection &) = delete;
    DataConnection &operator=(const DataConnection &) = delete;

    /// The link service; not after close().
    DataSessionManager &manager() { return *m_manager; }
    int linkId() const { return m_linkId; }

    /// Opens a link unless there is one, with \a profileName or, if that is empty, a profile that the user chooses, and
    /// processes the application's events until its outcome is known. There is no time limit.
    ///
    /// Called again while it runs, it is true when the link already has an id, whether open or not yet. Otherwise it
    /// opens a link anew, and the outcome of that ends both calls; false without a try inside the link service's
    /// openLink() and from MaxCallDepth calls on.
    /// \return whether there is a link; false when closed meanwhile
    [[nodiscard]] bool setUp(const QString &profileName);

    /// Takes an event of the link service. One whose id is not the link's changes nothing; one that comes before
    /// openLink() has given the id waits until it has.
    void handle(LinkEvent event, int id);

    /// Closes the link when its id is greater than 0 and deletes the link service: at once, or when a function of the
    /// service is running, after that. Everything is refused from now on.
    void close();

    static constexpr int MaxCallDepth = 8;
    static constexpr std::chrono::microseconds PollInterval = std::chrono::microseconds(250000);

private:
    static constexpr int NoLink = -1;

    static void sleepFor(std::chrono::microseconds time);

    struct EarlyEvent
    {
        LinkEvent event;
        int id;
    };
    class ServiceCall;

    [[nodiscard]] bool startOpening(const QString &profileName);
    [[nodiscard]] bool startOpeningWithChosenProfile();
    void openLink(const QString &profileName);
    void waitForOutcome();
    void handleEarlyEvents();
    void apply(LinkEvent event, int id);
    [[nodiscard]] bool conclude();
    void recordInterface();
    void linkBroken(int id);
    void report(LinkStatus status) const;
    void closeLink(int id);

    std::unique_ptr<DataSessionManager> m_manager;
    LinkOwner m_owner;
    QString m_statusFile;
    Sleep m_sleep;
    QList<EarlyEvent> m_earlyEvents;
    int m_linkId = NoLink;
    int m_callDepth = 0;    ///< calls of setUp() that are running
    int m_serviceDepth = 0; ///< calls of the link service, or from it, that are running
    bool m_isWaiting = false;
    bool m_isInOpenLink = false;
    bool m_isClosed = false;
};

} // namespace marvola

#endif
