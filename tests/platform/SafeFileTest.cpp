// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/SafeFile.h"

#include "Folder.h"
#include "SealedBytes.h"
#include "platform/Crc32.h"
#include "platform/TextJournal.h"

#include <thread>

#include <csignal>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

const QString name = u"file"_s;
const QString leftoverName = u"file.new"_s;
const QByteArray oldContent = "[g]\nk=old\n";
const QByteArray newContent = "[g]\nk=new\nl=1\n";
constexpr qsizetype FileSize = 3000;

QByteArray oldFile()
{
    return sealedBytes(oldContent, FileSize);
}

/// The copy that a commit from the old to the new content makes.
QByteArray leftoverFile()
{
    return sealedBytes(newContent, FileSize, crc32(oldContent));
}

SafeFile::Merge becoming(const QByteArray &content)
{
    return [content](const TextFrame &, QByteArray &file) {
        file += content;
        return true;
    };
}

QByteArray read(const Folder &folder)
{
    return SafeFile(folder.path(name)).read().content().toByteArray();
}

bool commit(const Folder &folder, const QByteArray &content, SafeFile::Way way = SafeFile::Way::AsFilesystem)
{
    return SafeFile(folder.path(name), way).commit(becoming(content)).has_value();
}

/// Something where the second copy would go, so that none can be made.
void blockCopies(const Folder &folder)
{
    ASSERT_TRUE(QDir(folder.path(QString())).mkpath(leftoverName + u"/full"_s));
}

QByteArray damaged(QByteArray file)
{
    return file.replace("k=old", "k=o#d");
}

} // namespace

TEST(SafeFile, AMissingFileIsBlankAndReadingMakesNothing)
{
    const Folder folder;
    EXPECT_EQ(SafeFile(folder.path(u"a/b"_s)).read().state(), TextFrame::State::Blank);
    EXPECT_TRUE(folder.names().isEmpty());
}

