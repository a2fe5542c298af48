// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Signature.h"

#include "MediaBytes.h"

#include <gtest/gtest.h>

#include <ostream>
#include <random>

using marvola::guessFormat;
using marvola::isFormat;
using marvola::mpegAudioFrameSize;
using marvola::signatureFormat;

namespace {

struct Row
{
    const char *name;
    QByteArray head;
    const char *format; ///< null: none
};

void PrintTo(const Row &row, std::ostream *out)
{
    *out << row.name;
}

QByteArray padded(const QByteArray &head)
{
    return head + QByteArray(1024, '\x01');
}

QByteArray transportPackets(int count, int size, int offset)
{
    QByteArray packet(size, '\x01');
    packet[offset] = '\x47';
    return packet.repeated(count);
}

/// ADTS frames of 20 bytes each.
QByteArray adtsFrames(int count)
{
    return (QByteArray("\xFF\xF1\x50\x40\x02\x9F\xFC", 7) + QByteArray(13, '\0')).repeated(count);
}

class SignatureOf : public testing::TestWithParam<Row>
{
};

const Row Rows[] = {
    {"Ogg", padded("OggS"), "ogg"},
    {"Flac", padded("fLaC"), "flac"},
    {"Amr", padded("#!AMR\n"), "amr"},
    {"Wave", padded("RIFF1234WAVEfmt "), "wav"},
    {"Wave64", padded("RF641234WAVEds64"), "wav"},
    {"Avi", padded("RIFF1234AVI LIST"), "avi"},
    {"Aiff", padded("FORM1234AIFF"), "aiff"},
    {"Aifc", padded("FORM1234AIFC"), "aiff"},
    {"Matroska", padded("\x1A\x45\xDF\xA3"), "matroska"},
    {"Flv", padded("FLV\x01\x05"), "flv"},
    {"Asf", padded(QByteArray::fromHex("3026B2758E66CF11A6D900AA0062CE6C")), "asf"},
    {"ProgramStream", padded(QByteArray("\x00\x00\x01\xBA", 4)), "mpeg"},
    {"Ape", padded("MAC "), "ape"},
    {"WavPack", padded("wvpk"), "wv"},
    {"RealMedia", padded(".RMF"), "rm"},
    {"Caf", padded("caff"), "caf"},
    {"Mp4", padded(box("ftyp", "isom")), "mov"},
    {"OldQuickTime", padded(box("moov", "12345678")), "mov"},
    {"MediaFirst", padded(QByteArray("\x00\x00\x00\x00mdat", 8)), "mov"},
    {"MediaFirstLong", padded(QByteArray("\x00\x00\x00\x01mdat", 8)), "mov"},
    {"TransportStream", transportPackets(6, 188, 0), "mpegts"},
    {"RecordedTransportStream", transportPackets(6, 192, 4), "mpegts"},
    {"Adts", adtsFrames(5), "aac"},
    {"Mp3", mp3Frames(5), "mp3"},

    {"WaveOfAnotherKind", padded("RIFF1234ACON"), nullptr},
    {"FormOfAnotherKind", padded("FORM1234ILBM"), nullptr},
    {"BoxLongerThanTheFile", padded("\x7F\x01\x01\x01moov"), nullptr},
    {"BoxOfAnotherKind", padded(box("abcd", "12345678")), nullptr},
    {"FlvOfALaterVersion", padded("FLV\x02\x05"), nullptr},
    {"TooFewTransportPackets", transportPackets(4, 188, 0), nullptr},
    {"OneMp3FrameAndJunk", mp3Frames(1) + QByteArray(500, 'x'), nullptr},
    {"TwoMp3FramesAndJunk", mp3Frames(2) + QByteArray(500, 'x'), nullptr},
    {"OneAdtsFrameAndJunk", adtsFrames(1) + QByteArray(500, 'x'), nullptr},
    {"Midi", padded("MThd"), nullptr},
    {"Empty", "", nullptr},
    {"OneByte", "R", nullptr},
    {"CutSignature", "Ogg", nullptr},
    {"CutSecondSignature", "RIFF1234WAV", nullptr},
};

} // namespace

