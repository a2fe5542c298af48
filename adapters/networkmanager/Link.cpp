// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Link.h"

#include "BusNames.h"
#include "ObjectWalk.h"

#include <algorithm>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr uint LargestDetail = std::numeric_limits<unsigned short>::max();

} // namespace

Link::Link(const NetworkService &service, const Deactivations &deactivations, const QString &profileName,
           std::chrono::milliseconds limit)
    : m_service(service), m_deactivations(deactivations), m_profileName(profileName)
{
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this,
            [this] { fail(waitsForSecrets() ? OpenError::SecretsRejected : OpenError::TimedOut); });
    const std::chrono::milliseconds longest(std::numeric_limits<int>::max());
    m_limit.start(std::clamp(limit, std::chrono::milliseconds(0), longest));
}

void Link::start()
{
    m_stage = Stage::Searching;
    findProfile();
}

/// Like whenAnswered(), but an answer that comes after the link's end is not for it.
void Link::ask(const QDBusPendingCall &call, Answer then)
{
    whenAnswered(call, this, [this, then](const QDBusMessage &answer) {
        if (m_stage != Stage::Ended)
            (this->*then)(answer);
    });
}

void Link::findProfile()
{
    ObjectWalk::Steps steps;
    steps.ask = [this](const QString &path) { return m_service.profileSettings(path); };
    steps.visit = [this](const QString &path, const QDBusMessage &answer) {
        if (const auto profile = profileOf(path, answer))
            consider(*profile, answer.service());
        return ObjectWalk::Next::Continue;
    };
    steps.done = [this](std::optional<OpenError> error) {
        if (error)
            fail(*error);
        else if (!m_profile)
            fail(OpenError::ProfileNotFound);
        else
            findActivation();
    };
    new ObjectWalk(m_service.profiles(), std::move(steps), this);
}

void Link::consider(const Profile &profile, const QString &uniqueName)
{
    if (profile.id != m_profileName || (m_profile && !profile.goesBefore(*m_profile)))
        return;
    m_profile = profile;
    m_uniqueName = uniqueName;
}

void Link::findActivation()
{
    if (m_stage == Stage::Ended)
        return;
    ObjectWalk::Steps steps;
    steps.ask = [this](const QString &path) { return m_service.properties(path, bus::ActiveInterface); };
    steps.visit = [this](const QString &path, const QDBusMessage &answer) {
        return shares(path, answer) ? ObjectWalk::Next::Stop : ObjectWalk::Next::Continue;
    };
    steps.done = [this](std::optional<OpenError> error) {
        if (error)
            fail(*error);
        else if (m_active.isEmpty())
            activate();
    };
    new ObjectWalk(m_service.activeConnections(), std::move(steps), this);
}

bool Link::shares(const QString &path, const QDBusMessage &properties)
{
    const auto values = propertiesOf(properties);
    if (m_stage == Stage::Ended || !values || pathIn(*values, u"Connection"_s) != m_profile->path)
        return false;
    const uint state = numberIn(*values, u"State"_s).value_or(bus::ActiveUnknown);
    const bool isUp = state == bus::ActiveActivating || state == bus::ActiveActivated;
    // What this session itself is taking down may still be said to be up.
    if (!isUp || m_deactivations.isGoing(path))
        return false;
    carriedBy(path, properties.service());
    return true;
}

void Link::activate()
{
    if (m_stage == Stage::Ended)
        return;
    m_stage = Stage::Activating;
    m_activation = std::make_unique<QDBusPendingCallWatcher>(m_service.activate(m_profile->path));
    connect(m_activation.get(), &QDBusPendingCallWatcher::finished, this, &Link::activationAnswered);
}

void Link::activationAnswered()
{
    const QDBusMessage answer = m_activation->reply();
    m_activation.release()->deleteLater();
    const auto active = activePathOf(answer);
    m_owned = active.has_value();
    m_active = active.value_or(QString());
    if (m_stage == Stage::Ended)
        return;
    if (answer.type() == QDBusMessage::ErrorMessage)
        fail(openErrorOf(answer));
    else if (!active)
        fail(OpenError::UnexpectedAnswer);
    else
        carriedBy(*active, answer.service());
}

std::unique_ptr<QDBusPendingCallWatcher> Link::takePendingActivation()
{
    if (m_activation)
        m_activation->disconnect(this);
    return std::move(m_activation);
}

void Link::carriedBy(const QString &active, const QString &uniqueName)
{
    m_active = active;
    m_uniqueName = uniqueName;
    m_stage = Stage::ComingUp;
    // Changes that were told before the path was known are made up for by reading the state once.
    ask(m_service.properties(active, bus::ActiveInterface), &Link::stateRead);
    Q_EMIT resolved();
}

