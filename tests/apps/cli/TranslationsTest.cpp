// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QRegularExpression>
#include <QtCore/QTranslator>

using namespace Qt::StringLiterals;

namespace {

/// Text ids with their English comments, as the sources name them: "TXT_RID_X", "X".
QMap<QString, QString> idsInSources()
{
    static const QRegularExpression pattern(u"\"(TXT_RID_[A-Z0-9_]+)\"\\s*,\\s*\"([^\"]*)\""_s);
    QMap<QString, QString> ids;
    for (const QString &folder : {u"src"_s, u"apps"_s, u"adapters"_s}) {
        QDirIterator files(QStringLiteral(MARVOLA_SOURCE_DIR "/") + folder, {u"*.cpp"_s, u"*.h"_s}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            const QString source = QString::fromUtf8(file.readAll());
            for (auto matches = pattern.globalMatch(source); matches.hasNext();) {
                const QRegularExpressionMatch match = matches.next();
                ids.insert(match.captured(1), match.captured(2));
            }
        }
    }
    return ids;
}

/// Every text id that occurs in the sources at all.
QStringList idsMentioned()
{
    static const QRegularExpression pattern(u"TXT_RID_[A-Z0-9_]+"_s);
    QStringList ids;
    QDirIterator files(QStringLiteral(MARVOLA_SOURCE_DIR "/src"), {u"*.cpp"_s, u"*.h"_s}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QString source = QString::fromUtf8(file.readAll());
        for (auto matches = pattern.globalMatch(source); matches.hasNext();)
            ids.append(matches.next().captured());
    }
    ids.removeDuplicates();
    return ids;
}

class Translations : public CliTest, public testing::WithParamInterface<const char *>
{
};

class TranslatedProgram : public CliTest
{
};

} // namespace

TEST_P(Translations, EveryIdOfTheSourcesIsTranslated)
{
    QTranslator translator;
    ASSERT_TRUE(
        translator.load(QStringLiteral(MARVOLA_TRANSLATIONS_DIR "/marvola_%1.qm").arg(QLatin1String(GetParam()))));
    const QMap<QString, QString> ids = idsInSources();
    EXPECT_GE(ids.size(), 3);
    for (const QString &id : idsMentioned())
        EXPECT_TRUE(ids.contains(id)) << qPrintable(id) << " is used without its comment";
    for (auto id = ids.begin(); id != ids.end(); ++id) {
        const QString text =
            translator.translate("MP_MyLibrary", id.key().toUtf8().constData(), id.value().toUtf8().constData());
        EXPECT_FALSE(text.isEmpty()) << qPrintable(id.key());
        EXPECT_FALSE(text.contains(u',')) << "the search order is stored with commas between the names";
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, Translations, testing::Values("en", "zh_CN"),
                         [](const auto &row) { return row.param; });

TEST_F(TranslatedProgram, SpeaksTheLanguageOfTheLocale)
{
    write(u"phone/a.wav"_s, waveFile());
    struct
    {
        QString locale;
        QByteArray phone;
    } const rows[] = {
        {u"C"_s, "Phone"}, {u"en_US.UTF-8"_s, "Phone"}, {u"de_DE.UTF-8"_s, "Phone"}, {u"zh_CN.UTF-8"_s, "手机"}};
    for (const auto &row : rows) {
        m_environment.insert(u"LC_ALL"_s, row.locale);
        const CliResult result = run({u"refresh"_s});
        EXPECT_TRUE(result.output.startsWith("  " + row.phone + ' ')) << result.output.constData();
    }
    EXPECT_EQ(run({u"list"_s, u"artists"_s}).output, "1  <未知>\n");
}

TEST_F(TranslatedProgram, DirectoryOfTextsCanBeNamed)
{
    m_environment.insert(u"MARVOLA_TRANSLATIONS"_s, path(u"nothing"_s));
    EXPECT_TRUE(run({u"refresh"_s}).output.contains("TXT_RID_DTITLE_PHONE"));
    m_environment.insert(u"MARVOLA_TRANSLATIONS"_s, QStringLiteral(MARVOLA_TRANSLATIONS_DIR));
    EXPECT_TRUE(run({u"refresh"_s}).output.contains("Phone"));
}

TEST_F(TranslatedProgram, OrderStoredInAnotherLanguageGivesTheDefaultOrder)
{
    ASSERT_EQ(run({u"settings"_s, u"set"_s, u"search-order"_s, u"card,phone"_s}).status, 0);
    m_environment.insert(u"LC_ALL"_s, u"zh_CN.UTF-8"_s);
    EXPECT_EQ(run({u"settings"_s, u"get"_s, u"search-order"_s}).output, "phone,card\n");
}
