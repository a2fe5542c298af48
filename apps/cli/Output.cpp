// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Output.h"

#include "Text.h"

#include <QtCore/QJsonDocument>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

/// The error of the first write that failed; 0 while all is well.
int firstWriteError = 0;
Talk currentTalk = Talk::Normal;

constexpr char Bold[] = "\x1b[1m";
constexpr char BoldRed[] = "\x1b[1;31m";
constexpr char Plain[] = "\x1b[0m";

/// Colours are for people at a terminal that did not ask to be spared (NO_COLOR, as the convention has it).
bool takesColours(int descriptor)
{
    return isatty(descriptor) == 1 && qgetenv("TERM") != "dumb" && qgetenv("NO_COLOR").isEmpty();
}

QByteArray coloured(const QByteArray &text, const char *colour, int descriptor)
{
    return takesColours(descriptor) ? colour + text + Plain : text;
}

void write(const QByteArray &bytes)
{
    const auto size = static_cast<std::size_t>(bytes.size());
    if (firstWriteError == 0 && std::fwrite(bytes.constData(), 1, size, stdout) != size) {
        firstWriteError = errno;
    }
}

void writeError(const QString &line, const char *colour = nullptr)
{
    const QByteArray name = colour == nullptr ? "marvola:" : coloured("marvola:", colour, STDERR_FILENO);
    const QByteArray bytes = name + ' ' + printable(line).toUtf8() + '\n';
    std::fflush(stdout);
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
}

/// The last cell of a row needs no room for others behind it, so it does not widen its column.
QList<int> columnWidths(const QList<QStringList> &rows)
{
    QList<int> widths;
    for (const QStringList &row : rows) {
        for (qsizetype column = 0; column + 1 < row.size(); ++column) {
            const int width = displayWidth(printable(row.at(column)));
            if (column == widths.size()) {
                widths.append(width);
            } else {
                widths[column] = std::max(widths.at(column), width);
            }
        }
    }
    return widths;
}

} // namespace

void setTalk(Talk talk)
{
    currentTalk = talk;
}

bool isQuiet()
{
    return currentTalk == Talk::Quiet;
}

void printLine(const QString &line, Emphasis emphasis)
{
    const QByteArray text = printable(line).toUtf8();
    write((emphasis == Emphasis::Strong ? coloured(text, Bold, STDOUT_FILENO) : text) + '\n');
}

void confirm(const QString &line)
{
    if (!isQuiet()) {
        printLine(line);
    }
}

void printNumbered(const QStringList &entries)
{
    const auto width = static_cast<int>(QString::number(entries.size()).size());
    int number = 0;
    for (const QString &entry : entries) {
        printLine(u"%1  "_s.arg(++number, width) + entry);
    }
}

void printTable(const QList<QStringList> &rows)
{
    const QList<int> widths = columnWidths(rows);
    for (const QStringList &row : rows) {
        QString line;
        for (qsizetype column = 0; column < row.size(); ++column) {
            const bool last = column + 1 == row.size();
            const QString cell = printable(row.at(column));
            line += u"  "_s + (last ? cell : padded(cell, widths.at(column)));
        }
        printLine(line);
    }
}

void printRaw(const std::string &text)
{
    write(QByteArray::fromStdString(text));
}

void printJson(const QJsonArray &array)
{
    write(QJsonDocument(array).toJson());
}

void printJson(const QJsonObject &object)
{
    write(QJsonDocument(object).toJson());
}

void printJson(const QStringList &texts)
{
    QJsonArray array;
    for (const QString &text : texts) {
        array.append(wellFormed(text));
    }
    printJson(array);
}

void flushOutput()
{
    if (std::fflush(stdout) != 0 && firstWriteError == 0) {
        firstWriteError = errno;
    }
}

void note(const QString &message)
{
    writeError(message);
}

void tellProgress(const QString &message)
{
    if (!isQuiet()) {
        writeError(message);
    }
}

ExitStatus fail(const QString &message, ExitStatus status)
{
    writeError(message, BoldRed);
    return status;
}

ExitStatus finishOutput(ExitStatus status)
{
    flushOutput();
    if (firstWriteError == 0) {
        return status;
    }
    if (firstWriteError == EPIPE) {
        return ExitStatus::Failure; // whoever read has seen enough, and wants no comment on it
    }
    return fail(u"cannot write to standard output: %1; free some space or send it elsewhere"_s.arg(
        qt_error_string(firstWriteError)));
}

} // namespace marvola
