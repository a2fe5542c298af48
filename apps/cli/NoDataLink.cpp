// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "DataLink.h"
#include "Output.h"

using namespace Qt::StringLiterals;

namespace marvola {

Action openDataLink(const LinkRequest &)
{
    return [](Session &) {
        return fail(u"cannot open a link: this program was built without NetworkManager; build it with "
                    "-DMARVOLA_NETWORKMANAGER=ON"_s);
    };
}

} // namespace marvola
