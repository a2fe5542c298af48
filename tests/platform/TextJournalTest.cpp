// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/TextJournal.h"

#include "SealedBytes.h"
#include "platform/Crc32.h"

#include <gtest/gtest.h>

using namespace marvola;

namespace {

constexpr qsizetype FileSize = 4000;

QByteArray withLastLine(const QByteArray &file, const QByteArray &line)
{
    return file.first(file.size() - line.size()) + line;
}

TextJournal journalBetween(const QByteArray &before, const QByteArray &after)
{
    return TextJournal::between(before, after, *TextSeal::fromFile(after));
}

/// A journal line with a check that holds, whatever the fields are.
QByteArray forged(const QByteArray &rest)
{
    return "#journal=1 " + hexField(crc32(rest)) + ' ' + rest + '\n';
}

QByteArray encoded(const QByteArray &bytes)
{
    return bytes.toBase64(QByteArray::OmitTrailingEquals);
}

/// Counts what is logged while it lives.
class MessageCounter
{
public:
    MessageCounter() : m_before(qInstallMessageHandler(count)) { s_messages = 0; }
    ~MessageCounter() { qInstallMessageHandler(m_before); }
    MessageCounter(const MessageCounter &) = delete;
    MessageCounter &operator=(const MessageCounter &) = delete;

    static int messages() { return s_messages; }

private:
    static void count(QtMsgType, const QMessageLogContext &, const QString &) { ++s_messages; }

    inline static int s_messages = 0;
    QtMessageHandler m_before;
};

} // namespace

TEST(TextJournal, TurnsOneFileIntoTheOther)
{
    const QByteArray contents[] = {"",
                                   "[g]\nk=1\n",
                                   "[g]\nk=2\n",
                                   "[g]\nk=1\nl=22\n",
                                   "[h]\nk=1\n",
                                   "[g]\nk=\n",
                                   QByteArray("[g]\nk=") + QByteArray(1000, 'x') + "\n"};
    for (const QByteArray &from : contents) {
        for (const QByteArray &to : contents) {
            const QByteArray before = sealedBytes(from, FileSize);
            const QByteArray after = sealedBytes(to, FileSize, crc32(from));
            const QByteArray line = journalBetween(before, after).toLine();
            EXPECT_EQ(line.count('\n'), 1);
            EXPECT_EQ(line.count('='), 1) << "parts of the line would read like entries";
            const auto journal = TextJournal::fromFile(withLastLine(before, line));
            ASSERT_TRUE(journal.has_value()) << from.constData() << to.constData();
            EXPECT_EQ(journal->applied(before), after);
        }
    }
}

TEST(TextJournal, HoldsOnlyWhatChanges)
{
    const QByteArray before = sealedBytes("[g]\naaa=1\nbbb=2\n", FileSize);
    const QByteArray after = sealedBytes("[g]\naaa=1\nbbb=3\n", FileSize);
    const TextJournal journal = journalBetween(before, after);
    EXPECT_EQ(journal.changed, "3");
    EXPECT_EQ(journal.offset, TextSeal::Size + 14);
}

