// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NET_DATACONNECTION_H
#define MARVOLA_NET_DATACONNECTION_H

#include <marvola/DataSessionManager.h>

#include <memory>

namespace marvola {

/// The one packet-data link of the library: its id, negative when there is none, and the link service that it is from.
///
/// Events of the link service that carry another id than the link's are not for it, and change nothing.
class DataConnection
{
public:
    /// Takes the link service over.
    explicit DataConnection(std::unique_ptr<DataSessionManager> manager);
    /// Closes the link when its id is greater than 0, then deletes the link service.
    ~DataConnection();
    DataConnection(const DataConnection &) = delete;
    DataConnection &operator=(const DataConnection &) = delete;

    DataSessionManager &manager() { return *m_manager; }
    int linkId() const { return m_linkId; }
    bool isWaiting() const { return m_waiting; }

    /// Starts opening a link and waits for its outcome; the id is what the link service gave, negative or not.
    void startOpening(const QString &profileName);
    void linkConnected(int id);
    void linkOpenFailed(int id);
    /// Tells whether \a id is the link's.
    bool isLink(int id) const { return id == m_linkId; }
    void forgetLink() { m_linkId = NoLink; }

private:
    static constexpr int NoLink = -1;

    std::unique_ptr<DataSessionManager> m_manager;
    int m_linkId = NoLink;
    bool m_waiting = false;
};

} // namespace marvola

#endif
