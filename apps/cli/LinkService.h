// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_LINKSERVICE_H
#define MARVOLA_CLI_LINKSERVICE_H

#include <marvola/NetworkManagerSession.h>

#include <optional>

namespace marvola {

/// The link service that the library works with, which also remembers what the library does not tell: its last link and
/// why that failed.
class LinkService : public NetworkManagerSession
{
public:
    LinkService();

    int openLink(const QString &profileName) override;
    /// Closes the last link; one that is being opened fails by that.
    void giveUp();

    /// The network interface of the last link; null while not known.
    QString interfaceName();
    /// Why the last link could not be opened; a line for the user, without a name. Null when it did not fail.
    QString failure() const;

private:
    int m_link = 0;
    std::optional<unsigned short> m_error;
};

} // namespace marvola

#endif
