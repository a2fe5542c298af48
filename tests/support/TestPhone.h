// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_TESTPHONE_H
#define MARVOLA_TESTS_SUPPORT_TESTPHONE_H

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

/// A phone in a temporary directory: phone memory, two cards and a place for settings, all empty, with the environment
/// naming them. The environment is as before when it goes.
class TestPhone
{
public:
    TestPhone()
    {
        EXPECT_TRUE(m_dir.isValid());
        for (const char *name : {"phone", "card1", "card2", "write"})
            EXPECT_TRUE(QDir(m_dir.path()).mkdir(QString::fromLatin1(name)));
        m_variables[0].set(phone());
        m_variables[1].set(card1());
        m_variables[2].set(card2());
        m_variables[3].set(write());
    }

    QString path(const QString &name) const { return m_dir.filePath(name); }
    QString phone() const { return path(QStringLiteral("phone")); }
    QString card1() const { return path(QStringLiteral("card1")); }
    QString card2() const { return path(QStringLiteral("card2")); }
    /// What JUV_APP_WRITE_PATH names; also the work directory while the settings name no other.
    QString write() const { return path(QStringLiteral("write")); }
    QString settingsFile() const { return write() + QStringLiteral("/setup/juv_marvola.cfg"); }
    QString listFile() const { return write() + QStringLiteral("/.marvola.list"); }
    QString infoFile() const { return write() + QStringLiteral("/.marvola.info"); }

    /// Writes \a content to \a path, with the folders that it needs, and gives the path back.
    static QString addFile(const QString &path, const QByteArray &content = "x")
    {
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
        EXPECT_EQ(file.write(content), content.size());
        return path;
    }

private:
    class Variable
    {
    public:
        explicit Variable(const char *name)
            : m_name(name), m_was(qgetenv(name)), m_wasSet(qEnvironmentVariableIsSet(name))
        {
        }
        Variable(const Variable &) = delete;
        Variable &operator=(const Variable &) = delete;
        ~Variable() { m_wasSet ? qputenv(m_name, m_was) : qunsetenv(m_name); }
        void set(const QString &value) const { qputenv(m_name, QFile::encodeName(value)); }

    private:
        const char *m_name;
        QByteArray m_was;
        bool m_wasSet;
    };

    QTemporaryDir m_dir;
    Variable m_variables[4] = {Variable("TROVE_DATA_PATH"), Variable("CARD1_MOUNT_PATH"), Variable("CARD2_MOUNT_PATH"),
                               Variable("JUV_APP_WRITE_PATH")};
};

#endif
