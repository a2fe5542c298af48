// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_SIGNALWATCH_H
#define MARVOLA_CLI_SIGNALWATCH_H

#include <QtCore/QSocketNotifier>

#include <csignal>
#include <functional>
#include <initializer_list>
#include <optional>

namespace marvola {

/// Turns signals to the process into calls on the event loop while it lives.
///
/// Make it before any thread is started: threads inherit that these signals are held back, so that they reach the
/// event loop and nobody else. A signal that the process was told to ignore stays ignored.
class SignalWatch
{
public:
    SignalWatch(std::initializer_list<int> signalNumbers, std::function<void()> called);
    ~SignalWatch();
    SignalWatch(const SignalWatch &) = delete;
    SignalWatch &operator=(const SignalWatch &) = delete;

    /// Ends the watch: from now on a signal does what it does by default.
    void release();

private:
    sigset_t m_watched;
    int m_descriptor = -1;
    std::optional<QSocketNotifier> m_notifier;
    std::function<void()> m_called;
};

} // namespace marvola

#endif
