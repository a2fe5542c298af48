// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MatrixPoint.h"

#include <QtCore/QFile>

#include <algorithm>
#include <random>

using namespace Qt::StringLiterals;

namespace {

/// What media write whole or not at all, and what FAT frees and takes.
constexpr qsizetype SectorSize = 512;
constexpr qsizetype ClusterSize = 4096;

/// So many of the states between two synchronisations are tried besides the regular ones.
constexpr int RandomStates = 60;
constexpr unsigned Seed = 20260101;

QByteArray sectorOf(const QByteArray &file, qsizetype sector)
{
    return file.mid(sector * SectorSize, SectorSize);
}

/// Space that was never written to holds whatever file had it before.
QByteArray staleSector(qsizetype sector)
{
    std::mt19937 random(static_cast<unsigned>(sector));
    QByteArray bytes(SectorSize, Qt::Uninitialized);
    std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<char>(random()); });
    return bytes;
}

/// \a file when the first \a size bytes of its space have gone to another file.
QByteArray withStaleStart(const QByteArray &file, qsizetype size)
{
    QByteArray stale;
    for (qsizetype sector = 0; stale.size() < size; ++sector)
        stale += staleSector(sector);
    return stale + file.mid(stale.size());
}

/// One file whose sectors come each from one of its versions.
class Mixture
{
public:
    explicit Mixture(std::vector<QByteArray> versions) : m_versions(std::move(versions)) {}

    /// The files that can come of it: every beginning of the last version before the first one and the other way round,
    /// and some with each sector of any version.
    std::vector<QByteArray> states(std::mt19937 &random) const
    {
        std::vector<QByteArray> states;
        const auto add = [&states](const QByteArray &state) {
            if (std::find(states.begin(), states.end(), state) == states.end())
                states.push_back(state);
        };
        const std::size_t last = m_versions.size() - 1;
        for (qsizetype edge = 0; edge <= sectors(); ++edge) {
            add(mixed([=](qsizetype sector) { return sector < edge ? last : 0; }, last));
            add(mixed([=](qsizetype sector) { return sector < edge ? 0 : last; }, last));
        }
        for (int state = 0; state < RandomStates; ++state)
            add(mixed([&](qsizetype) { return random() % m_versions.size(); }, random() % m_versions.size()));
        return states;
    }

private:
    qsizetype sectors() const
    {
        qsizetype size = 0;
        for (const QByteArray &version : m_versions)
            size = std::max(size, version.size());
        return (size + SectorSize - 1) / SectorSize;
    }

    /// \a choose gives the version for each sector; \a length the one whose length the file has.
    template<typename Choose>
    QByteArray mixed(Choose choose, std::size_t length) const
    {
        const qsizetype size = m_versions[length].size();
        if (m_versions[length].isNull())
            return {};
        QByteArray file("");
        for (qsizetype sector = 0; file.size() < size; ++sector) {
            const QByteArray bytes = sectorOf(m_versions[choose(sector)], sector);
            file += bytes;
            if (bytes.size() < SectorSize)
                file += staleSector(sector).mid(bytes.size());
        }
        return file.first(size);
    }

    std::vector<QByteArray> m_versions;
};

} // namespace

void Matrix::judgeCut(const Operation &operation, const std::string &name, bool mustBeNew, CutRow &row) const
{
    ++row.states;
    Point point{operation.name + std::string(", power cut, ") + name, row.losses};
    const TracedRun cutOff{{}, TracedRun::End::Killed, -1};
    judge(operation, cutOff, point);
    if (mustBeNew && !point.isWhollyNew)
        point.lose("was done durably, but is gone");
}

Matrix::Image Matrix::image() const
{
    return {FaultPhone::get(m_phone.settingsFile()), FaultPhone::get(m_phone.listFile()),
            FaultPhone::get(m_phone.infoFile())};
}

void Matrix::putImage(const Operation &operation, const Image &image) const
{
    m_phone.putBack();
    operation.arrange(m_phone);
    FaultPhone::put(m_phone.settingsFile(), image[0]);
    FaultPhone::put(m_phone.listFile(), image[1]);
    FaultPhone::put(m_phone.infoFile(), image[2]);
}

/// Judges what may be on the medium when the last image but one and those behind it were not synchronised.
void Matrix::judgeStatesBetween(const Operation &operation, const std::vector<Image> &images, int call,
                                CutRow &row) const
{
    std::mt19937 random(Seed);
    for (std::size_t file = 0; file < images.back().size(); ++file) {
        std::vector<QByteArray> versions;
        versions.reserve(images.size());
        for (const Image &image : images)
            versions.push_back(image[file]);
        for (const QByteArray &state : Mixture(versions).states(random)) {
            Image cut = images.back();
            cut[file] = state;
            putImage(operation, cut);
            judgeCut(operation, "before the end of call " + std::to_string(call), false, row);
        }
    }
}

