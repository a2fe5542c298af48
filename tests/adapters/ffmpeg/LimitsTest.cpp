// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/FFmpegPlayerEngine.h>

#include "ChildProcess.h"
#include "MediaBytes.h"
#include "MovieBytes.h"
#include "Samples.h"

#include <QtCore/QProcess>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace {

/// What one file may cost, whatever is in it: docs/ffmpeg-engine.md promises 100 MB and 2 seconds of a file of 16 MiB.
constexpr qint64 MostMemory = 80 * marvola::MiB;
constexpr qint64 MostMilliseconds = HoldsFreely ? 20'000 : 2'000;
/// Less of it does, so that less is written: half where memory is what they are after.
constexpr const char HalfSize[] = "8388608";
constexpr const char QuarterSize[] = "4194304";

enum class Asked { ByAScan, ByAUser };

/// What an engine said of a file: the bits of a process's exit status.
enum Answer { HasAudio = 1, HasVideo = 2, IsReadable = 4, IsCostly = 8, IsSlow = 16 };

/// Asks a new process's engine about \a path.
int answerTo(const QByteArray &path, Asked asked)
{
    return inChild([&path, asked] {
        FFmpegPlayerEngine engine;
        engine.exchangeScanSettingA(asked == Asked::ByAScan ? 0 : 1);
        engine.exchangeScanSettingB(asked == Asked::ByAScan ? 0 : 1);
        UINT8 audio = 0;
        UINT8 video = 0;
        ClipInfo info;
        // Libraries are paged in as they are used; that is no doing of the file.
        if (!engine.getMediaKind(samplePath(QStringLiteral("card/audio/song.m4a")), audio, video))
            return 0x7F;
        const qint64 memory = mostHeldBytes();
        const qint64 time = busyTime();
        audio = video = 0;
        const bool isReadable = engine.getMediaKind(path, audio, video) && engine.getClipInfo(path, info);
        const bool isCostly = !HoldsFreely && mostHeldBytes() - memory > MostMemory;
        return (audio ? HasAudio : 0) | (video ? HasVideo : 0) | (isReadable ? IsReadable : 0) |
               (isCostly ? IsCostly : 0) | (busyTime() - time > MostMilliseconds ? IsSlow : 0);
    });
}

/// What a name says of its file's kinds: "audio", "video", "both" or "any" at its end.
int expectedKinds(const QString &name)
{
    const QString kinds = name.section(QChar(u'-'), -1).section(QChar(u'.'), 0, 0);
    if (kinds == QStringLiteral("audio"))
        return IsReadable | HasAudio;
    return kinds == QStringLiteral("video") ? IsReadable | HasVideo : IsReadable | HasAudio | HasVideo;
}

QString output(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(MARVOLA_MAKE_HOSTILE), arguments);
    if (!process.waitForFinished(120'000) || process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

/// Asks about all hostile files with one of these \a extensions, each of which is made for that, so many bytes long.
void askAboutHostileFiles(const QStringList &extensions, const char *size = QuarterSize)
{
    const QTemporaryDir folder;
    int count = 0;
    for (const QString &name : output({QStringLiteral("--list")}).split(QChar(u'\n'), Qt::SkipEmptyParts)) {
        if (!extensions.contains(name.section(QChar(u'.'), -1)))
            continue;
        ++count;
        output({folder.path(), name, QStringLiteral("--size"), QLatin1String(size)});
        const QString path = folder.filePath(name);
        ASSERT_GT(QFileInfo(path).size(), 200) << qPrintable(name);
        for (const Asked asked : {Asked::ByAScan, Asked::ByAUser}) {
            const int answer = answerTo(path.toUtf8(), asked);
            ASSERT_GE(answer, 0) << qPrintable(name) << " is deadly";
            EXPECT_EQ(answer & (IsCostly | IsSlow), 0) << qPrintable(name);
            if (!name.contains(QStringLiteral("-any."))) {
                EXPECT_EQ(answer & (IsReadable | HasAudio | HasVideo), expectedKinds(name)) << qPrintable(name);
            }
        }
        QFile::remove(path);
    }
    EXPECT_GT(count, 3);
}

QByteArray nested(int count, const QByteArray &type)
{
    QByteArray boxes;
    for (int level = 0; level < count; ++level)
        boxes = box(type, boxes);
    return boxes;
}

/// A process that goes on appending to a file until it is stopped.
class Appender
{
public:
    Appender(const QByteArray &path, const QByteArray &bytes) : m_child(::fork())
    {
        if (m_child != 0)
            return;
        const FILE *const file = std::freopen(path.constData(), "ab", stdout);
        while (file && std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout) > 0 &&
               std::ftell(stdout) < 200'000'000) {
        }
        ::_exit(0);
    }
    ~Appender()
    {
        ::kill(m_child, SIGKILL);
        ::waitpid(m_child, nullptr, 0);
    }
    Appender(const Appender &) = delete;
    Appender &operator=(const Appender &) = delete;

private:
    pid_t m_child;
};

} // namespace

