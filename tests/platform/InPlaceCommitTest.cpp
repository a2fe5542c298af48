// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/InPlaceCommit.h"

#include "Folder.h"
#include "SealedBytes.h"
#include "platform/TextJournal.h"

#include <random>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype FileSize = 3000;
const QString name = u"file"_s;

const QByteArray oldContent = "[g]\nk=old\nlong=" + QByteArray(600, 'a') + "\n";
const QByteArray newContent = "[g]\nk=newer\nlong=" + QByteArray(700, 'b') + "\n";

TextFrame frameOf(const QByteArray &content, qsizetype size = FileSize)
{
    return TextFrame(sealedBytes(content, size));
}

/// The three states that a file passes on its way from one content to another.
struct Stages
{
    QByteArray before;
    QByteArray journaled;
    QByteArray changed; ///< the journal is still there
    QByteArray after;
};

Stages stagesOf(const QByteArray &before, const QByteArray &after)
{
    const QByteArray line = TextJournal::between(before, after, *TextSeal::fromFile(after)).toLine();
    const QByteArray journaled = before.first(before.size() - line.size()) + line;
    QByteArray changed = after.first(after.size() - line.size()) + line;
    return {before, journaled, changed, after};
}

/// The bytes of \a to in the sectors that \a isWritten names, else those of \a from.
template<typename IsWritten>
QByteArray torn(const QByteArray &from, const QByteArray &to, IsWritten isWritten)
{
    constexpr qsizetype Sector = 512;
    QByteArray file = from;
    for (qsizetype at = 0; at < file.size(); at += Sector) {
        if (isWritten())
            file.replace(at, Sector, to.mid(at, Sector));
    }
    return file;
}

} // namespace

