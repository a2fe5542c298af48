// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FUZZ_SCRATCH_H
#define MARVOLA_TESTS_FUZZ_SCRATCH_H

#include "Require.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

/// A folder of the process, for the files of one input after another.
class Scratch
{
public:
    Scratch() { require(m_folder.isValid(), "there is a temporary folder"); }

    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    void write(const char *name, QByteArrayView bytes) const
    {
        QFile file(path(name));
        require(file.open(QIODevice::WriteOnly) && file.write(bytes.data(), bytes.size()) == bytes.size() &&
                    file.flush(),
                "an input can be written");
    }
    QByteArray read(const char *name) const
    {
        QFile file(path(name));
        require(file.open(QIODevice::ReadOnly), "a file can be read back");
        return file.readAll();
    }
    QStringList names() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }
    void clear() const
    {
        const QStringList files = names();
        for (const QString &name : files)
            QFile::remove(m_folder.filePath(name));
    }

private:
    QTemporaryDir m_folder;
};

#endif
