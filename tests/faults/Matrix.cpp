// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Matrix.h"

#include "MatrixPoint.h"
#include "RememberingEngine.h"

#include "net/LinkStatusFile.h"
#include "platform/DiskFile.h"
#include "support/NullEngine.h"

#include <marvola/MP_MyLibrary.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

/// The lists that are in files of their own; all others share the list file, which changes as a whole or not at all.
bool isInListFile(const QString &list)
{
    return list != u"settings"_s && list != u"work directory"_s && list != u"media"_s && list != u"status file"_s &&
           list != u"card"_s && list != u"answers"_s;
}

std::string text(const QStringList &list)
{
    return "{" + list.join(u", "_s).toStdString() + "}";
}

} // namespace

Matrix::Matrix(const QString &folder, Medium medium) : m_phone(folder), m_medium(medium)
{
}

TracedRun Matrix::trace(const Operation &operation, const std::optional<Fault> &fault) const
{
    m_phone.putBack();
    operation.arrange(m_phone);
    return TracedRun::of(operation.steps(m_phone), QFile::encodeName(m_phone.folder()), m_medium, fault);
}

/// Runs \a operation without a fault.
MatrixRow Matrix::learn(const Operation &operation, TracedRun &plain)
{
    MatrixRow row;
    m_phone.putBack();
    operation.arrange(m_phone);
    m_before = m_phone.state();
    plain = trace(operation, std::nullopt);
    m_after = m_phone.state();
    row.calls = static_cast<int>(plain.calls.size());
    // Every operation works on every medium when nothing goes wrong, or says that it could not.
    Point whole{operation.name + std::string(", without a fault"), row.losses};
    judge(operation, plain, whole);
    // The list file's space is reserved: it can be changed on a full medium too.
    if (operation.changes == Changes::ListFile && m_after == m_before)
        whole.lose("nothing was changed");
    // A cache is a file that is made, for which there is no room.
    const bool hasLearned = m_after.value(u"answers"_s) != m_before.value(u"answers"_s);
    if (hasLearned != (operation.changes == Changes::Answers && m_medium != Medium::Full))
        whole.lose("remembered are " + text(m_after.value(u"answers"_s)));
    return row;
}

MatrixRow Matrix::run(const Operation &operation)
{
    TracedRun plain;
    MatrixRow row = learn(operation, plain);
    int syncs = 0;
    for (int call = 0; call < row.calls; ++call) {
        const FileCall &at = plain.calls[static_cast<std::size_t>(call)];
        row.changingCalls += changesFiles(at.kind) ? 1 : 0;
        for (const Fault &fault : faultsAt(call, at.kind)) {
            ++(fault.isDeath() ? row.deaths : row.errors);
            Point point{operation.name + std::string(", ") + describe(fault, at), row.losses};
            const TracedRun run = trace(operation, fault);
            judge(operation, run, point);
            if (run.answer == static_cast<int>(Said::Done) && mustBeHeard(fault, at, syncs))
                point.lose("said to be done, but it was never made durable");
        }
        syncs += at.kind == CallKind::Sync ? 1 : 0;
    }
    return row;
}

/// Whether an operation with that fault cannot be done. A copy that is not durable must not take the file's name, and
/// that it has taken it must be durable too; changed in place, the file is as meant from the first synchronisation on.
bool Matrix::mustBeHeard(const Fault &fault, const FileCall &call, int earlierSyncs) const
{
    const bool isReplacing =
        m_medium == Medium::AsItIs && !marvola::hasFragileRenames(QFile::encodeName(m_phone.folder()));
    return fault.kind == Fault::Kind::Error && fault.error == EIO && call.kind == CallKind::Sync &&
           (isReplacing || earlierSyncs == 0);
}

