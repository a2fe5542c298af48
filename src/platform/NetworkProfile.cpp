// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/NetworkProfile.h>

#include <utility>

namespace {

constexpr int NoneChosen = -1;

std::function<int(QString &)> &chooser()
{
    static std::function<int(QString &)> function;
    return function;
}

} // namespace

int selectNetworkProfile(QString &profileName)
{
    // A copy, because the chooser may replace itself while it runs.
    const auto ask = chooser();
    return ask ? ask(profileName) : NoneChosen;
}

void setNetworkProfileChooser(std::function<int(QString &)> newChooser)
{
    chooser() = std::move(newChooser);
}
