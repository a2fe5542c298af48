// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/FFmpegPlayerEngine.h>

#include "ChildProcess.h"
#include "MediaBytes.h"
#include "MovieBytes.h"
#include "Samples.h"
#include "support/DeadlyRead.h"
#include "support/RefusedCall.h"

#include <marvola/MediaTypeRegistry.h>

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QSet>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" {
#include <libavutil/log.h>
}

namespace {

/// An engine set as a scan sets it.
struct ScanEngine : FFmpegPlayerEngine
{
    ScanEngine()
    {
        exchangeScanSettingA(0);
        exchangeScanSettingB(0);
    }
};

struct Answer
{
    bool hasKind = false;
    UINT8 audio = 9;
    UINT8 video = 9;
    bool hasInfo = false;
    ClipInfo info;
};

Answer ask(PlayerEngine &engine, const QByteArray &path)
{
    Answer answer;
    answer.hasKind = engine.getMediaKind(path, answer.audio, answer.video);
    answer.hasInfo = engine.getClipInfo(path, answer.info);
    return answer;
}

bool isUnreadable(PlayerEngine &engine, const QByteArray &path)
{
    const Answer answer = ask(engine, path);
    return !answer.hasKind && !answer.hasInfo;
}

/// Counts how often a file is opened, by whomever.
class OpenCounter
{
public:
    explicit OpenCounter(const QByteArray &path) : m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        // Equal events in a row become one; reading and closing come between two opens.
        ::inotify_add_watch(m_descriptor, path.constData(), IN_OPEN | IN_ACCESS | IN_CLOSE);
    }
    ~OpenCounter() { ::close(m_descriptor); }
    OpenCounter(const OpenCounter &) = delete;
    OpenCounter &operator=(const OpenCounter &) = delete;

    /// The opens since the last call.
    int take() const
    {
        std::array<inotify_event, 1024> events;
        const ssize_t size = ::read(m_descriptor, events.data(), sizeof events);
        const auto count = size > 0 ? static_cast<size_t>(size) / sizeof(inotify_event) : 0;
        return static_cast<int>(std::count_if(events.begin(), events.begin() + count,
                                              [](const inotify_event &event) { return event.mask & IN_OPEN; }));
    }

private:
    int m_descriptor;
};

/// A server that nobody should call on.
class ListeningSocket
{
public:
    ListeningSocket() : m_descriptor(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        m_isListening = ::bind(m_descriptor, reinterpret_cast<sockaddr *>(&address), size) == 0 &&
                        ::listen(m_descriptor, 5) == 0 &&
                        ::getsockname(m_descriptor, reinterpret_cast<sockaddr *>(&address), &size) == 0;
        m_port = ntohs(address.sin_port);
    }
    ~ListeningSocket() { ::close(m_descriptor); }
    ListeningSocket(const ListeningSocket &) = delete;
    ListeningSocket &operator=(const ListeningSocket &) = delete;

    bool isListening() const { return m_isListening; }
    QByteArray url(const char *name) const { return "http://127.0.0.1:" + QByteArray::number(m_port) + '/' + name; }
    bool wasCalled() const
    {
        pollfd waiting = {m_descriptor, POLLIN, 0};
        return ::poll(&waiting, 1, 0) > 0;
    }

private:
    int m_descriptor;
    int m_port = 0;
    bool m_isListening = false;
};

/// Makes starting a thread or a process and opening a socket deadly for this process.
bool forbidThreadsAndSockets()
{
    constexpr auto number = static_cast<unsigned int>(offsetof(seccomp_data, nr));
    std::array<sock_filter, 7> rules = {{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, number),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone, 4, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone3, 3, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_socket, 2, 0),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_connect, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
    }};
    const sock_fprog program = {static_cast<unsigned short>(rules.size()), rules.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

} // namespace

