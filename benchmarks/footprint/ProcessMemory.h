// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FOOTPRINT_PROCESSMEMORY_H
#define MARVOLA_FOOTPRINT_PROCESSMEMORY_H

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QList>

#include <malloc.h>

/// What this process has of the machine's memory, by the kernel's account.
namespace ProcessMemory {

/// The number of KiB that \a key has in /proc/self/status, or -1.
inline qint64 statusOf(const QByteArray &key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(key + ':'))
            return line.mid(key.size() + 1).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

/// What is allocated, in KiB.
inline qint64 inUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>((info.uordblks + info.hblkhd) / 1024);
}

/// What the kernel has given, in KiB, once malloc has given back what it will: it keeps some for the next time.
inline qint64 held()
{
    malloc_trim(0);
    return statusOf("RssAnon");
}

/// The most in KiB since the last forgetPeak(); files that are mapped count too.
inline qint64 peak()
{
    return statusOf("VmHWM");
}

inline bool forgetPeak()
{
    QFile switches(QStringLiteral("/proc/self/clear_refs"));
    return switches.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && switches.write("5") == 1;
}

} // namespace ProcessMemory

#endif
