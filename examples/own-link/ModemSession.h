// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MODEMSESSION_H
#define MODEMSESSION_H

#include <marvola/DataSessionManager.h>

#include <QtCore/QHash>
#include <QtCore/QTimer>

/// A link service on a modem that takes one turn of the event loop to dial, and knows the profile "Operator".
class ModemSession : public DataSessionManager
{
    Q_OBJECT

public:
    int openLink(const QString &profileName) override
    {
        const int id = ++m_lastId; // from 1: the id 0 counts as no link
        m_links.insert(id, {profileName, QString()});
        // The answer comes from the event loop, never from within this call.
        QTimer::singleShot(0, this, [this, id] { tellOutcome(id); });
        return id;
    }

    void closeLink(int id) override { m_links.remove(id); }

    int getDeviceInfo(int id, QString &interfaceName, unsigned long *) override
    {
        if (!m_links.contains(id))
            return -1;
        interfaceName = m_links.value(id).interfaceName;
        return 0;
    }

private:
    void tellOutcome(int id)
    {
        if (!m_links.contains(id))
            return; // closed meanwhile
        LinkInfo &link = m_links[id];
        if (link.profileName == QLatin1String("Operator")) {
            link.interfaceName = QStringLiteral("wwan0");
            Q_EMIT connected(id, link);
        } else {
            m_links.remove(id);
            Q_EMIT openFailed(id, 1, 0); // the numbers are the service's own
        }
    }

    QHash<int, LinkInfo> m_links;
    int m_lastId = 0;
};

#endif
