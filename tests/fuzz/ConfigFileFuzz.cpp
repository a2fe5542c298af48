// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// The settings file and the list file: whatever bytes lie there, what is read is what the format says, a commit changes
// what it shall and nothing else, and nothing of the file is lost. So it is with an object that reads and writes
// several times, while another one writes to the same file.

#include "ConfigChange.h"
#include "ConfigModel.h"
#include "FuzzInput.h"
#include "Scratch.h"

#include "platform/ConfigSyntax.h"
#include "platform/SafeFile.h"
#include "platform/TextFrame.h"
#include "platform/TextJournal.h"

#include <marvola/ConfigFile.h>

#include <algorithm>
#include <optional>
#include <vector>

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
    IsReplaced = 16, ///< the leftover names the file as the one that it replaces
    IsSession = 32   ///< several changes by one object, and by another in between, instead of one change
};

/// What an object of a session does before a change of its own, and behind it.
enum Step : unsigned {
    Reads = 1,
    AnotherWrites = 2,
    Locks = 4,
    Flushes = 8, ///< behind it
    IsNumbered = 16
};
constexpr int MostSteps = 4;

/// Stands between two texts of an input.
constexpr QByteArrayView Separator("\x1Fnext\x1F");

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

void requireReadsAs(const ConfigFile &file, const ConfigModel &model)
{
    for (auto group = model.groups.cbegin(); group != model.groups.cend(); ++group) {
        require(file.getGroupEntriesKeyList(group.key()) == *group, "a group reads as its lines say");
        for (auto entry = group->cbegin(); entry != group->cend(); ++entry)
            require(file.readEntry(group.key(), entry.key()) == *entry, "a value reads as its line says");
    }
}

void requireReadsNumberedAs(const ConfigFile &file, const ConfigModel &model, int count)
{
    for (auto group = model.groups.cbegin(); group != model.groups.cend(); ++group) {
        const QStringList values = file.readNumberedEntries(group.key(), count);
        require(values.size() == std::max(count, 0), "there are as many numbered values as asked for");
        for (qsizetype place = 0; place < values.size(); ++place) {
            const QString expected = group->value(numberedKey(1, place));
            require(values.at(place) == expected && values.at(place).isNull() == expected.isNull(),
                    "a numbered value reads as its line says");
        }
    }
}

/// What the file at \a path holds, as every reader of the project sees it.
ConfigModel requireReadsAlike(const QString &path)
{
    const ConfigFile file(path, false);
    const TextFrame frame = SafeFile(path).read();
    ConfigModel model(frame.content());
    requireReadsAs(file, model);
    return model;
}

/// One object on a file, which keeps what it has read and what it is to write, and others on the same file.
class Session
{
public:
    Session(const QString &path, const ConfigModel &before, bool areOthersInPlace)
        : m_path(path), m_file(std::in_place, path, false), m_now(before), m_areOthersInPlace(areOthersInPlace)
    {
    }

    void step(FuzzInput &input)
    {
        const unsigned what = input.takeByte();
        if ((what & Reads) != 0)
            read(input.takeByte());
        if ((what & AnotherWrites) != 0)
            writeByAnother(input);
        if ((what & Locks) != 0) {
            require(m_file->lockForUpdate(), "a folder can be locked");
            m_seen.reset();
        }
        Change change = takeChange(input, m_now);
        if ((what & IsNumbered) != 0)
            makeNumbered(change, input);
        write(*m_file, change);
        // No numbered values are no change.
        if (change.kind != Change::Kind::WriteNumbered || !change.values.isEmpty())
            m_pending.push_back(change);
        m_hasCleared = m_hasCleared || change.kind == Change::Kind::Clear;
        if ((what & Flushes) != 0)
            flush();
    }
    /// Ends the object, which commits. \return what the file holds then
    const ConfigModel &end()
    {
        m_file.reset();
        applyPending(m_now);
        return m_now;
    }
    bool hasCleared() const { return m_hasCleared; }

private:
    /// The file as it was when it was first read, with the object's own writes on top.
    void read(quint8 count)
    {
        require(!m_file->isUnreadable(), "the file can be read");
        if (!m_seen)
            m_seen = m_now;
        ConfigModel expected = *m_seen;
        applyPending(expected);
        // What another has made or removed since is seen as it was.
        for (auto group = m_now.groups.cbegin(); group != m_now.groups.cend(); ++group)
            expected.groups[group.key()];
        requireReadsNumberedAs(*m_file, expected, static_cast<qint8>(count));
        requireReadsAs(*m_file, expected);
    }

    void writeByAnother(FuzzInput &input)
    {
        const Change change = takeChange(input, m_now);
        const bool isDone = m_areOthersInPlace ? commitInPlace(m_path, change) : commitByConfigFile(m_path, change);
        require(isDone, "another's commit succeeds");
        applyToModel(m_now, change);
        m_hasCleared = m_hasCleared || change.kind == Change::Kind::Clear;
    }

    void flush()
    {
        require(m_file->flush(), "a commit succeeds whatever another has written");
        // Without a change of its own it has not looked at the file again.
        if (m_pending.empty())
            return;
        applyPending(m_now);
        m_pending.clear();
        m_seen = m_now;
    }

    void applyPending(ConfigModel &model) const
    {
        for (const Change &change : m_pending)
            applyToModel(model, change);
    }

    QString m_path;
    std::optional<ConfigFile> m_file;
    ConfigModel m_now;                 ///< what the file holds
    std::optional<ConfigModel> m_seen; ///< what the object has read of it
    std::vector<Change> m_pending;     ///< what it has not committed
    bool m_areOthersInPlace;
    bool m_hasCleared = false;
};

/// \a model is what the file holds, and then what it shall hold. \return whether a group was cleared
bool changeOnce(const QString &path, FuzzInput &input, unsigned mode, ConfigModel &model)
{
    const Change change = takeChange(input, model);
    applyToModel(model, change);
    const bool isDone = (mode & InPlace) != 0 ? commitInPlace(path, change) : commitByConfigFile(path, change);
    require(isDone, "a commit succeeds where nothing is in its way");
    return change.kind == Change::Kind::Clear;
}

bool changeOften(const QString &path, FuzzInput &input, unsigned mode, ConfigModel &model)
{
    Session session(path, model, (mode & InPlace) != 0);
    for (int left = 1 + input.takeByte() % MostSteps; left > 0; --left)
        session.step(input);
    model = session.end();
    return session.hasCleared();
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

    const qsizetype sizeBefore = scratch.read(Name).size();
    ConfigModel expected = before;
    const bool hasCleared = (mode & IsSession) != 0 ? changeOften(path, changeInput, mode, expected)
                                                    : changeOnce(path, changeInput, mode, expected);
    require(scratch.read(Name).size() >= sizeBefore, "a file never gets shorter");
    require(!scratch.names().contains(QString::fromLatin1(LeftoverName)), "a commit leaves nothing behind");

    const ConfigModel after = requireReadsAlike(path);
    require(after.entriesEqual(expected), "a commit changes what it shall and nothing else");
    require(before.areKept(before.unreadable, after.unreadable), "what cannot be read is kept");
    require(hasCleared || before.areKept(before.comments, after.comments), "comments are kept");
    return 0;
}
