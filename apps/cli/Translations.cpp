// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Translations.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QStringList>
#include <QtCore/QTranslator>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

QStringList directories()
{
    const QByteArray configured = qgetenv("MARVOLA_TRANSLATIONS");
    if (!configured.isEmpty()) {
        return {QFile::decodeName(configured)};
    }
    const QString program = QCoreApplication::applicationDirPath();
    return {program + u"/" MARVOLA_TRANSLATIONS_FROM_PROGRAM ""_s, program + u"/../translations"_s};
}

} // namespace

void installTranslations(QTranslator &translator)
{
    const QStringList candidates = directories();
    for (const QLocale &locale : {QLocale::system(), QLocale(QLocale::English)}) {
        for (const QString &directory : candidates) {
            if (translator.load(locale, u"marvola"_s, u"_"_s, directory)) {
                QCoreApplication::installTranslator(&translator);
                return;
            }
        }
    }
}

} // namespace marvola
