// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "ProgressDisplay.h"

#include "Output.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <algorithm>
#include <cstdio>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr int BarWidth = 30;
/// Back to the line's start, and nothing on the line.
constexpr char ClearLine[] = "\r\x1b[K";

void writeProgress(const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
}

} // namespace

ProgressDisplay::ProgressDisplay() : m_showsBar(!isQuiet() && isatty(STDERR_FILENO) == 1 && qgetenv("TERM") != "dumb")
{
}

void ProgressDisplay::show(int percent, int files)
{
    if (m_showsBar) {
        showBar(percent, files);
    } else {
        showLine(percent, files);
    }
}

void ProgressDisplay::showBar(int percent, int files) const
{
    const int filled = std::clamp(percent * BarWidth / 100, 0, BarWidth);
    const QByteArray bar = QByteArray(filled, '#') + QByteArray(BarWidth - filled, '.');
    writeProgress(ClearLine + ("[" + bar + "] ") + QByteArray::number(percent).rightJustified(3) + " %  " +
                  QByteArray::number(files) + " files");
}

void ProgressDisplay::showLine(int percent, int files)
{
    const int tenth = percent / 10;
    if (tenth == m_lastTenth) {
        return;
    }
    m_lastTenth = tenth;
    tellProgress(u"refresh: %1 % (%2 files)"_s.arg(percent).arg(files));
}

void ProgressDisplay::finish()
{
    if (m_showsBar) {
        writeProgress(ClearLine);
    }
}

void ProgressDisplay::showStopping()
{
    if (m_showsBar) {
        writeProgress(QByteArray(ClearLine) + "stopping; once more to stop at once");
    }
}

} // namespace marvola
