// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "ObjectWalk.h"

#include "Answers.h"

#include <utility>

namespace marvola {

ObjectWalk::ObjectWalk(const QDBusPendingCall &list, Steps steps, QObject *parent)
    : QObject(parent), m_steps(std::move(steps))
{
    whenAnswered(list, this, [this](const QDBusMessage &answer) {
        if (answer.type() == QDBusMessage::ErrorMessage)
            return finish(openErrorOf(answer));
        const std::optional<QStringList> paths = objectPaths(answer);
        if (!paths)
            return finish(OpenError::UnexpectedAnswer);
        m_paths = *paths;
        askNext();
    });
}

void ObjectWalk::askNext()
{
    if (m_next == m_paths.size())
        return finish(std::nullopt);
    whenAnswered(m_steps.ask(m_paths.at(m_next)), this, [this](const QDBusMessage &answer) { answered(answer); });
}

void ObjectWalk::answered(const QDBusMessage &answer)
{
    const bool isError = answer.type() == QDBusMessage::ErrorMessage;
    if (isError && isServiceGone(openErrorOf(answer)))
        return finish(openErrorOf(answer));
    const QString path = m_paths.at(m_next++);
    if (!isError && m_steps.visit(path, answer) == Next::Stop)
        return finish(std::nullopt);
    askNext();
}

void ObjectWalk::finish(std::optional<OpenError> error)
{
    deleteLater();
    m_steps.done(error);
}

} // namespace marvola
