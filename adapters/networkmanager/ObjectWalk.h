// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKMANAGER_OBJECTWALK_H
#define MARVOLA_NETWORKMANAGER_OBJECTWALK_H

#include "NetworkService.h"
#include "OpenErrors.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <functional>
#include <optional>

namespace marvola {

/// Asks every object of a list one question. An object that answers with an error has gone or is not for this user; the
/// walk goes on without it.
///
/// Many questions are on their way at once: while the library waits for a link it looks at its events four times a
/// second, so a question that is asked only when the one before it is answered costs a quarter of a second.
/// Their answers may overtake each other; the objects are visited in the order of the list all the same, so that of two
/// with one name it is always the same that is found.
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

    /// A bus bounds the calls of one client that are not answered yet; often at 128.
    static constexpr qsizetype MostAtOnce = 64;

    /// \a list is answered as objectPaths() reads it.
    ObjectWalk(const QDBusPendingCall &list, Steps steps, QObject *parent);

private:
    void askOn();
    void answered(qsizetype number, const QDBusMessage &answer);
    bool visitAnswered();
    void finish(std::optional<OpenError> error);

    Steps m_steps;
    QStringList m_paths;
    /// Answers that wait for those before them.
    QHash<qsizetype, QDBusMessage> m_early;
    qsizetype m_asked = 0;
    qsizetype m_visited = 0;
    bool m_isFinished = false;
};

} // namespace marvola

#endif