TEST(FFmpegPlayerEngine, AnswersAsExpectedForEverySample)
{
    const QList<Sample> samples = allSamples();
    ASSERT_GT(samples.size(), 60);
    ScanEngine engine;
    for (const Sample &sample : samples) {
        const Answer answer = ask(engine, sample.path);
        EXPECT_EQ(answer.hasKind, sample.isReadable) << qPrintable(sample.name);
        EXPECT_EQ(answer.hasInfo, sample.isReadable) << qPrintable(sample.name);
        if (!sample.isReadable || !answer.hasKind)
            continue;
        EXPECT_EQ(answer.audio, sample.audio) << qPrintable(sample.name);
        EXPECT_EQ(answer.video, sample.video) << qPrintable(sample.name);
        EXPECT_EQ(textsOf(answer.info), sample.texts) << qPrintable(sample.name);
    }
}

TEST(FFmpegPlayerEngine, DepthChangesNoKindAndNoText)
{
    FFmpegPlayerEngine engine;
    for (const Sample &sample : allSamples()) {
        const Answer answer = ask(engine, sample.path);
        EXPECT_EQ(answer.hasKind, sample.isReadable) << qPrintable(sample.name);
        if (!sample.isReadable || !answer.hasKind)
            continue;
        EXPECT_EQ(answer.audio, sample.audio) << qPrintable(sample.name);
        EXPECT_EQ(answer.video, sample.video) << qPrintable(sample.name);
        EXPECT_EQ(textsOf(answer.info), sample.texts) << qPrintable(sample.name);
        EXPECT_GT(answer.info.durationMs, 0) << qPrintable(sample.name);
    }
}

TEST(FFmpegPlayerEngine, OrderOfTheQuestionsDoesNotMatter)
{
    ScanEngine engine;
    const QByteArray path = samplePath(QStringLiteral("card/video/clip.mp4"));
    ClipInfo info;
    ASSERT_TRUE(engine.getClipInfo(path, info));
    EXPECT_EQ(info.title, QStringLiteral("旅行"));
    UINT8 audio = 0;
    UINT8 video = 0;
    ASSERT_TRUE(engine.getMediaKind(path, audio, video));
    EXPECT_EQ(video, 1);
}

TEST(FFmpegPlayerEngine, CounterOfOpensCounts)
{
    const FileOf source("0123456789");
    const OpenCounter counter(source.path());
    for (int round = 0; round < 3; ++round)
        marvola::MediaFile(source.path(), AmpleBudget).bytes(0, 1);
    EXPECT_EQ(counter.take(), 3);
}

TEST(FFmpegPlayerEngine, OneOpenAnswersBothQuestions)
{
    ScanEngine engine;
    for (const Sample &sample : allSamples()) {
        if (!sample.isReadable)
            continue;
        const OpenCounter counter(sample.path);
        UINT8 audio = 0;
        UINT8 video = 0;
        EXPECT_TRUE(engine.getMediaKind(sample.path, audio, video));
        EXPECT_EQ(counter.take(), 1) << qPrintable(sample.name);
        ClipInfo info;
        EXPECT_TRUE(engine.getClipInfo(sample.path, info));
        EXPECT_EQ(counter.take(), 0) << qPrintable(sample.name);
    }
}

TEST(FFmpegPlayerEngine, JunkIsOpenedOnceToo)
{
    ScanEngine engine;
    const FileOf junk("this is no music");
    const OpenCounter counter(junk.path());
    UINT8 audio = 0;
    UINT8 video = 0;
    EXPECT_FALSE(engine.getMediaKind(junk.path(), audio, video));
    EXPECT_EQ(counter.take(), 1);
    ClipInfo info;
    EXPECT_FALSE(engine.getClipInfo(junk.path(), info));
    EXPECT_EQ(counter.take(), 0);
}

TEST(FFmpegPlayerEngine, FinishedScanForgetsTheAnswer)
{
    ScanEngine engine;
    const FileOf source(mp3Frames(5));
    const OpenCounter counter(source.path());
    ask(engine, source.path());
    EXPECT_EQ(counter.take(), 1);
    engine.finishScan();
    ask(engine, source.path());
    EXPECT_EQ(counter.take(), 1);
}

