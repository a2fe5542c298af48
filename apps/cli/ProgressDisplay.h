// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_PROGRESSDISPLAY_H
#define MARVOLA_CLI_PROGRESSDISPLAY_H

namespace marvola {

/// Shows on standard error how far a refresh is: a bar on a terminal, a line for every tenth elsewhere,
/// nothing when quiet.
class ProgressDisplay
{
public:
    ProgressDisplay();

    void show(int percent, int files);
    /// Takes the bar away.
    void finish();
    /// Says that the refresh is being stopped, to somebody at a terminal.
    void showStopping();

private:
    void showBar(int percent, int files) const;
    void showLine(int percent, int files);

    bool m_showsBar; ///< on a terminal, unless quiet
    int m_lastTenth = -1;
};

} // namespace marvola

#endif
