// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "LinkService.h"

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

struct Reason
{
    NetworkManagerSession::OpenError error;
    const char *text; ///< why, and what to do
};

constexpr Reason Reasons[] = {
    {NetworkManagerSession::ServiceMissing, "NetworkManager is not on the system bus; start it"},
    {NetworkManagerSession::ServiceVanished, "NetworkManager ended meanwhile; start it again"},
    {NetworkManagerSession::BusUnavailable, "the system bus cannot be reached; start it"},
    {NetworkManagerSession::ProfileNotFound,
     "NetworkManager has no profile of that name for you; see 'nmcli connection'"},
    {NetworkManagerSession::NoDevice, "no device is there that it fits; plug it in or switch it on"},
    {NetworkManagerSession::NotPermitted, "NetworkManager does not let this user do that; ask the administrator"},
    {NetworkManagerSession::Refused, "NetworkManager refused; see its journal"},
    {NetworkManagerSession::ActivationFailed, "the device could not be brought up; see NetworkManager's journal"},
    {NetworkManagerSession::SecretsRejected, "a password or PIN is missing or wrong; set it in the profile"},
    {NetworkManagerSession::TimedOut, "it was not up in time; try again where the network is better"},
    {NetworkManagerSession::UnexpectedAnswer, "NetworkManager's answer made no sense; see its journal"},
    {NetworkManagerSession::Closed, "it was given up"},
};

} // namespace

LinkService::LinkService()
{
    // Heard before the library hears it, which connects later.
    connect(this, &NetworkManagerSession::openFailed, this, [this](int id, unsigned short error, unsigned short) {
        if (id == m_link) {
            m_error = error;
        }
    });
}

int LinkService::openLink(const QString &profileName)
{
    m_error.reset();
    m_link = NetworkManagerSession::openLink(profileName);
    return m_link;
}

void LinkService::giveUp()
{
    closeLink(m_link);
}

QString LinkService::interfaceName()
{
    QString name;
    return getDeviceInfo(m_link, name, nullptr) == 0 ? name : QString();
}

QString LinkService::failure() const
{
    if (!m_error) {
        return {};
    }
    const auto *reason = std::find_if(std::begin(Reasons), std::end(Reasons),
                                      [this](const Reason &known) { return known.error == *m_error; });
    return reason == std::end(Reasons) ? u"error %1; see NetworkManager's journal"_s.arg(*m_error)
                                       : QString::fromLatin1(reason->text);
}

} // namespace marvola
