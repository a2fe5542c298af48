// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// Walks 5,000 folders with 100,000 files, as a command of its own, against find(1), which does not sort, and against
// the least that a walk takes, on the same folders. Also the cost of asking for a folder's storage place.
//
//   walk_bench [ROUNDS]        makes the folders in a temporary directory, warms the caches and compares
//   walk_bench --walk FOLDER   walks once and writes the paths, as find does
//   walk_bench --floor FOLDER  the same with the least that it takes

#include "WalkFloor.h"

#include "scan/MediaWalker.h"

#include <marvola/TROVE_Global.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int OuterFolders = 50;
constexpr int InnerFolders = 100;
constexpr int FilesPerFolder = 20;
constexpr int DefaultRounds = 11;

int write(const QStringList &files)
{
    for (const QString &file : files)
        std::puts(file.toUtf8().constData());
    return std::fflush(stdout) == 0 ? 0 : 1;
}

int walk(const QString &folder)
{
    QStringList files;
    marvola::MediaWalker(marvola::NameFilter(u"*.mp3;*.amr;"_s)).walk(folder, files);
    return write(files);
}

int walkFloor(const QString &folder)
{
    QStringList files;
    floorWalk(QFile::encodeName(folder), files);
    return write(files);
}

bool makeFolders(const QString &root)
{
    for (int folder = 0; folder < OuterFolders * InnerFolders; ++folder) {
        const QString path = root + u"/%1/%2"_s.arg(folder / InnerFolders).arg(folder % InnerFolders);
        if (!QDir().mkpath(path))
            return false;
        for (int i = 0; i < FilesPerFolder; ++i) {
            QFile file(path + u"/Track %1.%2"_s.arg(i).arg(i % 5 == 4 ? u"jpg"_s : u"mp3"_s));
            if (!file.open(QIODevice::WriteOnly))
                return false;
        }
    }
    return true;
}

/// Milliseconds that the command takes, with its output's lines in \a lines.
double run(const QString &program, const QStringList &arguments, qsizetype &lines)
{
    QProcess process;
    QElapsedTimer timer;
    timer.start();
    process.start(program, arguments);
    process.waitForFinished(-1);
    const double time = double(timer.nsecsElapsed()) / 1e6;
    lines = process.readAllStandardOutput().count('\n');
    return time;
}

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void comparePlaces(const QString &folder, const char *what)
{
    constexpr int calls = 200000;
    QElapsedTimer timer;
    timer.start();
    int levels = 0;
    for (int i = 0; i < calls; ++i)
        levels += TROVE_Global::instance()->getPartiFolderLevel(folder);
    std::printf("getPartiFolderLevel, %s: %.0f ns (level %d)\n", what, double(timer.nsecsElapsed()) / calls,
                levels / calls);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments.at(1) == "--walk"_L1)
        return walk(arguments.at(2));
    if (arguments.size() == 3 && arguments.at(1) == "--floor"_L1)
        return walkFloor(arguments.at(2));
    const int rounds = std::max(1, arguments.size() > 1 ? arguments.at(1).toInt() : DefaultRounds);

    const QTemporaryDir dir;
    if (!dir.isValid() || !makeFolders(dir.path())) {
        std::fprintf(stderr, "cannot make the folders: %s\n", qPrintable(dir.errorString()));
        return 1;
    }
    qunsetenv("TROVE_DATA_PATH");
    comparePlaces(dir.path(), "by mount point");
    qputenv("TROVE_DATA_PATH", dir.path().toUtf8());
    comparePlaces(dir.path(), "by configured place");

    const QStringList find{dir.path(), u"-type"_s, u"f"_s,      u"("_s,     u"-iname"_s,
                           u"*.mp3"_s, u"-o"_s,    u"-iname"_s, u"*.amr"_s, u")"_s};
    const QString own = QCoreApplication::applicationFilePath();
    struct Contender
    {
        const char *name;
        QString program;
        QStringList arguments;
        std::vector<double> times = {};
        qsizetype lines = 0;
    };
    Contender contenders[] = {{"walk", own, {u"--walk"_s, dir.path()}},
                              {"floor", own, {u"--floor"_s, dir.path()}},
                              {"find", u"find"_s, find}};
    for (int round = 0; round <= rounds; ++round) {
        for (Contender &contender : contenders) {
            const double time = run(contender.program, contender.arguments, contender.lines);
            if (round > 0) // the first one warms the caches
                contender.times.push_back(time);
        }
    }
    bool isSame = true;
    for (const Contender &contender : contenders) {
        std::printf("%s: %.1f ms, %lld files\n", contender.name, median(contender.times),
                    static_cast<long long>(contender.lines));
        isSame = isSame && contender.lines == contenders[0].lines;
    }
    std::printf("walk / floor: %.2f, walk / find: %.2f, medians of %d\n",
                median(contenders[0].times) / median(contenders[1].times),
                median(contenders[0].times) / median(contenders[2].times), rounds);
    return isSame ? 0 : 1;
}
