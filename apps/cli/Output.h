// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_OUTPUT_H
#define MARVOLA_CLI_OUTPUT_H

#include "ExitStatus.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <string>

/// All that the program prints goes through here, as UTF-8. Texts may hold anything: they are made printable on the
/// way.
namespace marvola {

/// Who reads standard output.
enum class OutputStyle { People, Json };

/// How much the program tells of its own accord.
enum class Talk { Normal, Quiet };

/// How a line stands out on a terminal that takes colours.
enum class Emphasis { None, Strong };

/// Says how much is told from now on.
void setTalk(Talk talk);
bool isQuiet();

/// Prints one line.
void printLine(const QString &line = QString(), Emphasis emphasis = Emphasis::None);

/// Prints a line that says what was done; nothing when quiet.
void confirm(const QString &line);

/// Prints \a entries one per line, numbered from 1.
void printNumbered(const QStringList &entries);

/// Prints \a rows with their columns aligned, behind two blanks.
void printTable(const QList<QStringList> &rows);

/// Prints text made by the program itself, line breaks and all.
void printRaw(const std::string &text);

void printJson(const QJsonArray &array);
void printJson(const QJsonObject &object);
/// Prints \a texts as an array.
void printJson(const QStringList &texts);

/// Hands on what was printed so far, to whoever reads while the program goes on.
void flushOutput();

/// Prints a line about something worth knowing on standard error.
void note(const QString &message);

/// Prints a line about how far the work is on standard error; nothing when quiet.
void tellProgress(const QString &message);

/// Prints the one line that says what failed, on what, and what to do, on standard error.
/// \return \a status
[[nodiscard]] ExitStatus fail(const QString &message, ExitStatus status = ExitStatus::Failure);

/// Hands on all that was printed.
/// \return \a status, or a failure when standard output did not take it
[[nodiscard]] ExitStatus finishOutput(ExitStatus status);

} // namespace marvola

#endif
