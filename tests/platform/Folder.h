// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_PLATFORM_FOLDER_H
#define MARVOLA_TESTS_PLATFORM_FOLDER_H

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

/// A folder of a test's own, gone with it.
class Folder
{
public:
    Folder() { EXPECT_TRUE(m_folder.isValid()); }

    QString path(const QString &name) const { return m_folder.filePath(name); }
    QByteArray encodedPath(const QString &name) const { return QFile::encodeName(path(name)); }

    void put(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ASSERT_EQ(file.write(bytes), bytes.size());
        ASSERT_TRUE(file.flush());
    }
    QByteArray bytes(const QString &name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
        return file.readAll();
    }
    /// The names of everything in the folder, hidden or not, sorted.
    QStringList names() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_folder;
};

#endif
