// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_APPS_CLI_OWNTMP_H
#define MARVOLA_TESTS_APPS_CLI_OWNTMP_H

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

/// A /tmp for one program alone, for what it leaves at fixed paths there.
class OwnTmp
{
public:
    /// Whether this machine lets a test do that.
    static bool isPossible();

    /// Lets the program see what lies at \a path, if that is below /tmp, where it is.
    void share(const QString &path);
    /// Has \a program start with this /tmp. Signals that end programs do so in it.
    void give(QProcess &program) const;
    /// What the program left as the file \a name.
    QByteArray read(const QString &name) const;

private:
    QTemporaryDir m_directory;
    QList<QByteArray> m_shared; ///< entries of /tmp
};

#endif
