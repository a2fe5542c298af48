// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// The engine on a file of anybody's bytes: no crash, no leak, the same answer to the same question, and texts that are
// no longer than the file.

#include "FuzzInput.h"
#include "Scratch.h"

#include <marvola/FFmpegPlayerEngine.h>

#include <initializer_list>

namespace {

struct Answer
{
    bool isKnown = false;
    UINT8 hasAudio = 0;
    UINT8 hasVideo = 0;
    ClipInfo info;
};

Answer ask(FFmpegPlayerEngine &engine, const QByteArray &path)
{
    Answer answer;
    answer.isKnown = engine.getMediaKind(path, answer.hasAudio, answer.hasVideo);
    require(engine.getClipInfo(path, answer.info) == answer.isKnown, "both questions are answered or none");
    engine.finishScan();
    return answer;
}

void requireSane(const Answer &answer, std::size_t fileSize)
{
    require(answer.hasAudio <= 1 && answer.hasVideo <= 1, "kinds are yes or no");
    const ClipInfo &info = answer.info;
    for (const QString *text :
         {&info.title, &info.artist, &info.album, &info.genre, &info.composer, &info.copyright, &info.comment}) {
        // Numbers stand for names in some tags ("Psychedelic Rock" is 36 bytes in UTF-16).
        require(static_cast<std::size_t>(text->size()) <= fileSize * 8 + 64, "no text is longer than its file");
    }
    require(info.durationMs >= 0 && info.bitrate >= 0 && info.sampleRate >= 0 && info.channels >= 0 &&
                info.width >= 0 && info.height >= 0,
            "no number is negative");
}

bool isSame(const Answer &one, const Answer &other)
{
    return one.isKnown == other.isKnown && one.hasAudio == other.hasAudio && one.hasVideo == other.hasVideo &&
           one.info.title == other.info.title && one.info.artist == other.info.artist &&
           one.info.durationMs == other.info.durationMs;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    static const Scratch scratch;
    // Without a mode byte at its end, a file is scanned as a refresh scans it.
    const bool isDeep = size > 0 && data[size - 1] == 0xDE;
    const QByteArrayView bytes = FuzzInput(data, size).rest();
    scratch.write("fuzz.media", bytes);
    const QByteArray path = QFile::encodeName(scratch.path("fuzz.media"));

    FFmpegPlayerEngine engine;
    engine.exchangeScanSettingA(isDeep ? 1 : 0);
    engine.exchangeScanSettingB(0);
    const Answer answer = ask(engine, path);
    if (answer.isKnown)
        requireSane(answer, size);
    require(isSame(answer, ask(engine, path)), "the same file gets the same answer");
    return 0;
}
