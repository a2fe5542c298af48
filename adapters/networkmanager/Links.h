// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKMANAGER_LINKS_H
#define MARVOLA_NETWORKMANAGER_LINKS_H

#include "Deactivations.h"
#include "Link.h"
#include "NetworkService.h"

#include <marvola/DataSessionManager.h>

#include <QtCore/QObject>
#include <QtDBus/QDBusMessage>

#include <chrono>
#include <map>
#include <memory>

namespace marvola {

/// The links of a session by id, and the news from the bus that they live on.
///
/// Its signals come with nothing of a link or of a call on the stack, so that their slots may do anything, deleting
/// included. An id whose failure or loss has been told is forgotten.
class Links : public QObject
{
    Q_OBJECT

public:
    Links(const NetworkService &service, std::chrono::milliseconds patience);
    ~Links() override;

    const NetworkService &service() const { return m_service; }

    std::chrono::milliseconds timeLimit = NetworkManagerSession::DefaultTimeLimit;

    /// \return the id, or a negative number when all ids have been given
    int open(const QString &profileName);
    void close(int id);
    /// The link \a id, if its connected() was told and it is not known to be lost; else null.
    const Link *openLink(int id) const;

Q_SIGNALS:
    void connected(int id, LinkInfo &info);
    void openFailed(int id, unsigned short error, unsigned short detail);
    void broken(int id, LinkInfo &info);
    /// For this class itself, which hears it later.
    void closedWhileOpening(int id);

private Q_SLOTS:
    void onActiveConnectionChanged(const QDBusMessage &signal);
    void onDeviceChanged(const QDBusMessage &signal);
    void onBusLost();

private:
    struct Entry
    {
        std::unique_ptr<Link> link;
        bool isTold = false; ///< connected() has come
    };

    void listen();
    void follow(int id, Link &link);
    void tellOpened(int id);
    void tellFailed(int id, unsigned short error, unsigned short detail);
    void tellLost(int id);
    std::unique_ptr<Link> take(int id);
    void release(Link &link);
    void startWaiting();
    bool mayStart(int id, const Link &link) const;

    NetworkService m_service;
    Deactivations m_deactivations;
    std::map<int, Entry> m_links;
    int m_lastId = 0;
};

} // namespace marvola

#endif