void Link::stateRead(const QDBusMessage &properties)
{
    if (m_stage != Stage::ComingUp) // a signal was faster
        return;
    if (properties.type() == QDBusMessage::ErrorMessage && !isServiceGone(openErrorOf(properties)))
        return goneDown(); // an active connection that went down is an object no more
    if (properties.type() == QDBusMessage::ErrorMessage)
        return fail(openErrorOf(properties));
    const auto values = propertiesOf(properties);
    const auto state = values ? numberIn(*values, u"State"_s) : std::nullopt;
    if (!state)
        return fail(OpenError::UnexpectedAnswer);
    m_device = firstPathIn(*values, u"Devices"_s);
    follow(*state);
}

void Link::activeConnectionChanged(const QString &sender, const QString &path, uint state)
{
    if (sender == m_uniqueName && path == m_active && m_stage != Stage::Ended)
        follow(state);
}

/// Takes a state in. Going down is final; what is on its way down, or was never heard of, is waited for.
void Link::follow(uint state)
{
    if (state == bus::ActiveDeactivated)
        goneDown();
    else if (state == bus::ActiveActivated && m_stage == Stage::ComingUp)
        findInterface();
}

void Link::deviceChanged(const QString &sender, const QString &path, uint state, uint reason)
{
    // The active connection always tells the same reason; the device tells the real one, and before it. Until it is
    // known which device carries the link, any may be it.
    const bool isComingUp = m_stage == Stage::Activating || m_stage == Stage::ComingUp || m_stage == Stage::Naming;
    if (!isComingUp || sender != m_uniqueName || (!m_device.isEmpty() && path != m_device))
        return;
    if (state == bus::DeviceNeedsSecrets)
        m_askingDevice = path;
    else if (path == m_askingDevice)
        m_askingDevice.clear();
    const bool hasEnded = state <= bus::DeviceDisconnected && reason != bus::NoReason && reason != bus::NewActivation;
    if (state != bus::DeviceFailed && !hasEnded)
        return;
    m_failedDevice = path;
    m_reason = reason;
}

void Link::serviceLeft(const QString &uniqueName)
{
    if (uniqueName != m_uniqueName)
        return;
    forgetActivation();
    end(OpenError::ServiceVanished);
}

void Link::busLost()
{
    forgetActivation();
    end(OpenError::BusUnavailable);
}

void Link::findInterface()
{
    m_stage = Stage::Naming;
    ask(m_service.properties(m_active, bus::ActiveInterface), &Link::deviceFound);
}

void Link::deviceFound(const QDBusMessage &activeProperties)
{
    if (activeProperties.type() == QDBusMessage::ErrorMessage)
        return goneDown();
    m_device = firstPathIn(propertiesOf(activeProperties).value_or(QVariantMap()), u"Devices"_s);
    if (m_device.isEmpty())
        return open();
    ask(m_service.properties(m_device, bus::DeviceInterface), &Link::interfaceFound);
}

void Link::interfaceFound(const QDBusMessage &deviceProperties)
{
    const QVariantMap values = propertiesOf(deviceProperties).value_or(QVariantMap());
    // Not "Interface", which is the serial port when the device is a modem.
    const QString name = textIn(values, u"IpInterface"_s);
    if (isInterfaceName(name))
        m_interfaceName = name;
    m_deviceType = numberIn(values, u"DeviceType"_s).value_or(0);
    open();
}

void Link::open()
{
    m_limit.stop();
    m_stage = Stage::Open;
    Q_EMIT opened();
}

void Link::goneDown()
{
    forgetActivation();
    const bool isOwnReason = m_device.isEmpty() || m_failedDevice == m_device;
    const uint reason = isOwnReason ? m_reason : bus::NoReason;
    end(openErrorOfReason(reason), reason);
}

/// Nothing is left to take down.
void Link::forgetActivation()
{
    m_owned = false;
    m_activation.reset();
}

/// A SIM card's missing PIN is waited for without end, though nobody is there who could be asked for it.
bool Link::waitsForSecrets() const
{
    return !m_askingDevice.isEmpty() && (m_device.isEmpty() || m_askingDevice == m_device);
}

void Link::fail(OpenError error)
{
    if (m_stage != Stage::Open)
        end(error);
}

/// The link is no more: lost when it was open, else failed for \a error.
void Link::end(OpenError error, uint reason)
{
    if (m_stage == Stage::Ended)
        return;
    m_limit.stop();
    if (std::exchange(m_stage, Stage::Ended) == Stage::Open)
        Q_EMIT lost();
    else
        Q_EMIT failed(error, static_cast<unsigned short>(std::min(reason, LargestDetail)));
}

} // namespace marvola
