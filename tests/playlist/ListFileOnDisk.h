// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_PLAYLIST_LISTFILEONDISK_H
#define MARVOLA_TESTS_PLAYLIST_LISTFILEONDISK_H

#include <marvola/ConfigFile.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

#include <csignal>
#include <string>
#include <sys/resource.h>

/// A list file in a directory of its own, and what is in it as short texts.
class ListFileOnDisk
{
public:
    QString path() const { return m_dir.filePath(QStringLiteral(".marvola.list")); }

    void write(const char *group, const char *key, const QString &value) const
    {
        ConfigFile file(path(), false);
        file.writeEntry(QString::fromUtf8(group), QString::fromUtf8(key), value);
    }

    /// Writes a numbered group, "name = a b c".
    void writeList(const char *group, const QStringList &entries) const
    {
        ConfigFile file(path(), false);
        file.writeEntry(QString::fromUtf8(group), QStringLiteral("counter"), static_cast<int>(entries.size()));
        for (int number = 1; number <= entries.size(); ++number)
            file.writeEntry(QString::fromUtf8(group), QString::number(number), entries.at(number - 1));
    }

    void removeEntry(const char *group, const char *key) const
    {
        ConfigFile file(path(), false);
        file.removeEntry(QString::fromUtf8(group), QString::fromUtf8(key));
    }

    /// "1=a 2=b counter=2", keys in order; empty when there is no such group.
    std::string group(const QString &name) const
    {
        const ConfigFile file(path(), false);
        const QMap<QString, QString> entries = file.getGroupEntriesKeyList(name);
        std::string text;
        for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry)
            text += (text.empty() ? "" : " ") + entry.key().toStdString() + '=' + entry.value().toStdString();
        return text;
    }
    std::string group(const char *name) const { return group(QString::fromUtf8(name)); }

    /// The directory that refuses every write, in place of the file.
    bool becomeADirectory() const { return QDir().mkpath(path()); }

    /// Every name in the directory.
    QStringList names() const
    {
        return QDir(m_dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_dir;
};

/// As long as it lives, no file can be written beyond this size: writes to a ConfigFile are taken, their commit fails.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        m_signal = std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_was);
        const rlimit limit{bytes, m_was.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_was);
        std::signal(SIGXFSZ, m_signal);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    void (*m_signal)(int) = SIG_DFL;
    rlimit m_was{};
};

#endif
