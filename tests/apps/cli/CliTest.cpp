// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

QJsonDocument parse(const QByteArray &bytes)
{
    QJsonParseError error;
    QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << bytes.constData();
    return document;
}

} // namespace

QList<QByteArray> CliResult::errorLines() const
{
    QList<QByteArray> lines = errors.split('\n');
    lines.removeIf([](const QByteArray &line) { return line.isEmpty() || line.startsWith("marvola: refresh: "); });
    return lines;
}

QJsonArray CliResult::array() const
{
    return parse(output).array();
}

QJsonObject CliResult::object() const
{
    return parse(output).object();
}

QStringList CliResult::texts() const
{
    QStringList result;
    const QJsonArray elements = array();
    for (const auto &element : elements)
        result.append(element.toString());
    return result;
}

void CliTest::SetUp()
{
    ASSERT_TRUE(m_directory.isValid());
    for (const QString &name : {u"phone"_s, u"card"_s, u"work"_s, u"home"_s})
        ASSERT_TRUE(QDir().mkpath(path(name)));
    m_environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"TROVE_DATA_PATH"_s, u"CARD1_MOUNT_PATH"_s, u"CARD2_MOUNT_PATH"_s,
                                u"JUV_APP_WRITE_PATH"_s, u"XDG_DATA_HOME"_s, u"XDG_CONFIG_HOME"_s, u"XDG_STATE_HOME"_s,
                                u"XDG_CACHE_HOME"_s, u"LANGUAGE"_s, u"LC_MESSAGES"_s, u"MARVOLA_TRANSLATIONS"_s})
        m_environment.remove(name);
    m_environment.insert(u"HOME"_s, path(u"home"_s));
    m_environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    m_environment.insert(u"LANG"_s, u"C.UTF-8"_s);
}

QString CliTest::write(const QString &name, const QByteArray &content) const
{
    QString target = path(name);
    EXPECT_TRUE(QDir().mkpath(QFileInfo(target).path()));
    QFile file(target);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(content), content.size());
    return target;
}

QByteArray CliTest::read(const QString &name) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
    return file.readAll();
}

QStringList CliTest::places() const
{
    return {u"--data"_s, path(u"phone"_s), u"--card1"_s, path(u"card"_s), u"--work"_s, path(u"work"_s)};
}

CliResult CliTest::run(const QStringList &arguments) const
{
    return runBare(places() + arguments);
}

CliResult CliTest::runBare(const QStringList &arguments) const
{
    const std::unique_ptr<QProcess> program = process(arguments);
    program->start();
    return finish(*program);
}

std::unique_ptr<QProcess> CliTest::process(const QStringList &arguments) const
{
    auto program = std::make_unique<QProcess>();
    program->setProgram(QStringLiteral(MARVOLA_PROGRAM));
    program->setArguments(arguments);
    program->setProcessEnvironment(m_environment);
    program->setStandardInputFile(QProcess::nullDevice());
    // Whoever runs the tests in the background makes them, and so the program, ignore these.
    program->setChildProcessModifier([] {
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
        std::signal(SIGHUP, SIG_DFL);
    });
    return program;
}

CliResult CliTest::finish(QProcess &process)
{
    constexpr int Patience = 120'000;
    EXPECT_TRUE(process.waitForFinished(Patience)) << qPrintable(process.errorString());
    CliResult result;
    result.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.output = process.readAllStandardOutput();
    result.errors = process.readAllStandardError();
    return result;
}
