// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"

namespace marvola {

namespace {

/// In the order of the help text.
constexpr DeclareCommand AllCommands[] = {declareRefresh,  declareShow,     declareList,     declareQueue,
                                          declarePlaylist, declareSettings, declareBookmark, declareHistory,
                                          declareLinks,    declareConnect,  declareStatus};

} // namespace

void declareCommands(CLI::App &app, Action &action)
{
    for (const DeclareCommand declare : AllCommands) {
        declare(app, action);
    }
}

} // namespace marvola
