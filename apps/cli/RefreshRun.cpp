// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "RefreshRun.h"

#include "ProgressDisplay.h"
#include "Session.h"
#include "SignalWatch.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>

namespace marvola {

RefreshRun runRefresh(Session &session)
{
    MP_MyLibrary &library = session.library();
    RefreshRun run;
    ProgressDisplay display;
    QEventLoop loop;
    SignalWatch interruption({SIGINT, SIGTERM, SIGHUP}, [&] {
        run.isCancelled = library.isMyLibraryRefreshing();
        loop.quit();
    });
    // Progress comes on the worker thread; here it is queued, also when it comes at once, so that the loop runs by
    // then.
    QObject::connect(
        &library, &MP_MyLibrary::refreshContinue, &loop,
        [&](UINT8 percent) {
            display.show(percent, session.engine().count());
            // The last file may bring 100 as well; only the end of the worker is the end.
            if (!library.isMyLibraryRefreshing()) {
                loop.quit();
            }
        },
        Qt::QueuedConnection);
    QElapsedTimer timer;
    timer.start();
    library.refreshMyLibrary();
    loop.exec();
    if (run.isCancelled) {
        display.showStopping();
    }
    // Waiting for the worker may take as long as its walk; a second signal ends the program at once.
    interruption.release();
    run.completed = library.cancelRefreshMyLibrary();
    run.milliseconds = timer.elapsed();
    display.finish();
    return run;
}

} // namespace marvola
