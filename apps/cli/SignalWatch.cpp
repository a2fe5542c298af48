// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "SignalWatch.h"

#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <utility>

namespace marvola {

namespace {

bool isIgnored(int signalNumber)
{
    struct sigaction current = {};
    return sigaction(signalNumber, nullptr, &current) == 0 && current.sa_handler == SIG_IGN;
}

/// The signals of \a signalNumbers that are not ignored.
sigset_t signalSet(std::initializer_list<int> signalNumbers)
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signalNumber : signalNumbers) {
        if (!isIgnored(signalNumber)) {
            sigaddset(&set, signalNumber);
        }
    }
    return set;
}

} // namespace

SignalWatch::SignalWatch(std::initializer_list<int> signalNumbers, std::function<void()> called)
    : m_watched(signalSet(signalNumbers)), m_called(std::move(called))
{
    m_descriptor = signalfd(-1, &m_watched, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_descriptor < 0) {
        return; // the signals then do what they do by default
    }
    pthread_sigmask(SIG_BLOCK, &m_watched, nullptr);
    m_notifier.emplace(m_descriptor, QSocketNotifier::Read);
    QObject::connect(&*m_notifier, &QSocketNotifier::activated, &*m_notifier, [this] {
        signalfd_siginfo received;
        while (read(m_descriptor, &received, sizeof received) == sizeof received) {
            m_called();
        }
    });
}

SignalWatch::~SignalWatch()
{
    release();
}

void SignalWatch::release()
{
    if (m_descriptor < 0) {
        return;
    }
    m_notifier.reset();
    close(m_descriptor);
    m_descriptor = -1;
    pthread_sigmask(SIG_UNBLOCK, &m_watched, nullptr);
}

} // namespace marvola
