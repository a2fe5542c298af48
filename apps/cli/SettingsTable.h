// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_SETTINGSTABLE_H
#define MARVOLA_CLI_SETTINGSTABLE_H

#include <QtCore/QJsonValue>
#include <QtCore/QLatin1String>
#include <QtCore/QList>
#include <QtCore/QString>

namespace marvola {

class Session;

/// One setting as the terminal sees it.
struct Setting
{
    QLatin1String key; ///< what people call it
    QLatin1String description;
    QLatin1String group; ///< of the settings file
    QLatin1String entry; ///< of the settings file
    QJsonValue (*value)(Session &session);
    /// Takes a new value; gives a line about what is wrong with it, or a null text. Empty for settings that cannot be
    /// set.
    QString (*change)(Session &session, const QString &text);
};

/// Every setting, in the order of the list.
const QList<Setting> &allSettings();

/// The setting called \a key; null for none.
const Setting *settingCalled(const QString &key);

/// \a value as people read it.
QString valueText(const QJsonValue &value);

/// What the settings file holds for \a setting once it is stored.
QString storedText(const Setting &setting, Session &session);

} // namespace marvola

#endif
