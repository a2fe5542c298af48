// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigChanges.h"
#include "platform/ConfigText.h"

#include <gtest/gtest.h>

#include <functional>

using namespace marvola;

namespace {

using Editing = std::function<void(ConfigChanges &)>;

QByteArray merged(const QByteArray &text, const Editing &edit)
{
    ConfigChanges changes;
    edit(changes);
    QByteArray out("before");
    EXPECT_TRUE(ConfigText(TextFrame(text)).merge(changes, out));
    EXPECT_TRUE(out.startsWith("before"));
    return out.mid(6);
}

Editing set(const QByteArray &group, const QByteArray &key, const QByteArray &value)
{
    return [=](ConfigChanges &changes) { changes.set(group, key, value); };
}

Editing removed(const QByteArray &group, const QByteArray &key)
{
    return [=](ConfigChanges &changes) { changes.set(group, key, std::nullopt); };
}

Editing cleared(const QByteArray &group)
{
    return [=](ConfigChanges &changes) { changes.clearGroup(group); };
}

const QByteArray sample = "# note\n[a]\n; about k\nk=1\nl=2\n\n[b]\nk=3\n";

} // namespace

TEST(ConfigMerge, NoChangeIsACopy)
{
    EXPECT_EQ(merged(sample, [](ConfigChanges &) {}), sample);
}

TEST(ConfigMerge, AChangedKeyKeepsItsPlace)
{
    EXPECT_EQ(merged(sample, set("a", "k", "9")), "# note\n[a]\n; about k\nk=9\nl=2\n\n[b]\nk=3\n");
}

TEST(ConfigMerge, ARemovedKeyVanishes)
{
    EXPECT_EQ(merged(sample, removed("a", "k")), "# note\n[a]\n; about k\nl=2\n\n[b]\nk=3\n");
    EXPECT_EQ(merged(sample, removed("a", "absent")), sample);
    EXPECT_EQ(merged(sample, removed("absent", "k")), sample);
}

TEST(ConfigMerge, NewKeysGoBehindTheGroupsLastLineInWriteOrder)
{
    EXPECT_EQ(merged(sample,
                     [](ConfigChanges &changes) {
                         changes.set("a", "z", QByteArray("8"));
                         changes.set("a", "m", QByteArray("9"));
                     }),
              "# note\n[a]\n; about k\nk=1\nl=2\nz=8\nm=9\n\n[b]\nk=3\n");
}

TEST(ConfigMerge, NewGroupsGoToTheEndInWriteOrder)
{
    EXPECT_EQ(merged("[a]\nk=1\n",
                     [](ConfigChanges &changes) {
                         changes.set("z", "1", QByteArray("x"));
                         changes.set("b", "1", QByteArray("y"));
                     }),
              "[a]\nk=1\n\n[z]\n1=x\n\n[b]\n1=y\n");
    EXPECT_EQ(merged("", set("z", "1", "x")), "[z]\n1=x\n");
}

TEST(ConfigMerge, AKeyWrittenAfterItsRemovalStaysInPlace)
{
    EXPECT_EQ(merged(sample,
                     [](ConfigChanges &changes) {
                         changes.set("a", "k", std::nullopt);
                         changes.set("a", "k", QByteArray("9"));
                     }),
              "# note\n[a]\n; about k\nk=9\nl=2\n\n[b]\nk=3\n");
}

TEST(ConfigMerge, AMissingLineEndIsAdded)
{
    EXPECT_EQ(merged("[a]\nk=1", set("a", "l", "2")), "[a]\nk=1\nl=2\n");
    EXPECT_EQ(merged("[a]", set("a", "l", "2")), "[a]\nl=2\n");
    EXPECT_EQ(merged("[a]\nk=1", set("b", "l", "2")), "[a]\nk=1\n\n[b]\nl=2\n");
}

TEST(ConfigMerge, LinesThatCannotBeUnderstoodAreKeptByteForByte)
{
    const QByteArray text = "top=1\n[a]\njunk\nk=\xFF\xFE\n  odd  \n[\xFF]\nz=1\n[unclosed\ny=2\n[b]\nk=3\n";
    EXPECT_EQ(merged(text, set("b", "k", "4")), QByteArray(text).replace("k=3", "k=4"));
    EXPECT_EQ(merged(text, set("a", "k", "5")),
              "top=1\n[a]\njunk\nk=\xFF\xFE\n  odd  \nk=5\n[\xFF]\nz=1\n[unclosed\ny=2\n[b]\nk=3\n");
    EXPECT_EQ(merged(text, removed("a", "k")), text);
    EXPECT_EQ(merged(text, cleared("a")), text) << "nothing that can be understood is in it";
}

TEST(ConfigMerge, UntouchedGroupsAreCopiedVerbatim)
{
    const QByteArray odd = "[b]  ; x\r\n  k  =  3  \r\n#c\r\n\r\n\tl=\\q\r\n";
    EXPECT_EQ(merged(odd + "[a]\nk=1\n", set("a", "k", "2")), odd + "[a]\nk=2\n");
}