TEST(FFmpegPlayerEngine, ChangedFileIsReadAgain)
{
    ScanEngine engine;
    const QByteArray title(1, '\0');
    const FileOf source(id3Tag(3, id3Frame(3, "TIT2", title + "before")) + mp3Frames(5));
    EXPECT_EQ(ask(engine, source.path()).info.title, QStringLiteral("before"));
    ASSERT_TRUE(source.write(id3Tag(3, id3Frame(3, "TIT2", title + "afterwards")) + mp3Frames(5)));
    EXPECT_EQ(ask(engine, source.path()).info.title, QStringLiteral("afterwards"));
}

TEST(FFmpegPlayerEngine, FileThatBecomesReadableIsReadAgain)
{
    ScanEngine engine;
    const FileOf source("");
    EXPECT_TRUE(isUnreadable(engine, source.path()));
    ASSERT_TRUE(source.write(mp3Frames(5)));
    EXPECT_EQ(ask(engine, source.path()).audio, 1);
}

TEST(FFmpegPlayerEngine, VanishedFileIsUnreadableEvenIfItWasJustRead)
{
    ScanEngine engine;
    const FileOf source(mp3Frames(5));
    UINT8 audio = 0;
    UINT8 video = 0;
    ASSERT_TRUE(engine.getMediaKind(source.path(), audio, video));
    ASSERT_TRUE(source.remove());
    ClipInfo info;
    EXPECT_FALSE(engine.getClipInfo(source.path(), info));
}

TEST(FFmpegPlayerEngine, FailureLeavesTheArgumentsAlone)
{
    ScanEngine engine;
    UINT8 audio = 7;
    UINT8 video = 8;
    EXPECT_FALSE(engine.getMediaKind("/no/such/file.mp3", audio, video));
    EXPECT_EQ(audio, 7);
    EXPECT_EQ(video, 8);
    ClipInfo info;
    info.title = QStringLiteral("mine");
    EXPECT_FALSE(engine.getClipInfo("/no/such/file.mp3", info));
    EXPECT_EQ(info.title, QStringLiteral("mine"));
}

TEST(FFmpegPlayerEngine, SettingsGiveTheirPreviousValue)
{
    FFmpegPlayerEngine engine;
    EXPECT_EQ(engine.exchangeScanSettingA(0), 1);
    EXPECT_EQ(engine.exchangeScanSettingA(-17), 0);
    EXPECT_EQ(engine.exchangeScanSettingA(1), -17);
    EXPECT_EQ(engine.exchangeScanSettingB(0), 1);
    EXPECT_EQ(engine.exchangeScanSettingB(42), 0);
    EXPECT_EQ(engine.exchangeScanSettingB(1), 42);
    EXPECT_EQ(engine.exchangeScanSettingA(0), 1) << "the two are independent";
}

TEST(FFmpegPlayerEngine, ChangedDepthReadsTheFileAgain)
{
    ScanEngine engine;
    const QByteArray path = samplePath(QStringLiteral("card/audio/note.amr"));
    EXPECT_EQ(ask(engine, path).info.durationMs, 0);
    engine.exchangeScanSettingA(1);
    EXPECT_EQ(ask(engine, path).info.durationMs, 500);
    engine.exchangeScanSettingA(0);
    EXPECT_EQ(ask(engine, path).info.durationMs, 0);
}

TEST(FFmpegPlayerEngine, PatienceAllowsFilesThatAScanGivesUp)
{
    // A first box of 60 MB, more than a scan reads of one file.
    const QByteArray movie = sampleBytes(QStringLiteral("card/video/silent.mp4"));
    const FileOf source(box("ftyp", "isom" + QByteArray(60'000'000, 'x')) + movie.mid(movie.indexOf("moov") - 4));
    ScanEngine engine;
    const Answer hasty = ask(engine, source.path());
    EXPECT_NE(hasty.hasKind && hasty.video == 1, true);
    engine.exchangeScanSettingB(1);
    const Answer patient = ask(engine, source.path());
    EXPECT_TRUE(patient.hasKind);
    EXPECT_EQ(patient.video, 1);
}

