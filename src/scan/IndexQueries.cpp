// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/IndexQueries.h"

#include "platform/FileNames.h"
#include "platform/NumberedGroup.h"
#include "scan/InfoFile.h"

#include <marvola/ConfigFile.h>
#include <marvola/Types.h>

#include <array>

namespace marvola {

namespace {

/// A playlist's name stands in the catalogue behind this many characters.
constexpr qsizetype CataloguePrefixLength = 3;

/// One kind of query.
struct Kind
{
    QLatin1String name;
    bool anyType;
    MP_MEDIA_FILE_TYPE_T type;
    EncodedText EncodedRecord::*text; ///< has to equal the value asked for, unless null
};

constexpr std::array kinds{
    Kind{QLatin1String("media"), true, MP_MEDIA_FILE_TYPE_UNKNOWN, nullptr},
    Kind{QLatin1String("audio"), false, MP_MEDIA_FILE_TYPE_AUDIO, nullptr},
    Kind{QLatin1String("video"), false, MP_MEDIA_FILE_TYPE_VIDEO, nullptr},
    Kind{QLatin1String("artist"), false, MP_MEDIA_FILE_TYPE_AUDIO, &EncodedRecord::artist},
    Kind{QLatin1String("album"), false, MP_MEDIA_FILE_TYPE_AUDIO, &EncodedRecord::album},
    Kind{QLatin1String("genre"), false, MP_MEDIA_FILE_TYPE_AUDIO, &EncodedRecord::genre},
};

const Kind *kindOf(const QString &name)
{
    for (const Kind &kind : kinds) {
        if (name == kind.name)
            return &kind;
    }
    return nullptr;
}

} // namespace

QStringList readInfoFile(const QString &infoFile, const QString &kindName, const QString &value)
{
    QStringList paths;
    const Kind *kind = kindOf(kindName);
    if (kind == nullptr)
        return paths;
    const QByteArray wanted = encodedUnits(value);
    InfoFileReader reader(infoFile);
    for (EncodedRecord record; reader.next(record);) {
        if (!kind->anyType && record.type != kind->type)
            continue;
        if (kind->text == nullptr || (record.*kind->text).units == QByteArrayView(wanted))
            paths.append(record.path.toString());
    }
    return paths;
}

QStringList readListGroup(const PlacedFile &listFile, const QString &group)
{
    QStringList entries;
    if (listFile.isEmpty() || group.isEmpty())
        return entries;
    ConfigFile file = listFile.open();
    const NumberedGroup list(file, group);
    const int count = list.count();
    const qsizetype prefix = group == CatalogueGroup ? CataloguePrefixLength : 0;
    for (int number = 1; number <= count; ++number) {
        const QString entry = list.entry(number);
        if (!entry.isNull())
            entries.append(entry.mid(prefix));
    }
    return entries;
}

} // namespace marvola
