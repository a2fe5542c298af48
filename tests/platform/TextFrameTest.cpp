// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/TextFrame.h"

#include "SealedBytes.h"
#include "platform/Crc32.h"
#include "platform/TextJournal.h"

#include <gtest/gtest.h>

using namespace marvola;

namespace {

constexpr qsizetype FileSize = 2000;
const QByteArray text = "[g]\nk=1\n";

QByteArray contentOf(const QByteArray &file)
{
    return TextFrame(file).content().toByteArray();
}

QByteArray journaled(const QByteArray &before, const QByteArray &after)
{
    const QByteArray line = TextJournal::between(before, after, *TextSeal::fromFile(after)).toLine();
    return before.first(before.size() - line.size()) + line;
}

} // namespace

TEST(TextFrame, NothingAndBlanksAreBlank)
{
    for (const QByteArray &file :
         {QByteArray(), QByteArray(50'000, '\0'), QByteArray(10, '\n'), QByteArray(" \t\r\n")}) {
        const TextFrame frame(file);
        EXPECT_EQ(frame.state(), TextFrame::State::Blank);
        EXPECT_TRUE(frame.content().isEmpty());
        EXPECT_EQ(frame.bytes(), file);
    }
}

TEST(TextFrame, ASealedFileIsItsContentAndPadding)
{
    const TextFrame frame(sealedBytes(text, FileSize));
    EXPECT_EQ(frame.state(), TextFrame::State::Sealed);
    EXPECT_EQ(frame.content(), text);
    EXPECT_EQ(frame.identity(), crc32(text));
    EXPECT_EQ(frame.bytes().size(), FileSize);
}

TEST(TextFrame, TheSealSaysWhereTheContentEndsAndNotTheBlanks)
{
    EXPECT_EQ(contentOf(sealedBytes(text + "\n\n", FileSize)), text + "\n\n");
    EXPECT_EQ(TextFrame(sealedBytes("", FileSize)).state(), TextFrame::State::Sealed);
}

TEST(TextFrame, FilesOfOthersAreContentFromTheFirstLineToTheLast)
{
    EXPECT_EQ(contentOf(text), text);
    EXPECT_EQ(contentOf("\n\n" + text + "\n\0\n"), "\n\n" + text);
    EXPECT_EQ(contentOf("\xEF\xBB\xBF" + text), text);
    EXPECT_EQ(contentOf("[g]\nk=1"), "[g]\nk=1");
    EXPECT_EQ(contentOf("# note\n" + text), "# note\n" + text);
    EXPECT_EQ(TextFrame(text).state(), TextFrame::State::Unsealed);
    EXPECT_EQ(TextFrame(text).identity(), crc32(text));
    EXPECT_FALSE(TextFrame(text).hasSealLine());
}

TEST(TextFrame, ASealThatDoesNotHoldIsLeftOutOfTheContent)
{
    const QByteArray edited = sealedBytes(text, FileSize).replace("k=1", "k=2");
    const TextFrame frame(edited);
    EXPECT_EQ(frame.state(), TextFrame::State::Unsealed);
    EXPECT_TRUE(frame.hasSealLine());
    EXPECT_EQ(frame.content(), "[g]\nk=2\n");
    EXPECT_EQ(frame.identity(), crc32(edited));
    EXPECT_EQ(contentOf("#marvola=2 whatever\n" + text), text);
    EXPECT_EQ(contentOf("#marvola=1 cut"), "");
}

TEST(TextFrame, AJournalCountsAsDone)
{
    const QByteArray before = sealedBytes(text, FileSize);
    const QByteArray after = sealedBytes("[g]\nk=2\nl=3\n", FileSize, 7);
    const TextFrame frame(journaled(before, after));
    EXPECT_EQ(frame.state(), TextFrame::State::Journaled);
    EXPECT_EQ(frame.bytes(), after);
    EXPECT_EQ(frame.content(), "[g]\nk=2\nl=3\n");
    EXPECT_EQ(frame.identity(), crc32("[g]\nk=2\nl=3\n"));
    EXPECT_EQ(frame.seal().replaced, 7U);
}

TEST(TextFrame, AJournalThatDoesNotApplyIsNotContent)
{
    const QByteArray file =
        journaled(sealedBytes(text, FileSize), sealedBytes("[g]\nk=2\n", FileSize)).replace("[g]", "[h]");
    EXPECT_EQ(TextFrame(file).state(), TextFrame::State::Unsealed);
    EXPECT_EQ(contentOf(file), "[h]\nk=1\n");
}

TEST(TextFrame, SealingKeepsTheContentAndFillsUp)
{
    const TextFrame frame = TextFrame::sealed(QByteArray(TextSeal::Size, '\n') + text, 0x12345678U, 100);
    EXPECT_EQ(frame.bytes().size(), 100);
    EXPECT_TRUE(frame.bytes().endsWith("k=1\n" + QByteArray(100 - TextSeal::Size - text.size(), '\n')));
    EXPECT_EQ(frame.content(), text);
    const TextFrame again(frame.bytes());
    EXPECT_EQ(again.state(), TextFrame::State::Sealed);
    EXPECT_EQ(again.content(), text);
    EXPECT_EQ(again.seal().replaced, 0x12345678U);
    EXPECT_EQ(sealedBytes(text, 10).size(), TextSeal::Size + text.size()) << "never shorter than its content";
    EXPECT_EQ(frame.ofSize(300).bytes().size(), 300);
    EXPECT_EQ(TextFrame(frame.ofSize(300).bytes()).content(), text);
}
