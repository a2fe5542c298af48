// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Deactivations.h"

#include "Answers.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace marvola {

Deactivations::Deactivations(const NetworkService &service, std::chrono::milliseconds patience)
    : m_service(service), m_patience(patience)
{
}

Deactivations::~Deactivations()
{
    const QDeadlineTimer deadline(m_patience);
    for (const auto &activation : m_activations) {
        if (!isAnsweredBefore(deadline, *activation))
            continue;
        if (const auto path = activePathOf(activation->reply()))
            deactivate(*path);
    }
    for (const QDBusPendingCall &deactivation : std::as_const(m_going))
        std::ignore = isAnsweredBefore(deadline, deactivation);
}

void Deactivations::deactivate(const QString &activeConnection)
{
    const QDBusPendingCall call = m_service.deactivate(activeConnection);
    m_going.insert(activeConnection, call);
    whenAnswered(call, this, [this, activeConnection](const QDBusMessage &) { m_going.remove(activeConnection); });
}

void Deactivations::deactivateOnceActive(std::unique_ptr<QDBusPendingCallWatcher> activation)
{
    connect(activation.get(), &QDBusPendingCallWatcher::finished, this, &Deactivations::activationAnswered);
    m_activations.push_back(std::move(activation));
}

void Deactivations::activationAnswered(QDBusPendingCallWatcher *activation)
{
    const auto found = std::find_if(m_activations.begin(), m_activations.end(),
                                    [activation](const auto &each) { return each.get() == activation; });
    found->release()->deleteLater();
    m_activations.erase(found);
    if (const auto path = activePathOf(activation->reply()))
        deactivate(*path);
    if (!isExpectingActivations())
        Q_EMIT activationsArrived();
}

} // namespace marvola
