// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_LINKRUN_H
#define MARVOLA_CLI_LINKRUN_H

#include "DataLink.h"
#include "LinkService.h"
#include "SignalWatch.h"

#include <QtCore/QEventLoop>
#include <QtCore/QPointer>

namespace marvola {

/// One run of the data link, from the profile to the end.
///
/// Make it before the library, so that the library's link service is the one of this run, and before any thread, so
/// that Ctrl-C reaches the event loop and not the bus connection's thread. It must outlive the library.
class LinkRun
{
public:
    explicit LinkRun(LinkRequest request);
    ~LinkRun();
    LinkRun(const LinkRun &) = delete;
    LinkRun &operator=(const LinkRun &) = delete;

    ExitStatus run(Session &session);

private:
    int chooseProfile(QString &name);
    void interrupt();
    void showStatus(int status);
    ExitStatus failToOpen(const QString &profile) const;
    void keepChoice(Session &session) const;
    void tellInterface(Session &session) const;
    ExitStatus hold(const QString &profile);

    LinkRequest m_request;
    QEventLoop m_loop;
    QPointer<LinkService> m_service; ///< the library's
    bool m_isChosen = false;         ///< the user chose the profile in this run
    bool m_isInterrupted = false;
    bool m_isBroken = false;
    QString m_problem;   ///< why there is no profile
    SignalWatch m_watch; ///< the last, because it calls this object
};

} // namespace marvola

#endif
