// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKMANAGER_OBJECTWALK_H
#define MARVOLA_NETWORKMANAGER_OBJECTWALK_H

#include "NetworkService.h"
#include "OpenErrors.h"

#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <functional>
#include <optional>

namespace marvola {

/// Asks every object of a list one question, one after the other, so that a long list costs no more than a short one
/// at any time. An object that answers with an error has gone or is not for this user; the walk goes on without it.
///
/// Everything happens from the event loop, and the walk ends without a word when it is deleted.
class ObjectWalk : public QObject
{
public:
    enum class Next { Continue, Stop };
    struct Steps
    {
        std::function<QDBusPendingCall(const QString &path)> ask;
        std::function<Next(const QString &path, const QDBusMessage &answer)> visit;
        /// Called once, at the end, with what made going on impossible, if anything did.
        std::function<void(std::optional<OpenError>)> done;
    };

    /// \a list is answered as objectPaths() reads it.
    ObjectWalk(const QDBusPendingCall &list, Steps steps, QObject *parent);

private:
    void askNext();
    void answered(const QDBusMessage &answer);
    void finish(std::optional<OpenError> error);

    Steps m_steps;
    QStringList m_paths;
    qsizetype m_next = 0;
};

} // namespace marvola

#endif
