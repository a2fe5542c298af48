// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef SCREEN_H
#define SCREEN_H

#include <marvola/MP_MyLibrary.h>

#include <QtCore/QThread>

#include <cstdio>

/// The part of a user interface that shows how far a refresh is, and the list when it is done.
class Screen : public QObject
{
    Q_OBJECT

public:
    explicit Screen(MP_MyLibrary &library) : m_library(library)
    {
        // The signal is emitted on the worker thread and this object lives on the interface's. With the connection type
        // that is the default, Qt therefore queues the call, and it runs here.
        connect(&library, &MP_MyLibrary::refreshContinue, this, &Screen::showProgress);
    }

Q_SIGNALS:
    void done();

private:
    void showProgress(UINT8 percent)
    {
        const bool isHere = QThread::currentThread() == thread();
        std::printf("%d %% told on the %s thread\n", percent, isHere ? "interface's" : "worker");
        // The last file may bring 100 as well, so the end of the worker is asked for and not the number.
        if (m_library.isMyLibraryRefreshing())
            return;
        showList();
        Q_EMIT done();
    }

    void showList()
    {
        // Now the index may be queried again: while a refresh runs it must not be.
        std::printf("%d files\n", static_cast<int>(m_library.getAllMedia().size()));
    }

    MP_MyLibrary &m_library;
};

#endif