TEST(SafeFile, ACommitMakesTheFileAndItsFolders)
{
    const Folder folder;
    SafeFile file(folder.path(u"a/b/file"_s));
    ASSERT_TRUE(file.commit(becoming(newContent)));
    EXPECT_EQ(folder.bytes(u"a/b/file"_s), sealedBytes(newContent));
    EXPECT_EQ(QDir(folder.path(u"a/b"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList(name));
}

TEST(SafeFile, ACommitNamesTheFileItReplaces)
{
    const Folder folder;
    folder.put(name, oldFile());
    ASSERT_TRUE(commit(folder, newContent));
    EXPECT_EQ(folder.bytes(name), leftoverFile());
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(SafeFile, AFileNeverGetsShorter)
{
    for (const auto way : {SafeFile::Way::AsFilesystem, SafeFile::Way::InPlace}) {
        const Folder folder;
        folder.put(name, QByteArray(50'000, '\0'));
        ASSERT_TRUE(commit(folder, newContent, way));
        EXPECT_EQ(folder.bytes(name).size(), 50'000);
        ASSERT_TRUE(commit(folder, "", way));
        EXPECT_EQ(folder.bytes(name).size(), 50'000);
        EXPECT_EQ(read(folder), "");
    }
}

TEST(SafeFile, TheMergeGetsWhatIsOnDiskByThen)
{
    const Folder folder;
    folder.put(name, oldFile());
    SafeFile file(folder.path(name));
    ASSERT_EQ(file.read().content(), oldContent);
    ASSERT_TRUE(commit(folder, "[g]\nby=others\n"));
    QByteArray seen;
    ASSERT_TRUE(file.commit([&seen](const TextFrame &now, QByteArray &out) {
        seen = now.content().toByteArray();
        out += seen + "more=1\n";
        return true;
    }));
    EXPECT_EQ(seen, "[g]\nby=others\n");
    EXPECT_EQ(read(folder), "[g]\nby=others\nmore=1\n");
}

TEST(SafeFile, WhatIsKnownIsTakenOnlyWhileItIsOnDisk)
{
    const Folder folder;
    folder.put(name, oldFile());
    SafeFile file(folder.path(name));
    const TextFrame known = file.read();
    QByteArray seen;
    const SafeFile::Merge look = [&seen](const TextFrame &now, QByteArray &out) {
        seen = now.bytes();
        out += now.content();
        return true;
    };
    ASSERT_TRUE(file.commit(look, &known));
    EXPECT_EQ(seen.constData(), known.bytes().constData()) << "the very same bytes";
    ASSERT_TRUE(commit(folder, QByteArray(oldContent).replace("old", "new")));
    ASSERT_TRUE(file.commit(look, &known));
    EXPECT_TRUE(seen.contains("k=new"));
    EXPECT_EQ(read(folder), QByteArray(oldContent).replace("old", "new"));
    // Nor is a damaged file taken for what it was.
    folder.put(name, damaged(oldFile()));
    ASSERT_TRUE(file.commit(look, &known));
    EXPECT_TRUE(seen.contains("k=o#d"));
}

TEST(SafeFile, TheSameContentIsNotWritten)
{
    const Folder folder;
    const QByteArray hand = "[g]\nk=1\n\n\n";
    folder.put(name, hand);
    struct stat before = {};
    ASSERT_EQ(::stat(folder.encodedPath(name).constData(), &before), 0);
    EXPECT_TRUE(commit(folder, "[g]\nk=1\n"));
    struct stat after = {};
    ASSERT_EQ(::stat(folder.encodedPath(name).constData(), &after), 0);
    EXPECT_EQ(folder.bytes(name), hand);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(before.st_mtim.tv_nsec, after.st_mtim.tv_nsec);
}

TEST(SafeFile, NothingIntoAMissingFileMakesNone)
{
    const Folder folder;
    EXPECT_TRUE(commit(folder, ""));
    EXPECT_TRUE(folder.names().isEmpty());
}

TEST(SafeFile, ModeIsKeptAndALinkStaysALink)
{
    const Folder folder;
    folder.put(u"target"_s, oldFile());
    ASSERT_EQ(::chmod(folder.encodedPath(u"target"_s).constData(), 0604), 0);
    ASSERT_TRUE(QFile::link(u"target"_s, folder.path(name)));
    ASSERT_TRUE(commit(folder, newContent));
    EXPECT_TRUE(QFileInfo(folder.path(name)).isSymLink());
    EXPECT_EQ(folder.bytes(u"target"_s), leftoverFile());
    struct stat status = {};
    ASSERT_EQ(::stat(folder.encodedPath(u"target"_s).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0604U);
    EXPECT_EQ(folder.names(), QStringList({name, u"target"_s}));
}

TEST(SafeFile, ADanglingLinkGetsItsTarget)
{
    const Folder folder;
    ASSERT_TRUE(QFile::link(u"sub/target"_s, folder.path(name)));
    EXPECT_EQ(read(folder), "");
    ASSERT_TRUE(commit(folder, newContent));
    EXPECT_TRUE(QFileInfo(folder.path(name)).isSymLink());
    EXPECT_EQ(folder.bytes(u"sub/target"_s), sealedBytes(newContent));
}

TEST(SafeFile, AnotherNameOfTheFileKeepsTheOldText)
{
    const Folder folder;
    folder.put(name, oldFile());
    ASSERT_EQ(::link(folder.encodedPath(name).constData(), folder.encodedPath(u"other"_s).constData()), 0);
    ASSERT_TRUE(commit(folder, newContent));
    EXPECT_EQ(folder.bytes(u"other"_s), oldFile());
    EXPECT_EQ(read(folder), newContent);
}

TEST(SafeFile, AFolderThatIsAnotherOneMeanwhileMeansThatNothingIsSaved)
{
    for (const bool isLocked : {false, true}) {
        const Folder folder;
        ASSERT_TRUE(QDir().mkdir(folder.path(u"card"_s)));
        folder.put(u"card/file"_s, sealedBytes(oldContent, FileSize));
        SafeFile file(folder.path(u"card/file"_s));
        if (isLocked) {
            ASSERT_TRUE(file.lock());
        }
        const auto committed = file.commit([&folder](const TextFrame &, QByteArray &out) {
            // As when a card is pulled: its path leads to the folder that it was mounted on.
            EXPECT_TRUE(QDir().rename(folder.path(u"card"_s), folder.path(u"pulled"_s)));
            EXPECT_TRUE(QDir().mkdir(folder.path(u"card"_s)));
            out += newContent;
            return true;
        });
        EXPECT_FALSE(committed.has_value());
        EXPECT_EQ(TextFrame(folder.bytes(u"pulled/file"_s)).content(), oldContent);
    }
}

TEST(SafeFile, WhatIsNoFileIsBlankAndKept)
{
    const Folder folder;
    ASSERT_EQ(::mkfifo(folder.encodedPath(name).constData(), 0600), 0);
    EXPECT_EQ(read(folder), "");
    EXPECT_FALSE(SafeFile(folder.path(name)).isWritable());
    EXPECT_FALSE(commit(folder, newContent));
    EXPECT_EQ(folder.names(), QStringList(name));
    EXPECT_EQ(SafeFile(folder.path(QString())).read().content(), "");
    EXPECT_FALSE(SafeFile(folder.path(QString())).commit(becoming(newContent)));
}

TEST(SafeFile, AnEmptyPathAndOneWithANulAreNoFiles)
{
    const Folder folder;
    for (const QString &path : {QString(), folder.path(name) + QChar(u'\0') + u"x"_s}) {
        SafeFile file(path);
        EXPECT_EQ(file.read().state(), TextFrame::State::Blank);
        EXPECT_FALSE(file.isWritable());
        EXPECT_FALSE(file.commit(becoming(newContent)));
        EXPECT_FALSE(file.lock());
    }
    EXPECT_TRUE(folder.names().isEmpty());
}

TEST(SafeFile, AFileThatIsTooLongIsKept)
{
    const Folder folder;
    folder.put(name, oldFile());
    ASSERT_EQ(::truncate(folder.encodedPath(name).constData(), TextFrame::MaxFileSize + 1), 0);
    EXPECT_EQ(read(folder), "");
    EXPECT_FALSE(commit(folder, newContent));
    EXPECT_EQ(QFileInfo(folder.path(name)).size(), TextFrame::MaxFileSize + 1);
}

TEST(SafeFile, WhatCouldNotBeReadForAMomentIsNotOverwritten)
{
    const Folder folder;
    folder.put(name, oldFile());
    SafeFile file(folder.path(name));
    ASSERT_EQ(::truncate(folder.encodedPath(name).constData(), TextFrame::MaxFileSize + 1), 0);
    EXPECT_EQ(file.read().content(), "");
    EXPECT_TRUE(file.isUnread());
    ASSERT_EQ(::truncate(folder.encodedPath(name).constData(), FileSize), 0);
    EXPECT_FALSE(file.isWritable());
    EXPECT_FALSE(file.commit(becoming(newContent)));
    EXPECT_EQ(folder.bytes(name), oldFile());
    EXPECT_EQ(file.read().content(), oldContent);
    EXPECT_FALSE(file.isUnread());
    EXPECT_TRUE(file.commit(becoming(newContent)));
}

TEST(SafeFile, WhereNoCopyCanBeMadeTheCommitIsMadeInTheFile)
{
    const Folder folder;
    folder.put(name, oldFile());
    blockCopies(folder);
    ASSERT_TRUE(commit(folder, newContent));
    EXPECT_EQ(folder.bytes(name), leftoverFile());
}

TEST(SafeFile, WhereNothingFitsTheFileIsUntouched)
{
    const Folder folder;
    folder.put(name, sealedBytes(oldContent));
    blockCopies(folder);
    EXPECT_FALSE(commit(folder, newContent));
    EXPECT_EQ(folder.bytes(name), sealedBytes(oldContent));
}

TEST(SafeFile, InPlaceTheFileKeepsItsIdentityAndGrows)
{
    const Folder folder;
    folder.put(name, sealedBytes(oldContent));
    struct stat before = {};
    ASSERT_EQ(::stat(folder.encodedPath(name).constData(), &before), 0);
    ASSERT_TRUE(commit(folder, newContent, SafeFile::Way::InPlace));
    struct stat after = {};
    ASSERT_EQ(::stat(folder.encodedPath(name).constData(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(read(folder), newContent);
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(SafeFile, AWriteThatFailsLeavesTheOldFileAndNothingElse)
{
    const Folder folder;
    folder.put(name, sealedBytes(oldContent, 5000));
    const auto oldHandler = ::signal(SIGXFSZ, SIG_IGN);
    struct rlimit unlimited = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    const struct rlimit small = {2000, unlimited.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    SafeFile file(folder.path(name));
    const bool isDone = file.commit(becoming(newContent)).has_value();
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &unlimited), 0);
    EXPECT_FALSE(isDone);
    EXPECT_EQ(folder.bytes(name), sealedBytes(oldContent, 5000));
    EXPECT_EQ(folder.names(), QStringList(name));
    EXPECT_TRUE(file.commit(becoming(newContent)).has_value()) << "another try succeeds";
    EXPECT_EQ(read(folder), newContent);
    ::signal(SIGXFSZ, oldHandler);
}

TEST(SafeFile, OnAFullMediumTheReservedSpaceIsEnough)
{
    const Folder folder;
    ASSERT_TRUE(QDir(folder.path(QString())).mkdir(u"card"_s));
    enum Result { Committed, NotCommitted, NotMounted };
    const pid_t child = ::fork();
    if (child == 0) {
        const int spaces = ::geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
        const QByteArray card = folder.encodedPath(u"card"_s);
        if (::unshare(spaces) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("card", card.constData(), "tmpfs", 0, "size=128k") != 0)
            ::_exit(NotMounted);
        folder.put(u"card/file"_s, QByteArray(50'000, '\0'));
        QFile filler(folder.path(u"card/filler"_s));
        const QByteArray page(4096, 'x');
        bool isRoom = filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        while (isRoom)
            isRoom = filler.write(page) == page.size();
        const QString path = folder.path(u"card/file"_s);
        bool isDone = true;
        for (const QByteArray &content : {oldContent, newContent, oldContent})
            isDone = isDone && SafeFile(path).commit(becoming(content)).has_value() &&
                     SafeFile(path).read().content() == content;
        const QStringList names = QDir(folder.path(u"card"_s)).entryList(QDir::Files | QDir::Hidden);
        ::_exit(isDone && names == QStringList({name, u"filler"_s}) ? Committed : NotCommitted);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == NotMounted)
        GTEST_SKIP() << "this machine lets the test mount nothing";
    EXPECT_EQ(WEXITSTATUS(status), Committed);
}

TEST(SafeFile, ACopyCutAnywhereIsThrownAwayAndTheFileIsAsBefore)
{
    const QByteArray copy = leftoverFile();
    const Folder folder;
    folder.put(name, oldFile());
    for (qsizetype size = 0; size <= copy.size(); size += size < 100 ? 1 : 97) {
        folder.put(leftoverName, copy.first(size));
        ASSERT_EQ(read(folder), oldContent) << size;
        ASSERT_EQ(folder.names(), QStringList(name)) << size;
    }
}

TEST(SafeFile, ACompleteCopyReplacesAFileThatIsGoneOrDamaged)
{
    const struct
    {
        const char *what;
        std::optional<QByteArray> main;
        bool isKeptAside;
    } table[] = {
        {"missing", std::nullopt, false},
        {"no bytes", QByteArray(), false},
        {"only NULs", QByteArray(FileSize, '\0'), false},
        {"a seal that does not hold", damaged(oldFile()), true},
        {"cut", oldFile().first(45), true},
        {"its first sector lost", QByteArray(512, '\0') + "a=1\n", true},
        {"bytes of something else", QByteArray("\x89\xFF\xFE\x00garbage", 11), true},
    };
    for (const auto &row : table) {
        const Folder folder;
        if (row.main)
            folder.put(name, *row.main);
        folder.put(leftoverName, leftoverFile());
        EXPECT_EQ(read(folder), newContent) << row.what;
        EXPECT_EQ(folder.bytes(name), leftoverFile()) << row.what;
        QStringList names{name};
        if (row.isKeptAside) {
            names.append(u"file.damaged"_s);
            EXPECT_EQ(folder.bytes(u"file.damaged"_s), *row.main) << row.what;
        }
        EXPECT_EQ(folder.names(), names) << row.what;
    }
}

TEST(SafeFile, ADamagedFileNeverReplacesAnEarlierOne)
{
    const Folder folder;
    folder.put(u"file.damaged"_s, "earlier");
    folder.put(name, damaged(oldFile()));
    folder.put(leftoverName, leftoverFile());
    EXPECT_EQ(read(folder), newContent);
    EXPECT_EQ(folder.bytes(u"file.damaged"_s), "earlier");
    EXPECT_EQ(folder.bytes(u"file.damaged1"_s), damaged(oldFile()));
}

TEST(SafeFile, AFileThatIsIntactWinsOverTheCopy)
{
    const struct
    {
        const char *what;
        QByteArray main;
        QByteArray content;
        quint32 replaced;
    } table[] = {
        {"whole", sealedBytes("[x]\ny=1\n"), "[x]\ny=1\n", 1},
        {"the hand-edited one that the copy was made from", damaged(oldFile()), "[g]\nk=o#d\n",
         crc32(damaged(oldFile()))},
        {"the empty one that the copy was made from", "", "", crc32("")},
        {"the reserved one that the copy was made from", QByteArray(100, '\0'), "", crc32(QByteArray(100, '\0'))},
        {"text of others", "[x]\ny=1\n", "[x]\ny=1\n", 1},
    };
    for (const auto &row : table) {
        const Folder folder;
        folder.put(name, row.main);
        folder.put(leftoverName, sealedBytes(newContent, 0, row.replaced));
        EXPECT_EQ(read(folder), row.content) << row.what;
        EXPECT_EQ(folder.bytes(name), row.main) << row.what;
        EXPECT_EQ(folder.names(), QStringList(name)) << row.what;
    }
}

TEST(SafeFile, AJournalWinsOverTheCopy)
{
    const QByteArray after = sealedBytes("[g]\nk=journal\n", FileSize);
    const QByteArray line = TextJournal::between(oldFile(), after, *TextSeal::fromFile(after)).toLine();
    const Folder folder;
    folder.put(name, damaged(oldFile()).first(FileSize - line.size()) + line);
    folder.put(leftoverName, leftoverFile());
    EXPECT_EQ(read(folder), "[g]\nk=journal\n");
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(SafeFile, AMergeThatRefusesLeavesTheFileAlone)
{
    const Folder folder;
    folder.put(name, oldFile());
    EXPECT_FALSE(SafeFile(folder.path(name)).commit([](const TextFrame &, QByteArray &out) {
        out += newContent;
        return false;
    }));
    EXPECT_EQ(folder.bytes(name), oldFile());
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(SafeFile, ACommitUsesTheCopyThatACrashLeft)
{
    const Folder folder;
    folder.put(leftoverName, leftoverFile());
    SafeFile file(folder.path(name));
    ASSERT_TRUE(file.commit([](const TextFrame &now, QByteArray &out) {
        out += now.content().toByteArray() + "m=2\n";
        return true;
    }));
    EXPECT_EQ(read(folder), newContent + "m=2\n");
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(SafeFile, AHandEditedFileReadsAsItStands)
{
    const Folder folder;
    folder.put(name, damaged(oldFile()));
    EXPECT_EQ(read(folder), "[g]\nk=o#d\n");
    ASSERT_TRUE(commit(folder, newContent));
    EXPECT_EQ(folder.names(), QStringList(name));
    EXPECT_EQ(read(folder), newContent);
}

TEST(SafeFile, ACopyThatARunningCommitIsMakingIsLeftAlone)
{
    const Folder folder;
    folder.put(name, oldFile());
    folder.put(leftoverName, leftoverFile().first(100));
    SafeFile committing(folder.path(name));
    ASSERT_TRUE(committing.lock());
    std::thread reader([&folder] { EXPECT_EQ(read(folder), oldContent); });
    reader.join();
    EXPECT_EQ(folder.names(), QStringList({name, leftoverName}));
}

TEST(SafeFile, LocksAreSharedWithinAThread)
{
    const Folder folder;
    SafeFile one(folder.path(name));
    ASSERT_TRUE(one.lock());
    EXPECT_TRUE(one.lock());
    ASSERT_TRUE(commit(folder, newContent)) << "would wait for ever otherwise";
    EXPECT_EQ(read(folder), newContent);
    EXPECT_TRUE(one.commit(becoming(oldContent)));
    EXPECT_EQ(read(folder), oldContent);
}