TEST_P(SignatureOf, NamesTheFormat)
{
    const Row &row = GetParam();
    const AVInputFormat *format = signatureFormat(row.head, row.head.size());
    if (row.format)
        EXPECT_TRUE(isFormat(format, row.format));
    else
        EXPECT_EQ(format, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Files, SignatureOf, testing::ValuesIn(Rows),
                         [](const testing::TestParamInfo<Row> &row) { return std::string(row.param.name); });

TEST(Signature, AFileOfOneOrTwoFramesIsAudio)
{
    EXPECT_TRUE(isFormat(signatureFormat(mp3Frames(1), 104), "mp3"));
    EXPECT_TRUE(isFormat(signatureFormat(mp3Frames(2), 208), "mp3"));
    EXPECT_TRUE(isFormat(signatureFormat(adtsFrames(1), 20), "aac"));
}

TEST(Signature, AFrameThatTheFileCutsOffIsNoChain)
{
    EXPECT_EQ(signatureFormat(mp3Frames(1).left(50), 50), nullptr);
}

TEST(Signature, TwoFramesLongerThanWhatIsSeenAreAudio)
{
    // 144 * 320000 / 32000 bytes: the third frame starts past the end of the bytes.
    const QByteArray frame = QByteArray("\xFF\xFB\xE8\x00", 4) + QByteArray(1436, '\0');
    EXPECT_TRUE(isFormat(signatureFormat(frame.repeated(2), 100000), "mp3"));
}

TEST(Guess, FindsFramesBehindJunk)
{
    EXPECT_TRUE(isFormat(guessFormat(QByteArray(700, '\0') + mp3Frames(40)), "mp3"));
}

TEST(Guess, PlaylistsAndOtherTextsAreNobodys)
{
    const QByteArray texts[] = {
        "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:10\n#EXTINF:9,\na.ts\n#EXT-X-ENDLIST\n",
        "ffconcat version 1.0\nfile 'a.mp3'\n",
        "<?xml version=\"1.0\"?><MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" profiles=\"urn:mpeg:dash:profile\"></MPD>",
        "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\nm=audio 5004 RTP/AVP 0\n",
        "1\n00:00:01,000 --> 00:00:02,000\nHello\n\n2\n00:00:03,000 --> 00:00:04,000\nYou\n",
        "[Script Info]\nScriptType: v4.00+\n",
        "\x89PNG\r\n\x1A\n",
        "GIF89a",
    };
    for (const QByteArray &text : texts) {
        EXPECT_EQ(signatureFormat(text, text.size()), nullptr) << text.constData();
        EXPECT_EQ(guessFormat(text), nullptr) << text.constData();
    }
}

TEST(Guess, NoiseIsNobodys)
{
    std::mt19937 random(7);
    for (int round = 0; round < 50; ++round) {
        QByteArray noise(8192, '\0');
        for (char &byte : noise)
            byte = static_cast<char>(random());
        EXPECT_EQ(signatureFormat(noise, noise.size()), nullptr) << "round " << round;
        EXPECT_EQ(guessFormat(noise), nullptr) << "round " << round;
    }
}

TEST(Guess, NothingIsNobodys)
{
    EXPECT_EQ(guessFormat(QByteArrayView()), nullptr);
    EXPECT_EQ(guessFormat(QByteArray(1, '\xFF')), nullptr);
    EXPECT_EQ(guessFormat(QByteArray(65536, '\0')), nullptr);
}

TEST(MpegAudioFrame, LengthsByVersionAndLayer)
{
    const auto size = [](const char *hex) { return mpegAudioFrameSize(QByteArray::fromHex(hex)); };
    EXPECT_EQ(size("FFFB9064"), 417); // version 1, layer 3, 128 kbit/s, 44.1 kHz
    EXPECT_EQ(size("FFFB9264"), 418); // the same, padded
    EXPECT_EQ(size("FFFDA400"), 576); // version 1, layer 2, 192 kbit/s, 48 kHz
    EXPECT_EQ(size("FFFF9C00"), 0);   // frequency 3 is none
    EXPECT_EQ(size("FFFF9800"), 432); // version 1, layer 1, 288 kbit/s, 32 kHz
    EXPECT_EQ(size("FFF38000"), 208); // version 2, layer 3, 64 kbit/s, 22.05 kHz
    EXPECT_EQ(size("FFE38000"), 417); // version 2.5, layer 3, 64 kbit/s, 11.025 kHz
}

TEST(MpegAudioFrame, WhatIsNoHeaderHasNoLength)
{
    const char *const headers[] = {"FFFB00",   "FFEB9064", "FFF99064", "FFFB0064",
                                   "FFFBF064", "FFFB9C64", "FEFB9064", ""};
    for (const char *header : headers)
        EXPECT_EQ(mpegAudioFrameSize(QByteArray::fromHex(header)), 0) << header;
}
