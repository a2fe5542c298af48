// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_FOLDERS_H
#define MARVOLA_TESTS_SUPPORT_FOLDERS_H

#include <QtCore/QByteArrayList>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/// A temporary folder to fill with files, folders and links; paths are below it. It is the data path of the environment
/// as long as it lives, so that depths count from it.
class Folders
{
public:
    Folders()
    {
        EXPECT_TRUE(m_dir.isValid());
        qputenv("TROVE_DATA_PATH", m_dir.path().toUtf8());
    }
    ~Folders()
    {
        qunsetenv("TROVE_DATA_PATH");
        for (const QByteArray &file : std::as_const(m_oddFiles))
            ::unlink(file.constData());
    }
    Folders(const Folders &) = delete;
    Folders &operator=(const Folders &) = delete;

    QString root() const { return m_dir.path(); }
    QString path(const QString &below) const { return m_dir.path() + QLatin1Char('/') + below; }

    QString addFolder(const QString &below) const
    {
        EXPECT_TRUE(QDir().mkpath(path(below)));
        return path(below);
    }
    QString addFile(const QString &below, const QByteArray &content = {}) const
    {
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path(below)).path()));
        QFile file(path(below));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(below);
        EXPECT_EQ(file.write(content), content.size());
        return path(below);
    }
    /// A file whose name is any bytes, which the temporary folder could not remove by itself.
    void addFileNamed(const QByteArray &name)
    {
        m_oddFiles.append(root().toUtf8() + '/' + name);
        const int fd = ::open(m_oddFiles.constLast().constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666);
        EXPECT_GE(fd, 0) << name.constData();
        ::close(fd);
    }
    QString addLink(const QString &below, const QString &target) const
    {
        EXPECT_EQ(::symlink(target.toUtf8().constData(), path(below).toUtf8().constData()), 0) << qPrintable(below);
        return path(below);
    }
    QString addFifo(const QString &below) const
    {
        EXPECT_EQ(::mkfifo(path(below).toUtf8().constData(), 0600), 0);
        return path(below);
    }
    /// \a files without the root and the slash behind it.
    QStringList below(const QStringList &files) const
    {
        QStringList names;
        for (const QString &file : files) {
            EXPECT_TRUE(file.startsWith(root() + QLatin1Char('/'))) << qPrintable(file);
            names.append(file.mid(root().size() + 1));
        }
        return names;
    }

private:
    QTemporaryDir m_dir;
    QByteArrayList m_oddFiles;
};

#endif
