// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_PROFILEPROMPT_H
#define MARVOLA_CLI_PROFILEPROMPT_H

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

QT_FORWARD_DECLARE_CLASS(QEventLoop)

namespace marvola {

/// Asks on the terminal which of several network profiles to take.
class ProfilePrompt
{
public:
    explicit ProfilePrompt(const QStringList &names) : m_names(names) {}

    /// Whether somebody can read the question and type an answer.
    static bool isPossible();

    /// Asks until the answer is one of the profiles, by number or by name, or there is none: an empty line, the end of
    /// the input, or \a loop quits for another reason.
    /// \return the profile; null for none
    QString ask(QEventLoop &loop);

private:
    void readAnswers(QEventLoop &loop);
    /// Whether \a answer ends the asking.
    bool take(const QString &answer);

    QStringList m_names;
    QString m_chosen;
    QByteArray m_input; ///< an unfinished line
};

} // namespace marvola

#endif
