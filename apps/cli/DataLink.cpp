// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "DataLink.h"

#include "LinkRun.h"

#include <memory>

namespace marvola {

Action openDataLink(const LinkRequest &request)
{
    auto run = std::make_shared<LinkRun>(request);
    return [run](Session &session) { return run->run(session); };
}

} // namespace marvola