TEST(ConfigMerge, AnUnchangedValueKeepsItsSpelling)
{
    EXPECT_EQ(merged("[a]\n k =  1\t\n", set("a", "k", "1")), "[a]\n k =  1\t\n");
    EXPECT_EQ(merged("[a]\n k =  1\t\n", set("a", "k", "2")), "[a]\nk=2\n");
}

TEST(ConfigMerge, OfDuplicatesOneLineIsLeft)
{
    EXPECT_EQ(merged("[a]\nk=1\nl=2\nk=3\n", set("a", "k", "4")), "[a]\nk=4\nl=2\n");
    EXPECT_EQ(merged("[a]\nk=1\nl=2\nk=3\n", removed("a", "k")), "[a]\nl=2\n");
    EXPECT_EQ(merged("[a]\nk=1\n[b]\n[a]\nk=3\n", set("a", "k", "4")), "[a]\nk=4\n[b]\n[a]\n");
}

TEST(ConfigMerge, ANewKeyOfAGroupGivenTwiceGoesToTheLastOne)
{
    EXPECT_EQ(merged("[a]\nk=1\n[b]\n[a]\nl=3\n", set("a", "m", "4")), "[a]\nk=1\n[b]\n[a]\nl=3\nm=4\n");
}

TEST(ConfigMerge, KeysSpelledOtherwiseAreTheSameKeys)
{
    EXPECT_EQ(merged("[a]\nx:y=1\n", set("a", "x%3Ay", "2")), "[a]\nx%3Ay=2\n");
    EXPECT_EQ(merged("[a]\n%78=1\n", removed("a", "x")), "[a]\n");
}

TEST(ConfigMerge, AClearedGroupGoesWithHeadingAndComments)
{
    EXPECT_EQ(merged(sample, cleared("a")), "# note\n[b]\nk=3\n");
    EXPECT_EQ(merged(sample, cleared("absent")), sample);
    EXPECT_EQ(merged("[a]\nk=1\n[b]\nk=2\n[a]\nl=3\n", cleared("a")), "[b]\nk=2\n");
}

TEST(ConfigMerge, AClearedGroupThatIsWrittenAgainStaysInPlaceInWriteOrder)
{
    EXPECT_EQ(merged(sample,
                     [](ConfigChanges &changes) {
                         changes.clearGroup("a");
                         changes.set("a", "l", QByteArray("7"));
                         changes.set("a", "k", QByteArray("8"));
                     }),
              "# note\n[a]\nl=7\nk=8\n\n[b]\nk=3\n");
}

TEST(ConfigMerge, AClearedGroupKeepsWhatCouldNotBeUnderstood)
{
    EXPECT_EQ(merged("[a]\nk=1\njunk\n[b]\n", cleared("a")), "[a]\njunk\n[b]\n");
}

TEST(ConfigMerge, AGroupKeepsItsHeadingWithoutKeys)
{
    EXPECT_EQ(merged("[a]\nk=1\n", removed("a", "k")), "[a]\n");
}

TEST(ConfigMerge, TooManyHeadingsAreNotMade)
{
    QByteArray text;
    for (std::size_t number = 0; number < ConfigText::MaxHeadings; ++number)
        text += '[' + QByteArray::number(static_cast<qulonglong>(number)) + "]\n";
    const ConfigText full{TextFrame(text)};
    QByteArray out;
    ConfigChanges changes;
    changes.set("7", "k", QByteArray("1"));
    EXPECT_TRUE(full.merge(changes, out)) << "a group that is there";
    changes.set("new", "k", QByteArray("1"));
    out.clear();
    EXPECT_FALSE(full.merge(changes, out)) << "one more";
    changes.clearGroup("8");
    out.clear();
    EXPECT_TRUE(full.merge(changes, out)) << "one for another";
    const ConfigText tooLong{TextFrame(text + "[more]\n")};
    out.clear();
    EXPECT_FALSE(tooLong.merge(ConfigChanges(), out));
}

TEST(ConfigMerge, TooManyLinesAreNotMade)
{
    const ConfigText full{TextFrame("[g]\n" + QByteArray(ConfigText::MaxLines - 2, '\n') + "k=1\n")};
    QByteArray out;
    ConfigChanges changes;
    changes.set("g", "k", QByteArray("2"));
    EXPECT_TRUE(full.merge(changes, out));
    changes.set("g", "l", QByteArray("3"));
    out.clear();
    EXPECT_FALSE(full.merge(changes, out));
    const ConfigText unended{TextFrame("[g]\nk=1\n" + QByteArray(ConfigText::MaxLines - 4, '\n') + "[h]\nm=1")};
    out.clear();
    EXPECT_FALSE(unended.merge(changes, out)) << "a last line without an end counts";
}
