// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// console-player: all that a player's screens ask of the library, from the keyboard. The environment names the storage
// places, as for every program with the library. It plays nothing.

#include "Commands.h"

#include <marvola/CachingPlayerEngine.h>
#include <marvola/FFmpegPlayerEngine.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QLocale>
#include <QtCore/QSocketNotifier>
#include <QtCore/QStandardPaths>
#include <QtCore/QTranslator>

#include <cstdio>
#include <unistd.h>

namespace {

/// Where the engine's answers are kept, in a folder that is made if need be; empty where none can be: they are not.
QString answersFile()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    return QDir().mkpath(folder) ? folder + QStringLiteral("/answers") : QString();
}

void help(const QList<ScreenCommands> &screens)
{
    for (const ScreenCommands &screen : screens) {
        say(QLatin1String(screen.title));
        for (const Command &command : screen.commands)
            say(QStringLiteral("  %1 %2  %3")
                    .arg(QLatin1String(command.word), -14)
                    .arg(QLatin1String(command.takes), -12)
                    .arg(QLatin1String(command.help)));
    }
    say(QStringLiteral("Stores and ends at the end of the input (Ctrl-D)."));
}

void obey(const QList<ScreenCommands> &screens, MP_MyLibrary &library, const QString &line)
{
    const QString word = line.section(QLatin1Char(' '), 0, 0);
    const QString text = line.section(QLatin1Char(' '), 1).trimmed();
    for (const ScreenCommands &screen : screens) {
        for (const Command &command : screen.commands) {
            if (word == QLatin1String(command.word))
                return command.run(library, text);
        }
    }
    help(screens);
}

/// Takes whole lines from the keyboard as the event loop brings them.
class Keyboard
{
public:
    explicit Keyboard(std::function<void(const QString &)> obey) : m_obey(std::move(obey))
    {
        QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { read(); });
    }

private:
    void read()
    {
        char bytes[4096];
        const ssize_t length = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (length > 0)
            m_input.append(bytes, length);
        // A command may run an event loop of its own; its input waits its turn.
        m_notifier.setEnabled(false);
        for (qsizetype end = m_input.indexOf('\n'); end >= 0; end = m_input.indexOf('\n')) {
            const QString line = QString::fromUtf8(m_input.left(end)).trimmed();
            m_input.remove(0, end + 1);
            if (!line.isEmpty())
                m_obey(line);
        }
        m_notifier.setEnabled(true);
        if (length <= 0)
            QCoreApplication::quit();
    }

    std::function<void(const QString &)> m_obey;
    QByteArray m_input;
    QSocketNotifier m_notifier{STDIN_FILENO, QSocketNotifier::Read};
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QString texts = QStringLiteral(TEXTS_DIRECTORY); // CMakeLists.txt has it from the installed package
    QTranslator translator;
    if (translator.load(QLocale::system(), QStringLiteral("marvola"), QStringLiteral("_"), texts) ||
        translator.load(QStringLiteral("marvola_en"), texts))
        QCoreApplication::installTranslator(&translator);

    FFmpegPlayerEngine engine;
    FFmpegPlayerEngine::registerExtensions();
    CachingPlayerEngine caching(engine, answersFile(), engine.identity());
    caching.setLastingCheck([&engine] { return engine.isAnswerLasting(); });
    MP_MyLibrary library(&caching); // places and settings come from the environment
    engine.setTextCodec(library.getCodecForClip());
    caching.setIdentity(engine.identity()); // the codec is part of it
    QObject::connect(&library, &MP_MyLibrary::refreshContinue, &application,
                     [](UINT8 percent) { say(QStringLiteral("%1 %").arg(percent)); });
    QObject::connect(&library, &MP_MyLibrary::dataConnectionStatus, &application,
                     [](int status) { say(QStringLiteral("data link: %1").arg(status)); });

    const QList<ScreenCommands> screens = allScreens();
    const Keyboard keyboard([&](const QString &line) { obey(screens, library, line); });
    help(screens);
    QCoreApplication::exec();
    library.cancelRefreshMyLibrary(); // the engine must outlive a refresh
    library.storeMyLibrary();         // the destructor stores nothing
    return 0;
}
