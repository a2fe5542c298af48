// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_FAKESESSIONMANAGER_H
#define MARVOLA_TESTS_SUPPORT_FAKESESSIONMANAGER_H

#include <marvola/DataSessionManager.h>

#include <QtCore/QStringList>

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
        return m_log.nextId;
    }
    void closeLink(int id) override { m_log.calls.append(QStringLiteral("close %1").arg(id)); }

    void emitConnected(int id) { Q_EMIT connected(id, m_info); }
    void emitOpenFailed(int id) { Q_EMIT openFailed(id, 0, 0); }
    void emitBroken(int id) { Q_EMIT broken(id, m_info); }

private:
    Log &m_log;
    LinkInfo m_info;
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
