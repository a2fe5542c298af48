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
    if (m_visited == m_paths.size())
        return finish(std::nullopt);
    while (m_asked < m_paths.size() && m_asked - m_visited - m_early.size() < MostAtOnce) {
        const qsizetype number = m_asked++;
        whenAnswered(m_steps.ask(m_paths.at(number)), this,
                     [this, number](const QDBusMessage &answer) { answered(number, answer); });
    }
}

void ObjectWalk::answered(qsizetype number, const QDBusMessage &answer)
{
    if (m_isFinished)
        return;
    if (answer.type() == QDBusMessage::ErrorMessage && isServiceGone(openErrorOf(answer)))
        return finish(openErrorOf(answer));
    m_early.insert(number, answer);
    if (!visitAnswered())
        return finish(std::nullopt);
    askOn();
}

/// False when a visit has ended the walk.
bool ObjectWalk::visitAnswered()
{
    for (auto next = m_early.find(m_visited); next != m_early.end(); next = m_early.find(m_visited)) {
        const QDBusMessage answer = *next;
        m_early.erase(next);
        const QString &path = m_paths.at(m_visited++);
        if (answer.type() != QDBusMessage::ErrorMessage && m_steps.visit(path, answer) == Next::Stop)
            return false;
    }
    return true;
}

void ObjectWalk::finish(std::optional<OpenError> error)
{
    m_isFinished = true;
    deleteLater();
    m_steps.done(error);
}

} // namespace marvola