TEST(FFmpegPlayerEngine, AnswerAfterAFailedReadDoesNotLast)
{
    const FileOf good(mp3Frames(50));
    ScanEngine engine;
    EXPECT_TRUE(ask(engine, good.path()).hasKind);
    EXPECT_TRUE(engine.isAnswerLasting());
    EXPECT_TRUE(isUnreadable(engine, QByteArray(good.path()).append("no such file")));
    EXPECT_TRUE(engine.isAnswerLasting());
    EXPECT_TRUE(holdsWithout({SYS_pread64, EIO}, [&] {
        ask(engine, good.path());
        return !engine.isAnswerLasting();
    }));

    // One read alone, of the tag at the end: there is an answer then, and it is not the one that lasts.
    constexpr qint64 TagSize = 128;
    const auto tagPlace = static_cast<std::uint32_t>(QFileInfo(QString::fromUtf8(good.path())).size() - TagSize);
    EXPECT_TRUE(holdsWithout({SYS_pread64, EIO, 3, tagPlace},
                             [&] { return ask(engine, good.path()).hasKind && !engine.isAnswerLasting(); }));
}

TEST(FFmpegPlayerEngine, FileThatCrashedTheReaderIsNotReadAgainUntilItChanges)
{
    const QTemporaryDir folder;
    const QString note = folder.filePath(QStringLiteral("note"));
    const FileOf good(mp3Frames(50));
    const FileOf bad(mp3Frames(5), QStringLiteral("bad.mp3"));
    const QFileInfo badFile(QString::fromUtf8(bad.path()));
    const int crash = inChild([&] {
        ScanEngine engine;
        if (!engine.setCrashNote(note) || !makeReadsDeadly(static_cast<quint32>(badFile.size())))
            return 2;
        ask(engine, good.path());
        ask(engine, bad.path());
        return 0;
    });
    ASSERT_EQ(crash, -SIGSYS) << "it must really die, in the middle of reading";

    ScanEngine engine;
    ASSERT_TRUE(engine.setCrashNote(note));
    EXPECT_TRUE(isUnreadable(engine, bad.path()));
    EXPECT_TRUE(isUnreadable(engine, bad.path()));
    EXPECT_EQ(ask(engine, good.path()).audio, 1);
    EXPECT_EQ(engine.suspects(), QList<QByteArray>{bad.path()});

    ScanEngine careless;
    EXPECT_NE(engine.identity(), careless.identity()) << "it answers otherwise";
    EXPECT_EQ(ask(careless, bad.path()).audio, 1) << "without a note nothing is suspected";
    ASSERT_TRUE(bad.append(mp3Frames(1)));
    EXPECT_EQ(ask(engine, bad.path()).audio, 1) << "it may be another one now";
}

