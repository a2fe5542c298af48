// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

using namespace Qt::StringLiterals;

namespace {

class ShowCommand : public CliTest
{
};

} // namespace

TEST_F(ShowCommand, ArtistsWithFilesAndCountsOfTheRest)
{
    write(u"phone/rock/1.wav"_s, waveFile({u"Bo"_s, u"Second"_s, u"Folk"_s}));
    write(u"phone/rock/2.wav"_s, waveFile({u"ada"_s, u"First"_s, u"Jazz"_s}));
    write(u"card/3.wav"_s, waveFile({u"Bo"_s, u"First"_s, u"Jazz"_s}));
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    EXPECT_EQ(run({u"show"_s}).output.toStdString(), "3 files indexed: 3 audio, 0 video, 0 other\n"
                                                     "\n"
                                                     "Artists (2)\n"
                                                     "  ada\n"
                                                     "      Phone: rock/2.wav\n"
                                                     "  Bo\n"
                                                     "      Phone: rock/1.wav\n"
                                                     "      Memory Card: 3.wav\n"
                                                     "\n"
                                                     "Albums (2)\n"
                                                     "  First   2 files\n"
                                                     "  Second  1 file\n"
                                                     "\n"
                                                     "Genres (2)\n"
                                                     "  Folk  1 file\n"
                                                     "  Jazz  2 files\n"
                                                     "\n"
                                                     "Videos (0)\n");
}

TEST_F(ShowCommand, JsonHasWholePaths)
{
    const QString file = write(u"phone/1.wav"_s, waveFile({u"Bo"_s, u"Second"_s, u"Folk"_s}));
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    const QJsonObject overview = run({u"show"_s, u"--json"_s}).object();
    EXPECT_EQ(overview[u"media"_s].toInt(-1), 1);
    const QJsonObject artist = overview[u"artists"_s].toArray().at(0).toObject();
    EXPECT_EQ(artist[u"name"_s].toString(), u"Bo"_s);
    EXPECT_EQ(artist[u"files"_s].toArray(), QJsonArray{file});
    EXPECT_EQ(overview[u"genres"_s].toArray().at(0).toObject()[u"name"_s].toString(), u"Folk"_s);
}

TEST_F(ShowCommand, EmptyIndexIsShownAsEmpty)
{
    const CliResult result = run({u"show"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.startsWith("0 files indexed")) << result.output.constData();
}
