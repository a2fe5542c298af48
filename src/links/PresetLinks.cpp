// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "links/PresetLinks.h"

#include <algorithm>
#include <iterator>

namespace marvola {

QStringList presetLinks(const std::array<QString, 3> &urls)
{
    QStringList links;
    std::copy_if(urls.begin(), urls.end(), std::back_inserter(links),
                 [](const QString &url) { return !url.isEmpty(); });
    return links;
}

} // namespace marvola