TEST(TextJournal, HoldsLongChangesOfAnyBytes)
{
    const qsizetype size = 1'000'000;
    QByteArray bytes(300'000, '\0');
    for (qsizetype at = 0; at < bytes.size(); ++at)
        bytes[at] = static_cast<char>(at % 251);
    const QByteArray before = sealedBytes("", size);
    const QByteArray after = sealedBytes("[g]\nk=" + bytes + "\n", size);
    const QByteArray file = withLastLine(before, journalBetween(before, after).toLine());
    const auto journal = TextJournal::fromFile(file);
    ASSERT_TRUE(journal.has_value());
    EXPECT_EQ(journal->applied(file), after);
}

TEST(TextJournal, ALineCutOrFlippedAnywhereIsNone)
{
    const QByteArray before = sealedBytes("[g]\nk=1\n", FileSize);
    const QByteArray line = journalBetween(before, sealedBytes("[g]\nk=2\nl=3\n", FileSize)).toLine();
    for (qsizetype size = 0; size + 1 < line.size(); ++size) {
        EXPECT_FALSE(TextJournal::fromFile(withLastLine(before, line.first(size) + "\n"))) << size;
        EXPECT_FALSE(TextJournal::fromFile(withLastLine(before, "\n" + line.sliced(size + 1)))) << size;
    }
    for (qsizetype bit = 0; bit < (line.size() - 1) * 8; ++bit) {
        QByteArray flipped = line;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
        ASSERT_FALSE(TextJournal::fromFile(withLastLine(before, flipped))) << bit;
    }
}

TEST(TextJournal, OnlyTheLastLineThatIsNotBlankCounts)
{
    const QByteArray before = sealedBytes("[g]\nk=1\n", FileSize);
    const QByteArray line = journalBetween(before, sealedBytes("[g]\nk=2\n", FileSize)).toLine();
    EXPECT_TRUE(TextJournal::fromFile(withLastLine(before, line + "\n\n\n")));
    EXPECT_FALSE(TextJournal::fromFile(withLastLine(before, line + "#\n")));
}

TEST(TextJournal, DoesNotApplyToAnotherFile)
{
    const QByteArray before = sealedBytes("[g]\nk=1\nlong=1\n", FileSize);
    const QByteArray line = journalBetween(before, sealedBytes("[g]\nk=2\nlong=1\n", FileSize)).toLine();
    const QByteArray other = withLastLine(sealedBytes("[g]\nk=1\nlong=7\n", FileSize), line);
    const auto journal = TextJournal::fromFile(other);
    ASSERT_TRUE(journal.has_value());
    EXPECT_FALSE(journal->applied(other));
}

TEST(TextJournal, ForgedFieldsAreRefused)
{
    const QByteArray file = sealedBytes("[g]\nk=1\n", FileSize);
    const QByteArray data = encoded("x");
    const QByteArray seal = " 0000000008 00000000 00000000 ";
    EXPECT_TRUE(TextJournal::fromFile(withLastLine(file, forged("0000000040 0000000001" + seal + data))));
    const struct
    {
        const char *what;
        QByteArray rest;
    } table[] = {
        {"nothing", ""},
        {"offset in the seal", "0000000039 0000000001" + seal + data},
        {"offset behind the content", "0000000048 0000000001" + seal + data},
        {"offset beyond all", "4294967295 0000000001" + seal + data},
        {"length beyond the content", "0000000041 0000000008" + seal + data},
        {"length beyond all", "0000000040 4294967295" + seal + data},
        {"content behind the file", "0000000040 0000000001 0000009000 00000000 00000000 " + data},
        {"content up to the journal's line", "0000000040 0000000001 0000003950 00000000 00000000 " + data},
        {"no number", "000000004x 0000000001" + seal + data},
        {"no data", "0000000040 0000000001" + seal},
        {"no base64", "0000000040 0000000001" + seal + "!!!!"},
        {"too much data", "0000000040 0000000001" + seal + data + data},
        {"a longer change", "0000000040 0000000001" + seal + encoded("xy")},
        {"a shorter change", "0000000040 0000000003" + seal + encoded("xy")},
        {"a byte that is no base64", "0000000040 0000000003" + seal + "AB=D"},
        {"a byte behind the data", "0000000040 0000000001" + seal + data + "!"},
    };
    for (const auto &row : table)
        EXPECT_FALSE(TextJournal::fromFile(withLastLine(file, forged(row.rest)))) << row.what;
}

TEST(TextJournal, ForgedDataIsRefusedWithoutAWord)
{
    const QByteArray file = sealedBytes("[g]\nk=1\n", FileSize);
    const QByteArray good = encoded("[g]\nk=2\n");
    const MessageCounter counter;
    for (qsizetype at = 0; at < good.size(); ++at) {
        for (int byte = 0; byte < 256; ++byte) {
            QByteArray data = good;
            data[at] = static_cast<char>(byte);
            const QByteArray line = forged("0000000040 0000000008 0000000008 00000000 00000000 " + data);
            const auto journal = TextJournal::fromFile(withLastLine(file, line));
            EXPECT_TRUE(!journal || journal->changed.size() == 8);
        }
    }
    EXPECT_EQ(counter.messages(), 0);
}
