// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_FAKESESSIONMANAGER_H
#define MARVOLA_TESTS_SUPPORT_FAKESESSIONMANAGER_H

#include <marvola/DataSessionManager.h>

#include <QtCore/QStringList>

#include <functional>

/// A link service driven by hand: it notes its calls in a log that outlives it, and opens what it is told to.
class FakeSessionManager : public DataSessionManager
{
    Q_OBJECT

public:
    struct Log
    {
        QStringList calls;
        FakeSessionManager *last = nullptr; ///< the one made last; null when it is gone
        int nextId = 1;
        int deviceResult = 0;                             ///< what getDeviceInfo() gives
        QString interfaceName = QStringLiteral("ppp0");   ///< what it sets, when that is 0
        std::function<void(FakeSessionManager &)> inOpen; ///< runs inside openLink(), before it returns
        bool brokenInClose = false;                       ///< closeLink() tells that the link is broken
        std::function<void()> inDeviceInfo;               ///< runs inside getDeviceInfo(), before it returns
    };

    explicit FakeSessionManager(Log &log) : m_log(log)
    {
        m_log.last = this;
        m_log.calls.append(QStringLiteral("made"));
    }
    ~FakeSessionManager() override
    {
        m_log.last = nullptr;
        m_log.calls.append(QStringLiteral("deleted"));
    }

    void init(bool flag) override { m_log.calls.append(flag ? QStringLiteral("init 1") : QStringLiteral("init 0")); }
    int openLink(const QString &profileName) override
    {
        m_log.calls.append(QStringLiteral("open ") + profileName);
        if (m_log.inOpen)
            m_log.inOpen(*this);
        return leave(m_log.nextId);
    }
    void closeLink(int id) override
    {
        m_log.calls.append(QStringLiteral("close %1").arg(id));
        if (m_log.brokenInClose)
            emitBroken(id);
    }
    int getDeviceInfo(int id, QString &interfaceName, unsigned long *value) override
    {
        m_log.calls.append(QStringLiteral("device %1").arg(id));
        if (m_log.inDeviceInfo)
            m_log.inDeviceInfo();
        if (m_log.deviceResult == 0) {
            interfaceName = m_log.interfaceName;
            *value = 1;
        }
        return leave(m_log.deviceResult);
    }

    void emitConnected(int id)
    {
        Q_EMIT connected(id, m_info);
        leave(id);
    }
    void emitOpenFailed(int id)
    {
        Q_EMIT openFailed(id, 0, 0);
        leave(id);
    }
    void emitBroken(int id)
    {
        Q_EMIT broken(id, m_info);
        leave(id);
    }

private:
    // A real service goes on with its own members after it was called or has told something, so it must still be there.
    int leave(int result)
    {
        ++m_left;
        return result;
    }

    Log &m_log;
    LinkInfo m_info;
    int m_left = 0;
};

/// Makes DataSessionManager::create() give fakes with one log, as long as it lives.
class FakeSessionFactory
{
public:
    FakeSessionFactory()
    {
        DataSessionManager::setFactory([this] { return new FakeSessionManager(log); });
    }
    ~FakeSessionFactory() { DataSessionManager::setFactory({}); }
    FakeSessionFactory(const FakeSessionFactory &) = delete;
    FakeSessionFactory &operator=(const FakeSessionFactory &) = delete;

    FakeSessionManager::Log log;
};

#endif
