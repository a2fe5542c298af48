// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "ProfilePrompt.h"

#include "Text.h"

#include <QtCore/QEventLoop>
#include <QtCore/QSocketNotifier>

#include <cerrno>
#include <cstdio>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

/// More than any name takes; what comes in one line beyond it is no answer.
constexpr qsizetype LongestAnswer = 4096;

/// The question goes where errors go, so that standard output holds results alone.
void say(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
    std::fflush(stderr);
}

} // namespace

bool ProfilePrompt::isPossible()
{
    return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

QString ProfilePrompt::ask(QEventLoop &loop)
{
    say(u"Network profiles:\n"_s);
    int number = 0;
    for (const QString &name : std::as_const(m_names)) {
        say(u"  %1  "_s.arg(++number) + printable(name) + u'\n');
    }
    say(u"Which one? "_s);
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, [this, &loop] { readAnswers(loop); });
    loop.exec();
    return m_chosen;
}

void ProfilePrompt::readAnswers(QEventLoop &loop)
{
    char bytes[LongestAnswer];
    const ssize_t length = read(STDIN_FILENO, bytes, sizeof bytes);
    if (length < 0 && (errno == EINTR || errno == EAGAIN)) {
        return;
    }
    if (length <= 0) {
        loop.quit();
        return;
    }
    m_input.append(bytes, static_cast<qsizetype>(length));
    for (qsizetype end = m_input.indexOf('\n'); end >= 0; end = m_input.indexOf('\n')) {
        const QString answer = QString::fromUtf8(m_input.first(end)).trimmed();
        m_input.remove(0, end + 1);
        if (take(answer)) {
            loop.quit();
            return;
        }
        say(u"That is none of them; a number from 1 to %1, or nothing to choose none: "_s.arg(m_names.size()));
    }
    m_input.truncate(LongestAnswer);
}

bool ProfilePrompt::take(const QString &answer)
{
    bool isNumber = false;
    const int number = answer.toInt(&isNumber);
    if (m_names.contains(answer)) {
        m_chosen = answer;
    } else if (isNumber && number >= 1 && number <= m_names.size()) {
        m_chosen = m_names.at(number - 1);
    }
    return answer.isEmpty() || !m_chosen.isNull();
}

} // namespace marvola
