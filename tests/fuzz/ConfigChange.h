// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FUZZ_CONFIGCHANGE_H
#define MARVOLA_TESTS_FUZZ_CONFIGCHANGE_H

#include "ConfigModel.h"
#include "FuzzInput.h"
#include "Require.h"

#include "platform/ConfigChanges.h"
#include "platform/ConfigSyntax.h"
#include "platform/ConfigText.h"
#include "platform/SafeFile.h"

#include <marvola/ConfigFile.h>

#include <limits>

/// A change to a file of groups and keys.
struct Change
{
    enum class Kind { Write, Remove, Clear, WriteNumbered };
    Kind kind;
    QString group;
    QString key;
    QString value;
    int first = 0; ///< of the numbered ones
    QStringList values;
};

inline Change takeChange(FuzzInput &input, const ConfigModel &model)
{
    const quint8 choice = input.takeByte();
    Change change{static_cast<Change::Kind>(choice % 3), input.takeText(), input.takeText(), input.takeText(), 0, {}};
    // Most changes are to what is there.
    const QStringList groups = model.groups.keys();
    if (!groups.isEmpty() && (choice & 0x40) == 0)
        change.group = groups.at(choice / 3 % groups.size());
    const QStringList keys = model.groups.value(change.group).keys();
    if (!keys.isEmpty() && (choice & 0x80) == 0)
        change.key = keys.at(change.value.size() % keys.size());
    return change;
}

/// Numbers around the list's first, and the last one that there is.
inline int takeNumber(FuzzInput &input)
{
    const auto number = static_cast<qint8>(input.takeByte());
    return number == std::numeric_limits<qint8>::min() ? std::numeric_limits<int>::max() : number;
}

inline void makeNumbered(Change &change, FuzzInput &input)
{
    change.kind = Change::Kind::WriteNumbered;
    change.first = takeNumber(input);
    for (int left = input.takeByte() % 8; left > 0; --left)
        change.values.append(input.takeText());
}

inline QString numberedKey(int first, qsizetype place)
{
    return QString::number(qint64(first) + place);
}

inline void applyToModel(ConfigModel &model, const Change &change)
{
    switch (change.kind) {
    case Change::Kind::Write:
        model.groups[change.group][change.key] = change.value;
        break;
    case Change::Kind::Remove:
        if (model.groups.contains(change.group))
            model.groups[change.group].remove(change.key);
        break;
    case Change::Kind::Clear:
        model.groups.remove(change.group);
        break;
    case Change::Kind::WriteNumbered:
        for (qsizetype place = 0; place < change.values.size(); ++place)
            model.groups[change.group][numberedKey(change.first, place)] = change.values.at(place);
        break;
    }
}

inline void write(ConfigFile &file, const Change &change)
{
    switch (change.kind) {
    case Change::Kind::Write:
        require(file.writeEntry(change.group, change.key, change.value), "a write is accepted");
        break;
    case Change::Kind::Remove:
        require(file.removeEntry(change.group, change.key), "a removal is accepted");
        break;
    case Change::Kind::Clear:
        require(file.clearGroup(change.group), "a clearing is accepted");
        break;
    case Change::Kind::WriteNumbered:
        require(file.writeNumberedEntries(change.group, change.first, change.values) == change.values.size(),
                "numbered entries are accepted");
        break;
    }
}

inline bool commitByConfigFile(const QString &path, const Change &change)
{
    ConfigFile file(path, false);
    write(file, change);
    return file.flush();
}

inline bool commitInPlace(const QString &path, const Change &change)
{
    marvola::ConfigChanges changes;
    if (change.kind == Change::Kind::Clear)
        changes.clearGroup(marvola::escapeName(change.group));
    else if (change.kind == Change::Kind::Remove)
        changes.set(marvola::escapeName(change.group), marvola::escapeName(change.key), std::nullopt);
    else
        changes.set(marvola::escapeName(change.group), marvola::escapeName(change.key),
                    marvola::escapeValue(change.value));
    marvola::SafeFile file(path, marvola::SafeFile::Way::InPlace);
    return file
        .commit([&changes](const marvola::TextFrame &now, QByteArray &out) {
            return marvola::ConfigText(now).merge(changes, out);
        })
        .has_value();
}

#endif
