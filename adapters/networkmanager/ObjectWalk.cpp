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
        askOn();
    });
}

void ObjectWalk::askOn()
{
    if (m_answered == m_paths.size())
        return finish(std::nullopt);
    while (m_asked < m_paths.size() && m_asked - m_answered < MostAtOnce) {
        const QString path = m_paths.at(m_asked++);
        whenAnswered(m_steps.ask(path), this, [this, path](const QDBusMessage &answer) { answered(path, answer); });
    }
}

void ObjectWalk::answered(const QString &path, const QDBusMessage &answer)
{
    if (m_isFinished)
        return;
    const bool isError = answer.type() == QDBusMessage::ErrorMessage;
    if (isError && isServiceGone(openErrorOf(answer)))
        return finish(openErrorOf(answer));
    ++m_answered;
    if (!isError && m_steps.visit(path, answer) == Next::Stop)
        return finish(std::nullopt);
    askOn();
}

void ObjectWalk::finish(std::optional<OpenError> error)
{
    m_isFinished = true;
    deleteLater();
    m_steps.done(error);
}

} // namespace marvola