CutRow Matrix::cutPowerInPlace(const Operation &operation)
{
    TracedRun plain;
    CutRow row;
    row.losses = learn(operation, plain).losses;
    m_phone.putBack();
    operation.arrange(m_phone);
    std::vector<Image> images{image()};
    const int calls = static_cast<int>(plain.calls.size());
    for (int call = 0; call < calls; ++call) {
        const CallKind kind = plain.calls[static_cast<std::size_t>(call)].kind;
        if (changesFiles(kind)) {
            static_cast<void>(trace(operation, Fault{call, Fault::Kind::KilledAfter, 0}));
            images.push_back(image());
        }
        // Between two synchronisations anything may be on the medium of what was written.
        if (kind != CallKind::Sync && call + 1 < calls)
            continue;
        judgeStatesBetween(operation, images, call, row);
        images.erase(images.begin(), images.end() - 1);
    }
    return row;
}

/// Judges a medium where \a file and the copy beside it are as \a state says.
void Matrix::judgeLeftover(const Operation &operation, const QString &file, const Leftover &state, CutRow &row) const
{
    m_phone.putBack();
    operation.arrange(m_phone);
    FaultPhone::put(file, state.main);
    FaultPhone::put(file + u".new"_s, state.copy);
    judgeCut(operation, state.name, state.mustBeNew, row);
}

CutRow Matrix::cutPowerInRename(const Operation &operation)
{
    TracedRun plain;
    CutRow row;
    row.losses = learn(operation, plain).losses;
    static_cast<void>(trace(operation, std::nullopt));
    const QByteArray after = FaultPhone::get(m_phone.listFile());
    m_phone.putBack();
    operation.arrange(m_phone);
    const QByteArray before = FaultPhone::get(m_phone.listFile());
    const auto judgeState = [&](const std::string &name, const QByteArray &main, const QByteArray &copy,
                                bool mustBeNew) {
        judgeLeftover(operation, m_phone.listFile(), {name, main, copy, mustBeNew}, row);
    };
    judgeState("the file is gone, the copy whole", {}, after, true);
    judgeState("the file is empty, the copy whole", "", after, true);
    judgeState("the file is blank, the copy whole", QByteArray(before.size(), '\0'), after, true);
    judgeState("both names lead to the copy", after, after, true);
    judgeState("the file is as before, the copy whole", before, after, false);
    for (qsizetype size = 0; size < after.size(); size += SectorSize)
        judgeState("the copy ends early", before, after.first(size), false);
    for (qsizetype at = 0; before.first(at).trimmed() != before.trimmed(); at += ClusterSize)
        judgeState("the file's space is another's, the copy whole", withStaleStart(before, at + ClusterSize), after,
                   true);

    m_phone.putBack();
    operation.arrange(m_phone);
    FaultPhone::put(m_phone.listFile() + u".new"_s, after);
    const TracedRun::Steps start{[] {}, [this] { return m_phone.state().isEmpty() ? 1 : 0; }};
    const TracedRun run = TracedRun::of(start, QFile::encodeName(m_phone.folder()), Medium::ListUnreadable);
    if (run.end != TracedRun::End::Returned)
        row.losses.push_back("a player that finds the list file unreadable does not start");
    judgeCut(operation, "the file gives no bytes, the copy whole", true, row);
    return row;
}

CutRow Matrix::cutPowerInFirstRename(const Operation &operation)
{
    TracedRun plain;
    CutRow row;
    row.losses = learn(operation, plain).losses;
    static_cast<void>(trace(operation, std::nullopt));
    const QByteArray after = FaultPhone::get(m_phone.settingsFile());

    const auto judgeState = [&](const std::string &name, const QByteArray &main, const QByteArray &copy,
                                bool mustBeNew) {
        judgeLeftover(operation, m_phone.settingsFile(), {name, main, copy, mustBeNew}, row);
    };
    judgeState("neither name is there", {}, {}, false);
    judgeState("the file is missing, the copy whole", {}, after, true);
    judgeState("both names lead to the copy", after, after, true);
    judgeState("the file is there", after, {}, true);
    judgeState("the file is empty, the copy whole", "", after, false);
    for (qsizetype size = 0; size < after.size(); size += SectorSize) {
        judgeState("the copy ends early", {}, after.first(size), false);
        QByteArray stale = after.first(size);
        for (qsizetype sector = size / SectorSize; stale.size() < after.size(); ++sector)
            stale += staleSector(sector);
        judgeState("the end of the copy's space is what others left", {}, stale.first(after.size()), false);
    }
    return row;
}
