// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_APPS_CLI_CLITEST_H
#define MARVOLA_TESTS_APPS_CLI_CLITEST_H

#include "WaveFile.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

/// How a run of the program ended.
struct CliResult
{
    int status = -1; ///< the exit status; -1 when a signal ended it
    QByteArray output;
    QByteArray errors;

    /// The lines of errors, without the progress of a refresh.
    QList<QByteArray> errorLines() const;
    QJsonArray array() const;
    QJsonObject object() const;
    QStringList texts() const; ///< of the array
};

/// A test with a phone, a card and a work directory of its own, and a home without anything.
class CliTest : public testing::Test
{
protected:
    void SetUp() override;

    QString path(const QString &name) const { return m_directory.filePath(name); }
    QString settingsFile() const { return path(QStringLiteral("work/setup/juv_marvola.cfg")); }
    /// Writes a file, with its folders, below the temporary directory; gives its path.
    QString write(const QString &name, const QByteArray &content) const;
    QByteArray read(const QString &name) const;

    /// The program's arguments for this test's places.
    QStringList places() const;
    /// Runs the program with \a arguments and the places.
    CliResult run(const QStringList &arguments) const;
    /// Runs the program with \a arguments alone.
    CliResult runBare(const QStringList &arguments) const;
    /// A process that is ready to start.
    std::unique_ptr<QProcess> process(const QStringList &arguments) const;
    static CliResult finish(QProcess &process);

    QTemporaryDir m_directory;
    QProcessEnvironment m_environment;
};

#endif