TEST(Limits, HostileMatroskaFilesCostLittle)
{
    askAboutHostileFiles({QStringLiteral("mkv")}, HalfSize);
}

TEST(Limits, HostileListsOfCommentsCostLittle)
{
    askAboutHostileFiles({QStringLiteral("flac"), QStringLiteral("ogg"), QStringLiteral("oga"), QStringLiteral("opus"),
                          QStringLiteral("spx")});
}

TEST(Limits, HostileTagsCostLittle)
{
    askAboutHostileFiles({QStringLiteral("mp3"), QStringLiteral("aac"), QStringLiteral("wv"), QStringLiteral("ape")});
}

TEST(Limits, HostileChunksCostLittle)
{
    askAboutHostileFiles({QStringLiteral("wav"), QStringLiteral("aiff"), QStringLiteral("avi"), QStringLiteral("caf")});
}

TEST(Limits, HostileStreamsCostLittle)
{
    askAboutHostileFiles({QStringLiteral("wma"), QStringLiteral("wmv"), QStringLiteral("flv"), QStringLiteral("ts"),
                          QStringLiteral("mpg"), QStringLiteral("rm")});
}

TEST(Limits, HostileMoviesCostLittle)
{
    askAboutHostileFiles({QStringLiteral("m4a")});
}

TEST(Limits, MeasuredBoundsAreOnesThatTestsSee)
{
    if (HoldsFreely)
        GTEST_SKIP() << "sanitizers hold on to memory as they like";
    const int result = inChild([] {
        const qint64 memory = mostHeldBytes();
        const qint64 time = busyTime();
        const QByteArray held(MostMemory + marvola::MiB, 'x');
        while (busyTime() - time <= 100) {
        }
        return held.back() == 'x' && mostHeldBytes() - memory > MostMemory ? 0 : 3;
    });
    EXPECT_EQ(result, 0) << "or else the tests above prove nothing";
}

TEST(Limits, TagOfTwoGibibytesIsPassedOver)
{
    // The largest size that each kind of tag can tell; all of it is a hole, but for the sound that follows where it
    // may.
    const QByteArray title(1, '\0');
    const FileOf id3(id3Tag(3, id3Frame(3, "TIT2", title + "t"), 0, 0x0FFFFFFF));
    ASSERT_TRUE(id3.resize(0x0FFFFFFF + 10));
    ASSERT_TRUE(id3.append(mp3Frames(50)));
    EXPECT_EQ(answerTo(id3.path(), Asked::ByAScan), IsReadable | HasAudio);

    const QByteArray movie = movieOf(movieTrack(1));
    const FileOf text(movie + bigEndian(0x7FFFFFF8) + "udta" + bigEndian(0x7FFFFFF0) + "\xA9nam");
    ASSERT_TRUE(text.resize(movie.size() + 0x7FFFFFF8));
    EXPECT_EQ(answerTo(text.path(), Asked::ByAScan), IsReadable | HasAudio);

    const QByteArray info = sampleBytes(QStringLiteral("card/audio/song.flac")).mid(8, 34);
    const FileOf flac("fLaC" + QByteArray(4, '\0').replace(3, 1, "\x22") + info + QByteArray("\x84\xFF\xFF\xFF", 4));
    ASSERT_TRUE(flac.resize(Q_INT64_C(1) << 31));
    EXPECT_EQ(answerTo(flac.path(), Asked::ByAScan), IsReadable | HasAudio);
}

