// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_LINKS_PRESETLINKS_H
#define MARVOLA_LINKS_PRESETLINKS_H

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>

namespace marvola {

/// The links that come with the configuration, in their order, without the empty ones.
QStringList presetLinks(const std::array<QString, 3> &urls);

} // namespace marvola

#endif
