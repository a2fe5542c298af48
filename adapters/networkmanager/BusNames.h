// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKMANAGER_BUSNAMES_H
#define MARVOLA_NETWORKMANAGER_BUSNAMES_H

#include <QtCore/QLatin1String>

/// What NetworkManager's objects, interfaces, members and numbers are called on the bus. The numbers are those that
/// libnm's nm-dbus-interface.h gives as NMActiveConnectionState, NMDeviceState and NMDeviceStateReason.
namespace marvola::bus {

inline constexpr QLatin1String Service("org.freedesktop.NetworkManager");

inline constexpr QLatin1String RootPath("/org/freedesktop/NetworkManager");
inline constexpr QLatin1String SettingsPath("/org/freedesktop/NetworkManager/Settings");
/// Stands for "none" where a path is wanted.
inline constexpr QLatin1String NoPath("/");

inline constexpr QLatin1String RootInterface("org.freedesktop.NetworkManager");
inline constexpr QLatin1String SettingsInterface("org.freedesktop.NetworkManager.Settings");
inline constexpr QLatin1String ProfileInterface("org.freedesktop.NetworkManager.Settings.Connection");
inline constexpr QLatin1String ActiveInterface("org.freedesktop.NetworkManager.Connection.Active");
inline constexpr QLatin1String DeviceInterface("org.freedesktop.NetworkManager.Device");
inline constexpr QLatin1String PropertiesInterface("org.freedesktop.DBus.Properties");
/// The bus library's own, for the loss of the connection to the bus.
inline constexpr QLatin1String LocalPath("/org/freedesktop/DBus/Local");
inline constexpr QLatin1String LocalInterface("org.freedesktop.DBus.Local");

inline constexpr QLatin1String Profiles("Connections");
inline constexpr QLatin1String ActiveConnections("ActiveConnections");
inline constexpr QLatin1String StateChanged("StateChanged");

// States of an active connection. Between "activated" and "deactivated" it may be on its way down.
inline constexpr uint ActiveUnknown = 0;
inline constexpr uint ActiveActivating = 1;
inline constexpr uint ActiveActivated = 2;
inline constexpr uint ActiveDeactivated = 4;

// States of a device.
inline constexpr uint DeviceNeedsSecrets = 60;
inline constexpr uint DeviceFailed = 120;
/// Up to this state, of a device without a connection, a change with a reason is the end of what the device was at.
inline constexpr uint DeviceDisconnected = 30;

// Reasons for a change of a device's state.
inline constexpr uint NoReason = 0;
inline constexpr uint NoSecrets = 7;
inline constexpr uint GsmPinCheckFailed = 34;
inline constexpr uint GsmSimPinRequired = 46;
inline constexpr uint GsmSimPukRequired = 47;
inline constexpr uint SimPinIncorrect = 59;
/// An earlier connection of the device makes room for the one that is being activated.
inline constexpr uint NewActivation = 60;

} // namespace marvola::bus

#endif
