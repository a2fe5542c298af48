// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// The settings file and the list file: whatever bytes lie there, what is read is what the format says, a commit changes
// what it shall and nothing else, and nothing of the file is lost.

#include "ConfigModel.h"
#include "FuzzInput.h"
#include "Scratch.h"

#include "platform/ConfigChanges.h"
#include "platform/ConfigSyntax.h"
#include "platform/ConfigText.h"
#include "platform/SafeFile.h"
#include "platform/TextFrame.h"
#include "platform/TextJournal.h"

#include <marvola/ConfigFile.h>

using namespace marvola;

namespace {

constexpr const char *Name = "fuzz.cfg";
constexpr const char *LeftoverName = "fuzz.cfg.new";

/// How the input becomes files. Checks are made here: a fuzzer does not guess them.
enum Mode : unsigned {
    IsSealed = 1,
    HasJournal = 2,  ///< from the content to the text behind the separator
    HasLeftover = 4, ///< the text behind the separator lies beside the file
    InPlace = 8,
    IsReplaced = 16 ///< the leftover names the file as the one that it replaces
};

/// Stands between two texts of an input.
constexpr QByteArrayView Separator("\x1Fnext\x1F");

struct Change
{
    enum class Kind { Write, Remove, Clear };
    Kind kind;
    QString group;
    QString key;
    QString value;
};

QByteArray sealed(QByteArrayView content, quint32 replaced, qsizetype size)
{
    return TextFrame::sealed(QByteArray(TextSeal::Size, '\n') + content.toByteArray(), replaced, size).bytes();
}

QByteArray withJournal(QByteArrayView before, QByteArrayView after)
{
    const qsizetype size = 2 * (before.size() + after.size()) + 256;
    QByteArray file = sealed(before, 0, size);
    const TextFrame next(sealed(after, 1, size));
    const QByteArray line = TextJournal::between(file, next.bytes(), next.seal()).toLine();
    file.replace(file.size() - line.size(), line.size(), line);
    return file;
}

void makeFiles(const Scratch &scratch, QByteArrayView bytes, unsigned mode)
{
    const qsizetype found = bytes.indexOf(Separator);
    const QByteArrayView first = found < 0 ? bytes : bytes.first(found);
    const QByteArrayView second = found < 0 ? QByteArrayView() : bytes.sliced(found + Separator.size());
    QByteArray file = first.toByteArray();
    if ((mode & HasJournal) != 0)
        file = withJournal(first, second);
    else if ((mode & IsSealed) != 0)
        file = sealed(first, 0, 0);
    scratch.write(Name, file);
    if ((mode & HasLeftover) != 0)
        scratch.write(LeftoverName, sealed(second, (mode & IsReplaced) != 0 ? TextFrame(file).identity() : 7, 0));
}

Change takeChange(FuzzInput &input, const ConfigModel &model)
{
    const quint8 choice = input.takeByte();
    Change change{static_cast<Change::Kind>(choice % 3), input.takeText(), input.takeText(), input.takeText()};
    // Most changes are to what is there.
    const QStringList groups = model.groups.keys();
    if (!groups.isEmpty() && (choice & 0x40) == 0)
        change.group = groups.at(choice / 3 % groups.size());
    const QStringList keys = model.groups.value(change.group).keys();
    if (!keys.isEmpty() && (choice & 0x80) == 0)
        change.key = keys.at(change.value.size() % keys.size());
    return change;
}

void applyToModel(ConfigModel &model, const Change &change)
{
    switch (change.kind) {
    case Change::Kind::Write:
        model.groups[change.group][change.key] = change.value;
        break;
    case Change::Kind::Remove:
        if (model.groups.contains(change.group))
            model.groups[change.group].remove(change.key);
        break;
    case Change::Kind::Clear:
        model.groups.remove(change.group);
        break;
    }
}

bool commitByConfigFile(const QString &path, const Change &change)
{
    ConfigFile file(path, false);
    switch (change.kind) {
    case Change::Kind::Write:
        require(file.writeEntry(change.group, change.key, change.value), "a write is accepted");
        break;
    case Change::Kind::Remove:
        require(file.removeEntry(change.group, change.key), "a removal is accepted");
        break;
    case Change::Kind::Clear:
        require(file.clearGroup(change.group), "a clearing is accepted");
        break;
    }
    return file.flush();
}

bool commitInPlace(const QString &path, const Change &change)
{
    ConfigChanges changes;
    if (change.kind == Change::Kind::Clear)
        changes.clearGroup(escapeName(change.group));
    else if (change.kind == Change::Kind::Remove)
        changes.set(escapeName(change.group), escapeName(change.key), std::nullopt);
    else
        changes.set(escapeName(change.group), escapeName(change.key), escapeValue(change.value));
    SafeFile file(path, SafeFile::Way::InPlace);
    return file
        .commit([&changes](const TextFrame &now, QByteArray &out) { return ConfigText(now).merge(changes, out); })
        .has_value();
}

/// What the file at \a path holds, as every reader of the project sees it.
ConfigModel requireReadsAlike(const QString &path)
{
    const ConfigFile file(path, false);
    const TextFrame frame = SafeFile(path).read();
    ConfigModel model(frame.content());
    for (auto group = model.groups.cbegin(); group != model.groups.cend(); ++group) {
        require(file.getGroupEntriesKeyList(group.key()) == *group, "a group reads as its lines say");
        for (auto entry = group->cbegin(); entry != group->cend(); ++entry)
            require(file.readEntry(group.key(), entry.key()) == *entry, "a value reads as its line says");
    }
    return model;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    static const Scratch scratch;
    scratch.clear();
    FuzzInput input(data, size);
    const unsigned mode = input.takeByte();
    // The change is chosen by what the file holds, so its bytes are taken later, from a copy of the same end.
    FuzzInput changeInput = input;
    makeFiles(scratch, input.rest(), mode);
    const QString path = scratch.path(Name);
    const QByteArray bytesBefore = scratch.read(Name);

    const ConfigModel before = requireReadsAlike(path);
    require(!scratch.names().contains(QString::fromLatin1(LeftoverName)), "reading looks after a leftover");
    if (scratch.read(Name) != bytesBefore && !TextFrame(bytesBefore).isWhole() &&
        !TextFrame(bytesBefore).bytes().isEmpty())
        require(endOfText(bytesBefore) == 0 || scratch.names().size() == 2, "what is replaced is moved aside");

    const Change change = takeChange(changeInput, before);
    ConfigModel expected = before;
    applyToModel(expected, change);
    const qsizetype sizeBefore = scratch.read(Name).size();
    const bool isDone = (mode & InPlace) != 0 ? commitInPlace(path, change) : commitByConfigFile(path, change);
    require(isDone, "a commit succeeds where nothing is in its way");
    require(scratch.read(Name).size() >= sizeBefore, "a file never gets shorter");
    require(!scratch.names().contains(QString::fromLatin1(LeftoverName)), "a commit leaves nothing behind");

    const ConfigModel after = requireReadsAlike(path);
    require(after.entriesEqual(expected), "a commit changes what it shall and nothing else");
    require(before.areKept(before.unreadable, after.unreadable), "what cannot be read is kept");
    require(change.kind == Change::Kind::Clear || before.areKept(before.comments, after.comments), "comments are kept");
    return 0;
}