void Matrix::judge(const Operation &operation, const TracedRun &run, Point &point) const
{
    if (run.end == TracedRun::End::Crashed)
        return point.lose("crashed, or hung");
    const LibraryState found = m_phone.state();
    judgeLists(operation, found, point);
    if (point.isPartlyNew && point.isPartlyOld)
        point.lose("the list file is neither as it was nor as it was to be");
    const bool returned = run.end == TracedRun::End::Returned;
    if (returned && run.answer == static_cast<int>(Said::Done) && !point.isWhollyNew)
        point.lose("said to be done, but it is not");
    if (returned && run.answer > static_cast<int>(Said::Nothing))
        point.lose("ended in a state that cannot be");
    judgeWhatFollows(found, point);
}

void Matrix::judgeLists(const Operation &operation, const LibraryState &found, Point &point) const
{
    QStringList names = m_before.keys() + m_after.keys() + found.keys();
    names.removeDuplicates();
    for (const QString &name : std::as_const(names)) {
        // A list that is not there has no entry.
        const bool isOld = found.contains(name) == m_before.contains(name) && found.value(name) == m_before.value(name);
        const bool isNew = found.contains(name) == m_after.contains(name) && found.value(name) == m_after.value(name);
        point.isWhollyNew = point.isWhollyNew && isNew;
        if (isInListFile(name)) {
            point.isPartlyNew = point.isPartlyNew || (isNew && !isOld);
            point.isPartlyOld = point.isPartlyOld || (isOld && !isNew);
        }
        const bool isAllowed =
            isOld || isNew || (operation.allows && operation.allows(name, found.value(name), m_before, m_after));
        if (!isAllowed)
            point.lose(name.toStdString() + " is " + text(found.value(name)) + ", was " + text(m_before.value(name)) +
                       ", was to be " + text(m_after.value(name)));
    }
}

/// The next start and stop of a player: it can save, loses nothing of what was found and leaves nothing behind.
void Matrix::judgeWhatFollows(const LibraryState &found, Point &point) const
{
    constexpr unsigned char Volume = 99;
    NullEngine engine;
    {
        MP_MyLibrary library(&engine);
        library.hasEnoughSpace(m_phone.card());
        if (!library.setWorkDirectory(m_phone.card()) || !library.setWorkDirectory(library.getWorkDirectory()))
            point.lose("afterwards the card cannot be chosen");
    }
    if (auto status = marvola::LinkStatusFile::open(m_phone.statusFile()); !status || !status->write("No Interface"))
        point.lose("afterwards no link status can be written");
    MP_MyLibrary library(&engine);
    library.setVolume(Volume);
    library.addItemToHistory(u"http://later"_s);
    library.storeMyLibrary();
    const QStringList temporary = m_phone.temporaryFiles();
    if (!temporary.isEmpty())
        point.lose("left behind " + text(temporary));
    LibraryState next = m_phone.state();
    if (MP_MyLibrary(&engine).getVolume() != Volume || !next.value(u"history"_s).contains(u"http://later"_s))
        point.lose("afterwards nothing can be saved");
    for (const QString &name : found.keys()) {
        if (name == u"settings"_s || name == u"history"_s || name == u"card"_s || name == u"status file"_s)
            continue;
        if (next.value(name) != found.value(name))
            point.lose("afterwards " + name.toStdString() + " is " + text(next.value(name)) + ", was " +
                       text(found.value(name)));
    }
    judgeNextAnswers(point);
}

/// The next refresh that remembers: it does, and clears up behind the one that was cut short.
void Matrix::judgeNextAnswers(Point &point) const
{
    const QString folder = QFileInfo(m_phone.cacheFile()).path();
    const auto files = [&folder] { return QDir(folder).entryList(QDir::Files | QDir::Hidden); };
    if (files().isEmpty())
        return;
    RememberingEngine(m_phone.cacheFile()).scan(m_phone.media());
    const auto answers = rememberedAnswers(m_phone.cacheFile(), m_phone.media());
    if (answers.size() != 2 * m_phone.media().size())
        point.lose("afterwards remembered are " + text(answers));
    if (files().size() != 1)
        point.lose("left behind " + text(files()));
}
