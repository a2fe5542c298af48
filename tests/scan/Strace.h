// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_STRACE_H
#define MARVOLA_TESTS_STRACE_H

#include <QtCore/QProcess>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

/// What strace, with \a options, writes about \a program, which has to print \a number.
inline QStringList callsOf(const QStringList &program, const QStringList &options, int number)
{
    const QTemporaryDir dir;
    const QString log = dir.filePath(QStringLiteral("log"));
    QProcess strace;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The leak checker cannot work beside strace.
    environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
    strace.setProcessEnvironment(environment);
    strace.start(QStringLiteral("strace"), options + QStringList{QStringLiteral("-o"), log} + program);
    EXPECT_TRUE(strace.waitForFinished()) << "strace is needed for this test";
    EXPECT_EQ(strace.readAllStandardOutput(), QByteArray::number(number) + '\n')
        << strace.readAllStandardError().constData();
    QFile file(log);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return QString::fromUtf8(file.readAll()).split(u'\n');
}

#endif
