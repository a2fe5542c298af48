// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SCAN_REFRESHFIXTURE_H
#define MARVOLA_TESTS_SCAN_REFRESHFIXTURE_H

#include "InfoBytes.h"
#include "scan/IndexQueries.h"
#include "scan/RefreshPlan.h"
#include "support/TableEngine.h"
#include "support/TestPhone.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <vector>

/// Keeps the progress of refreshes, from any thread, and waits for it.
class ProgressLog
{
public:
    void add(int percent)
    {
        const std::lock_guard lock(m_mutex);
        m_values.push_back(percent);
        m_changed.notify_all();
    }
    std::vector<int> values() const
    {
        const std::lock_guard lock(m_mutex);
        return m_values;
    }
    /// Waits until \a percent came \a times times; fails the test after a while.
    void waitFor(int percent, int times = 1)
    {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_changed.wait_for(lock, std::chrono::seconds(60),
                                       [&] { return std::count(m_values.begin(), m_values.end(), percent) >= times; }))
            << "no progress of " << percent;
    }

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<int> m_values;
};

/// A phone with an engine, and what a library would refresh it with.
class RefreshFixture : public testing::Test
{
protected:
    marvola::RefreshPlan plan()
    {
        using namespace Qt::StringLiterals;
        return {phone.listFile(), phone.infoFile(), phone.phone(), phone.card1(), phone.card2(), searchOrder,
                u"Phone"_s,       u"Card"_s,        u"<U>"_s,      100,           &engine};
    }
    void addFiles(const QString &folder, int count)
    {
        for (int i = 0; i < count; ++i)
            TestPhone::addFile(folder + QStringLiteral("/%1.mp3").arg(i, 3, 10, QLatin1Char('0')));
    }
    QStringList indexed() const { return marvola::readInfoFile(phone.infoFile(), QStringLiteral("media"), {}); }
    QStringList group(const char *name) const
    {
        return marvola::readListGroup(phone.listFile(), QString::fromLatin1(name));
    }

    TestPhone phone;
    TableEngine engine;
    QStringList searchOrder{QStringLiteral("Phone"), QStringLiteral("Card")};
    ProgressLog progress;
};

#endif