TEST(Limits, TenThousandNestedBoxesAreNoHarm)
{
    for (const char *type : {"moov", "udta", "meta", "trak", "ilst", "free", "wave"}) {
        const FileOf source(box("ftyp", "isom") + box("moov", nested(10'000, type)));
        EXPECT_EQ(answerTo(source.path(), Asked::ByAScan) & (IsCostly | IsSlow | HasAudio | HasVideo), 0) << type;
        EXPECT_EQ(answerTo(source.path(), Asked::ByAUser) & (IsCostly | IsSlow | HasAudio | HasVideo), 0) << type;
    }
    const QByteArray movie = movieOf(movieTrack(1));
    const FileOf beside(movie + nested(10'000, "udta"));
    EXPECT_EQ(answerTo(beside.path(), Asked::ByAScan), IsReadable | HasAudio) << "what is there is still found";
}

TEST(Limits, EndlessStreamsEnd)
{
    // Four gigabytes, mostly a hole: a stream that goes on and on.
    const QByteArray starts[] = {mp3Frames(50),
                                 sampleBytes(QStringLiteral("card/video/clip.ts")),
                                 sampleBytes(QStringLiteral("card/video/clip.mpg")),
                                 sampleBytes(QStringLiteral("card/video/clip.flv")),
                                 sampleBytes(QStringLiteral("card/audio/song.ogg")),
                                 sampleBytes(QStringLiteral("card/audio/stream.aac"))};
    for (const QByteArray &start : starts) {
        ASSERT_FALSE(start.isEmpty());
        const FileOf source(start);
        ASSERT_TRUE(source.resize(Q_INT64_C(4) << 30));
        for (const Asked asked : {Asked::ByAScan, Asked::ByAUser}) {
            const int answer = answerTo(source.path(), asked);
            EXPECT_EQ(answer & (IsCostly | IsSlow), 0) << start.left(4).toHex().constData();
            EXPECT_EQ(answer & (IsReadable | HasAudio), IsReadable | HasAudio) << start.left(4).toHex().constData();
        }
    }
}

TEST(Limits, WhatIsNoRegularFileIsNotOpened)
{
    const QTemporaryDir folder;
    const QByteArray pipe = folder.filePath(QStringLiteral("pipe.mp3")).toUtf8();
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    const QByteArray socketPath = folder.filePath(QStringLiteral("socket.mp3")).toUtf8();
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(static_cast<size_t>(socketPath.size()), sizeof address.sun_path);
    std::copy(socketPath.begin(), socketPath.end(), address.sun_path);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    const QByteArray device = folder.filePath(QStringLiteral("device.mp3")).toUtf8();
    ASSERT_EQ(::symlink("/dev/zero", device.constData()), 0);
    for (const QByteArray &path : {pipe, socketPath, device})
        EXPECT_EQ(answerTo(path, Asked::ByAUser), 0) << path.constData() << ": and nobody waits";
    ::close(descriptor);
}

TEST(Limits, FileThatGrowsWhileItIsReadIsReadAsItWas)
{
    const FileOf source(mp3Frames(2000));
    const Appender appender(source.path(), mp3Frames(1000));
    FFmpegPlayerEngine engine;
    for (int round = 0; round < 20; ++round) {
        UINT8 audio = 0;
        UINT8 video = 0;
        EXPECT_TRUE(engine.getMediaKind(source.path(), audio, video));
        EXPECT_EQ(audio, 1);
    }
    EXPECT_EQ(answerTo(source.path(), Asked::ByAUser), IsReadable | HasAudio);
}