TEST(FFmpegPlayerEngine, FileInFlightWhenTheProcessIsKilledIsNotReadAgain)
{
    const QTemporaryDir folder;
    const QString note = folder.filePath(QStringLiteral("note"));
    // Millions of elements, none of which can be passed over without a look: long enough to be caught at it.
    const FileOf slow(QByteArray::fromHex("1A45DFA38F4282886D6174726F736B6142858104"
                                          "1853806701FFFFFFFFFFFFFF") +
                      QByteArray::fromHex("1254C3678373738142").repeated(3'000'000));
    const pid_t child = ::fork();
    if (child == 0) {
        FFmpegPlayerEngine engine;
        if (engine.setCrashNote(note)) {
            for (;;) {
                ask(engine, slow.path());
                engine.finishScan();
            }
        }
        ::_exit(2);
    }
    const auto isNoted = [&note, &slow] {
        QFile file(note);
        return file.open(QIODevice::ReadOnly) &&
               file.readAll().contains(QCryptographicHash::hash(slow.path(), QCryptographicHash::Sha1));
    };
    bool isKilled = false;
    // Between two rounds nothing is noted for a moment.
    for (int round = 0; round < 100 && !isKilled; ++round) {
        while (!isNoted())
            ::usleep(1000);
        ::kill(child, SIGSTOP);
        ::usleep(10'000);
        isKilled = isNoted();
        ::kill(child, isKilled ? SIGKILL : SIGCONT);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(isKilled && WIFSIGNALED(status));
    ScanEngine engine;
    ASSERT_TRUE(engine.setCrashNote(note));
    ask(engine, slow.path());
    EXPECT_EQ(engine.suspects(), QList<QByteArray>{slow.path()});
}

TEST(FFmpegPlayerEngine, NothingIsSuspectedAfterACleanScan)
{
    const QTemporaryDir folder;
    const QString note = folder.filePath(QStringLiteral("note"));
    for (int round = 0; round < 2; ++round) {
        ScanEngine engine;
        ASSERT_TRUE(engine.setCrashNote(note));
        for (const Sample &sample : allSamples())
            EXPECT_EQ(ask(engine, sample.path).hasKind, sample.isReadable) << qPrintable(sample.name);
        EXPECT_TRUE(engine.suspects().isEmpty());
    }
}

TEST(FFmpegPlayerEngine, NoteCanBePutAway)
{
    const QTemporaryDir folder;
    ScanEngine engine;
    EXPECT_FALSE(engine.setCrashNote(folder.filePath(QStringLiteral("no/such/folder"))));
    EXPECT_EQ(ask(engine, samplePath(QStringLiteral("card/audio/song.ogg"))).audio, 1) << "it is read all the same";
    EXPECT_TRUE(engine.setCrashNote(folder.filePath(QStringLiteral("note"))));
    EXPECT_TRUE(engine.setCrashNote(QString()));
    EXPECT_EQ(ask(engine, samplePath(QStringLiteral("card/audio/song.ogg"))).audio, 1);
}

TEST(FFmpegPlayerEngine, TextCodecIsGbkUntilSet)
{
    FFmpegPlayerEngine engine;
    EXPECT_EQ(engine.textCodec(), QStringLiteral("GBK"));
    EXPECT_TRUE(engine.isTextCodecAvailable());
}

TEST(FFmpegPlayerEngine, TextCodecDecodesWhatWasNeverUnicode)
{
    ScanEngine engine;
    const FileOf source(id3Tag(3, id3Frame(3, "TIT2", QByteArray(1, '\0') + "\xA7\x41\xA6\x6E")) + mp3Frames(5));
    ASSERT_TRUE(engine.setTextCodec(QStringLiteral("Big5")));
    EXPECT_EQ(ask(engine, source.path()).info.title, QStringLiteral("你好"));
    EXPECT_FALSE(engine.setTextCodec(QStringLiteral("no such codec")));
    EXPECT_FALSE(engine.isTextCodecAvailable());
    EXPECT_EQ(engine.textCodec(), QStringLiteral("no such codec"));
    EXPECT_EQ(ask(engine, source.path()).info.title, QString::fromLatin1("\xA7\x41\xA6\x6E"));
}

TEST(FFmpegPlayerEngine, EnginesAreIndependent)
{
    ScanEngine first;
    ScanEngine second;
    first.setTextCodec(QStringLiteral("Big5"));
    const FileOf source(id3Tag(3, id3Frame(3, "TIT2", QByteArray(1, '\0') + "\xC4\xE3\xBA\xC3")) + mp3Frames(5));
    EXPECT_NE(ask(first, source.path()).info.title, QStringLiteral("你好"));
    EXPECT_EQ(ask(second, source.path()).info.title, QStringLiteral("你好"));
}

TEST(FFmpegPlayerEngine, ContentDecidesNotTheName)
{
    ScanEngine engine;
    const FileOf video(sampleBytes(QStringLiteral("card/video/clip.mp4")), QStringLiteral("x.mp3"));
    EXPECT_EQ(ask(engine, video.path()).video, 1);
    const FileOf audio(sampleBytes(QStringLiteral("phone/music/v2.3.mp3")), QStringLiteral("x.mp4"));
    EXPECT_EQ(ask(engine, audio.path()).video, 0);
    EXPECT_EQ(ask(engine, audio.path()).audio, 1);
    const FileOf nameless(sampleBytes(QStringLiteral("card/audio/song.ogg")), QStringLiteral("x"));
    EXPECT_EQ(ask(engine, nameless.path()).audio, 1);
}

TEST(FFmpegPlayerEngine, FilesThatReferToOthersOpenNothing)
{
    const ListeningSocket server;
    ASSERT_TRUE(server.isListening());
    const FileOf target(mp3Frames(20));
    const OpenCounter counter(target.path());
    const QByteArray lists[] = {
        "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\n" + server.url("a.ts") + "\n#EXT-X-ENDLIST\n",
        "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\n" + target.path() + "\n#EXT-X-ENDLIST\n",
        "ffconcat version 1.0\nfile '" + target.path() + "'\nfile '" + server.url("a.mp3") + "'\n",
        "<?xml version=\"1.0\"?><MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" "
        "profiles=\"urn:mpeg:dash:profile:full:2011\">"
        "<Period><AdaptationSet><Representation><BaseURL>" +
            server.url("a.mp4") +
            "</BaseURL></Representation>"
            "</AdaptationSet></Period></MPD>",
        "[playlist]\nFile1=" + server.url("a.mp3") + "\n",
        "[Reference]\nRef1=" + server.url("a.asf") + "\n",
        "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\nm=audio 5004 RTP/AVP 0\n",
    };
    ScanEngine engine;
    for (const QByteArray &list : lists) {
        const FileOf source(list);
        EXPECT_TRUE(isUnreadable(engine, source.path())) << list.constData();
    }
    EXPECT_FALSE(server.wasCalled());
    EXPECT_EQ(counter.take(), 0);
}

TEST(FFmpegPlayerEngine, AddressesAreNoPaths)
{
    const ListeningSocket server;
    ASSERT_TRUE(server.isListening());
    ScanEngine engine;
    const QByteArray sample = samplePath(QStringLiteral("card/audio/song.ogg"));
    const QByteArray addresses[] = {server.url("song.mp3"), "file:" + sample, "concat:" + sample,
                                    "data:audio/mp3;base64,AAAA"};
    for (const QByteArray &address : addresses)
        EXPECT_TRUE(isUnreadable(engine, address)) << address.constData();
    EXPECT_FALSE(server.wasCalled());
}

TEST(FFmpegPlayerEngine, NothingButRegularFiles)
{
    ScanEngine engine;
    EXPECT_TRUE(isUnreadable(engine, "/dev/zero"));
    EXPECT_TRUE(isUnreadable(engine, "/"));
    EXPECT_TRUE(isUnreadable(engine, ""));
    EXPECT_TRUE(isUnreadable(engine, samplePath(QStringLiteral("phone/broken/pipe.mp3"))));
}

TEST(FFmpegPlayerEngine, HugeEmptyFileIsUnreadable)
{
    const FileOf source("");
    ASSERT_TRUE(source.resize(Q_INT64_C(4) << 30));
    ScanEngine engine;
    EXPECT_TRUE(isUnreadable(engine, source.path()));
}

TEST(FFmpegPlayerEngine, HugeMediaIsReadable)
{
    // Four gigabytes of media between the first box and the header.
    const QByteArray movie = sampleBytes(QStringLiteral("card/video/silent.mp4"));
    const qsizetype at = movie.indexOf("moov") - 4;
    const qint64 gap = Q_INT64_C(4) << 30;
    const FileOf source(movie.left(at) + bigEndian(1) + "free" + bigEndian(static_cast<quint32>(gap >> 32)) +
                        bigEndian(0));
    ASSERT_TRUE(source.resize(at + gap));
    ASSERT_TRUE(source.append(movie.mid(at)));
    ScanEngine engine;
    const Answer answer = ask(engine, source.path());
    EXPECT_TRUE(answer.hasKind);
    EXPECT_EQ(answer.video, 1);
    EXPECT_EQ(answer.audio, 0);
}

TEST(FFmpegPlayerEngine, HostileFilesTakeBoundedMemory)
{
    if (HoldsFreely)
        GTEST_SKIP() << "sanitizers hold on to memory as they like";
    const QByteArray title(1, '\0');
    const QByteArray ogg = sampleBytes(QStringLiteral("card/audio/song.ogg"));
    QByteArray oggWithHugeComment = ogg;
    oggWithHugeComment.replace(oggWithHugeComment.indexOf("\x03vorbis") + 18, 4, QByteArray(4, '\x7F'));
    QByteArray hugeTable = sampleBytes(QStringLiteral("card/video/silent.mp4"));
    hugeTable.replace(hugeTable.indexOf("stts") + 8, 4, bigEndian(0x0FFFFFFF));
    const QByteArray hostile[] = {
        id3Tag(3, id3Frame(3, "TIT2", title + "t"), 0, 0x0FFFFFFF) + mp3Frames(20),
        id3Tag(4, "TIT2" + synchsafe(0x0FFFFFFF) + QByteArray(2, '\0') + title + "t", 0, 0x0FFFFFFF) + mp3Frames(20),
        id3Tag(3, id3Frame(3, "TIT2", title + QByteArray(1'000'000, 'x'))) + mp3Frames(20),
        "fLaC" + QByteArray("\x86\xFF\xFF\xFF", 4) + QByteArray(100, '\xFF'),
        oggWithHugeComment,
        hugeTable,
        box("ftyp", "isom") + bigEndian(0x7FFFFFFF) + "moov" + bigEndian(0x7FFFFFF0) + "udta" + bigEndian(0x7FFFFF00) +
            "titl",
        QByteArray::fromHex("1A45DFA301FFFFFFFFFFFFFE") + QByteArray(100, '\xFF'),
        "RIFF" + QByteArray(4, '\xFF') + "WAVELIST" + QByteArray(4, '\x7F') + "INFOINAM" + QByteArray(4, '\x7F'),
        "RIFF" + QByteArray(4, '\x7F') + "AVI LIST" + QByteArray(4, '\x7F') + "INFOINAM" + QByteArray(4, '\x70'),
        movieOf(movieTrack(80'000'000)),
        movieOf(movieTrack(4'000'000, 1).repeated(20)),
        movieOf(movieTrack(2'000'000).repeated(60)),
        movieOf(box("udta", movieTrack(80'000'000))),
        movieOf(movieTrack(0) + box("mvex", fullBox("trex", bigEndian(1) + bigEndian(1) + bigEndian(160) +
                                                                bigEndian(1) + bigEndian(0)))) +
            movieFragment(20'000'000) + box("mdat", "data"),
    };
    ASSERT_GT(hugeTable.size(), 1000);
    for (const QByteArray &bytes : hostile) {
        const FileOf source(bytes);
        const int result = inChild([&source] {
            ScanEngine engine;
            // Libraries are paged in as they are used; that is no doing of the file.
            ask(engine, samplePath(QStringLiteral("card/audio/song.m4a")));
            const qint64 before = mostHeldBytes();
            ask(engine, source.path());
            return mostHeldBytes() - before < 48 * marvola::MiB ? 0 : 3;
        });
        EXPECT_EQ(result, 0) << bytes.left(16).toHex().constData();
    }
}

TEST(FFmpegPlayerEngine, BoundOfMemoryIsOneThatTestsSee)
{
    if (HoldsFreely)
        GTEST_SKIP() << "sanitizers hold on to memory as they like";
    const int result = inChild([] {
        const qint64 before = mostHeldBytes();
        const QByteArray held(64 * marvola::MiB, 'x');
        return held.back() == 'x' && mostHeldBytes() - before >= 48 * marvola::MiB ? 0 : 3;
    });
    EXPECT_EQ(result, 0) << "or else the test above proves nothing";
}

TEST(FFmpegPlayerEngine, MoviesWithMoreSamplesThanAreListedAreDescribed)
{
    const QByteArray text = QByteArray("\0\x09\x15\xC7", 4) + "Betrunken";
    const FileOf source(movieOf(movieTrack(80'000'000) + box("udta", box("\xA9nam", text))) + box("mdat", "data"));
    FFmpegPlayerEngine engine;
    for (const int depth : {0, 1}) {
        engine.exchangeScanSettingA(depth);
        const Answer answer = ask(engine, source.path());
        EXPECT_TRUE(answer.hasKind);
        EXPECT_EQ(answer.audio, 1);
        EXPECT_EQ(answer.video, 0);
        EXPECT_EQ(answer.info.title, QStringLiteral("Betrunken"));
        EXPECT_EQ(answer.info.durationMs, 1000);
        EXPECT_EQ(answer.info.sampleRate, 8000);
    }
}

TEST(FFmpegPlayerEngine, StartsNoThreadAndOpensNoSocket)
{
    const QList<Sample> samples = allSamples();
    const int result = inChild([&samples] {
        FFmpegPlayerEngine engine;
        if (!forbidThreadsAndSockets())
            return 2;
        for (const Sample &sample : samples)
            ask(engine, sample.path);
        return 0;
    });
    EXPECT_EQ(result, 0);
    const int control =
        inChild([] { return forbidThreadsAndSockets() && ::socket(AF_INET, SOCK_STREAM, 0) >= 0 ? 0 : 3; });
    EXPECT_EQ(control, -SIGSYS) << "or else the test above proves nothing";
}

TEST(FFmpegPlayerEngine, LeavesNoDescriptorOpen)
{
    const auto openDescriptors = [] {
        return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
    };
    ScanEngine engine;
    ask(engine, samplePath(QStringLiteral("card/audio/song.ogg")));
    const qsizetype before = openDescriptors();
    for (const Sample &sample : allSamples())
        ask(engine, sample.path);
    EXPECT_EQ(openDescriptors(), before);
}

TEST(FFmpegPlayerEngine, SaysNothing)
{
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    FFmpegPlayerEngine engine;
    for (const Sample &sample : allSamples())
        ask(engine, sample.path);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(FFmpegPlayerEngine, LogLevelSetAfterTheFirstEngineStays)
{
    const FFmpegPlayerEngine first;
    EXPECT_EQ(av_log_get_level(), AV_LOG_QUIET);
    av_log_set_level(AV_LOG_ERROR);
    const FFmpegPlayerEngine second;
    EXPECT_EQ(av_log_get_level(), AV_LOG_ERROR);
    av_log_set_level(AV_LOG_QUIET);
}

TEST(FFmpegPlayerEngine, RegistersWhatItSupports)
{
    const QStringList extensions = FFmpegPlayerEngine::supportedExtensions();
    EXPECT_EQ(QSet<QString>(extensions.begin(), extensions.end()).size(), extensions.size());
    for (const char *wanted :
         {"mp3", "m4a", "ogg", "flac", "amr", "wav", "wma", "mp4", "3gp", "mkv", "avi", "mpg", "flv"})
        EXPECT_TRUE(extensions.contains(QLatin1String(wanted))) << wanted;
    EXPECT_FALSE(extensions.contains(QLatin1String("mid")));
    for (const QString &extension : extensions)
        EXPECT_EQ(extension, extension.toLower().remove(QChar(u'.')));
    FFmpegPlayerEngine::registerExtensions();
    QStringList registered;
    MediaTypeRegistry::querySupportedExtensions(registered, MediaTypeRegistry::MediaPlayer);
    EXPECT_EQ(registered, extensions);
}
