// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// Makes what describes the program's command line to others out of the declaration that its parser works by.

#include "../CommandLine.h"
#include "CommandTree.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <iostream>
#include <string>

namespace marvola {

namespace {

int print(const std::string &what)
{
    CLI::App app(ProgramDescription, ProgramName);
    GlobalOptions options;
    Action action;
    declareCommandLine(app, options, action);
    const CommandTree tree = treeOf(app);
    if (what == "manual") {
        std::cout << manualPage(tree, MARVOLA_VERSION);
    } else if (what == "bash") {
        std::cout << bashCompletion(tree);
    } else if (what == "zsh") {
        std::cout << zshCompletion(tree);
    } else if (what == "tree") {
        std::cout << treeAsJson(tree);
    } else {
        std::fputs("usage: marvola-reference manual|bash|zsh|tree\n", stderr);
        return 2;
    }
    return std::cout.flush() ? 0 : 1;
}

} // namespace

} // namespace marvola

int main(int argc, char **argv)
{
    try {
        return marvola::print(argc == 2 ? argv[1] : "");
    } catch (const std::exception &error) {
        std::fputs(error.what(), stderr);
        return 1;
    }
}