TEST(InPlaceCommit, ChangesTheFileWithinItsLength)
{
    const Folder folder;
    const TextFrame now = frameOf(oldContent);
    folder.put(name, now.bytes());
    const auto done = commitInPlace(folder.encodedPath(name), now, frameOf(newContent), Growth::Forbidden);
    ASSERT_TRUE(done.has_value());
    EXPECT_EQ(folder.bytes(name), frameOf(newContent).bytes()) << "no journal is left, and no old text";
    EXPECT_EQ(done->bytes(), folder.bytes(name));
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(InPlaceCommit, ShorterContentLeavesNoneOfTheOldBehind)
{
    const Folder folder;
    folder.put(name, frameOf(oldContent).bytes());
    ASSERT_TRUE(commitInPlace(folder.encodedPath(name), frameOf(oldContent), frameOf("[g]\n"), Growth::Forbidden));
    EXPECT_EQ(folder.bytes(name), frameOf("[g]\n").bytes());
}

TEST(InPlaceCommit, WithoutRoomNothingIsTouched)
{
    const Folder folder;
    const TextFrame now = frameOf(oldContent, oldContent.size() + TextSeal::Size + 50);
    folder.put(name, now.bytes());
    const TextFrame next = frameOf("[g]\nk=1\n", now.bytes().size());
    EXPECT_FALSE(commitInPlace(folder.encodedPath(name), now, next, Growth::Forbidden));
    EXPECT_FALSE(commitInPlace(folder.encodedPath(name), now, frameOf(newContent, 0), Growth::Forbidden));
    EXPECT_EQ(folder.bytes(name), now.bytes());
}

TEST(InPlaceCommit, GrowsWhereItMay)
{
    const Folder folder;
    const TextFrame now = frameOf(oldContent, 0);
    folder.put(name, now.bytes());
    const auto done = commitInPlace(folder.encodedPath(name), now, frameOf(newContent, 0), Growth::Allowed);
    ASSERT_TRUE(done.has_value());
    EXPECT_EQ(folder.bytes(name), done->bytes());
    EXPECT_EQ(TextFrame(folder.bytes(name)).state(), TextFrame::State::Sealed);
    EXPECT_EQ(TextFrame(folder.bytes(name)).content(), newContent);
    EXPECT_GT(folder.bytes(name).size(), now.bytes().size());
}

TEST(InPlaceCommit, TheExactRoomIsEnoughAndOneByteLessIsNot)
{
    const TextFrame next = frameOf("[g]\nk=2\n");
    const QByteArray line = TextJournal::between(frameOf("[g]\nk=1\n").bytes(), next.bytes(), next.seal()).toLine();
    // The journal's mark lies within one sector here, so the room is the text, a line end and the journal.
    const qsizetype exact = TextSeal::Size + 8 + 1 + line.size();
    for (const qsizetype size : {exact - 1, exact}) {
        const Folder folder;
        folder.put(name, sealedBytes("[g]\nk=1\n", size));
        const auto done = commitInPlace(folder.encodedPath(name), frameOf("[g]\nk=1\n", size),
                                        frameOf("[g]\nk=2\n", size), Growth::Forbidden);
        EXPECT_EQ(done.has_value(), size == exact) << size;
    }
}

TEST(InPlaceCommit, AListFileTakesTheRewritingOfAsMuchTextAsDocumented)
{
    constexpr qsizetype ListFileSize = 50'000;
    constexpr qsizetype MostText = 21'370;
    const auto commit = [](qsizetype kept, qsizetype changed) {
        const Folder folder;
        const QByteArray head = "[g]\nk=" + QByteArray(kept, 'k');
        const TextFrame now = frameOf(head + QByteArray(changed, 'a') + "\n", ListFileSize);
        folder.put(name, now.bytes());
        const TextFrame next = frameOf(head + QByteArray(changed, 'b') + "\n", ListFileSize);
        return commitInPlace(folder.encodedPath(name), now, next, Growth::Forbidden).has_value();
    };
    EXPECT_TRUE(commit(0, MostText));
    EXPECT_FALSE(commit(0, MostText + 20));
    EXPECT_TRUE(commit(40'000, 4'200)) << "what stays the same needs no room in the journal";
    EXPECT_FALSE(commit(40'000, 4'300));
}

TEST(InPlaceCommit, AFileThatIsNotTheOneKnownIsLeftAlone)
{
    const Folder folder;
    folder.put(name, frameOf(oldContent, FileSize + 1).bytes());
    EXPECT_FALSE(commitInPlace(folder.encodedPath(name), frameOf(oldContent), frameOf(newContent), Growth::Allowed));
    EXPECT_EQ(folder.bytes(name).size(), FileSize + 1);
    EXPECT_FALSE(
        commitInPlace(folder.encodedPath(u"absent"_s), frameOf(oldContent), frameOf(newContent), Growth::Allowed));
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(InPlaceCommit, BlankAndForeignFilesBecomeSealed)
{
    for (const QByteArray &before : {QByteArray(FileSize, '\0'), QByteArray("[g]\nk=old\n") + QByteArray(2000, '\n')}) {
        const Folder folder;
        folder.put(name, before);
        const TextFrame next = frameOf(newContent, before.size());
        ASSERT_TRUE(commitInPlace(folder.encodedPath(name), TextFrame(before), next, Growth::Forbidden));
        EXPECT_EQ(folder.bytes(name), next.bytes());
    }
}

TEST(InPlaceCommit, AnEarlierCommitIsFinishedFirst)
{
    const Stages stages = stagesOf(frameOf(oldContent).bytes(), frameOf(newContent).bytes());
    const Folder folder;
    folder.put(name, stages.journaled);
    const TextFrame now(stages.journaled);
    ASSERT_EQ(now.state(), TextFrame::State::Journaled);
    const TextFrame next = frameOf(newContent + "more=1\n");
    ASSERT_TRUE(commitInPlace(folder.encodedPath(name), now, next, Growth::Forbidden));
    EXPECT_EQ(folder.bytes(name), next.bytes());
}

TEST(InPlaceCommit, OldTextBehindAnEarlierCommitThatStoppedIsNoPartOfTheNext)
{
    const Folder folder;
    const Stages stages = stagesOf(frameOf(oldContent).bytes(), frameOf("[g]\n").bytes());
    folder.put(name, stages.journaled);
    // Its last byte is a line end, as the space that the earlier commit should have left.
    const TextFrame next = frameOf("[g]\nk=longer\n");
    ASSERT_TRUE(commitInPlace(folder.encodedPath(name), TextFrame(stages.journaled), next, Growth::Forbidden));
    EXPECT_EQ(folder.bytes(name), next.bytes());
}

TEST(InPlaceCommit, CutOffInTheJournalTheFileReadsAsBefore)
{
    const Stages stages = stagesOf(frameOf(oldContent).bytes(), frameOf(newContent).bytes());
    for (qsizetype written = 0; written < FileSize; ++written) {
        const QByteArray file = stages.journaled.first(written) + stages.before.mid(written);
        const QByteArray content = TextFrame(file).content().toByteArray();
        const bool isWhole = file == stages.journaled || file.chopped(1) == stages.journaled.chopped(1);
        ASSERT_EQ(content, isWhole ? newContent : oldContent) << written;
    }
}

TEST(InPlaceCommit, CutOffInTheChangeTheFileReadsAsMeant)
{
    const Stages stages = stagesOf(frameOf(oldContent).bytes(), frameOf(newContent).bytes());
    for (qsizetype written = 0; written <= FileSize; ++written) {
        const QByteArray file = stages.changed.first(written) + stages.journaled.mid(written);
        ASSERT_EQ(TextFrame(file).content(), newContent) << written;
    }
}

TEST(InPlaceCommit, CutOffInTheClearingTheFileReadsAsMeant)
{
    const Stages stages = stagesOf(frameOf(oldContent).bytes(), frameOf(newContent).bytes());
    for (qsizetype written = 0; written <= FileSize; ++written) {
        const QByteArray file = stages.after.first(written) + stages.changed.mid(written);
        ASSERT_EQ(TextFrame(file).content(), newContent) << written;
    }
}

TEST(InPlaceCommit, WhicheverSectorsWereWrittenTheFileReadsAsOneOfTheTwo)
{
    const QByteArray before = frameOf(oldContent).bytes();
    const Stages stages = stagesOf(before, frameOf(newContent).bytes());
    const auto seed = std::random_device()();
    std::mt19937 random(seed);
    const auto coin = [&random] { return random() % 2 == 0; };
    for (int round = 0; round < 2000; ++round) {
        const QByteArray first = TextFrame(torn(stages.before, stages.journaled, coin)).content().toByteArray();
        ASSERT_TRUE(first == oldContent || first == newContent) << "seed " << seed;
        ASSERT_EQ(TextFrame(torn(stages.journaled, stages.changed, coin)).content(), newContent) << "seed " << seed;
        ASSERT_EQ(TextFrame(torn(stages.changed, stages.after, coin)).content(), newContent) << "seed " << seed;
    }
}
