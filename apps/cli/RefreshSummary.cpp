// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "RefreshSummary.h"

#include "IndexSize.h"
#include "Limits.h"
#include "RefreshRun.h"
#include "Session.h"

#include <marvola/MediaTypeRegistry.h>

#include <QtCore/QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

/// Some of the files that the engine was asked about: those from \a begin on, before \a end.
struct Scan
{
    qsizetype begin = 0;
    qsizetype end = 0;

    qsizetype size() const { return end - begin; }
    qsizetype sizeWithin(qsizetype first) const { return std::clamp<qsizetype>(first - begin, 0, size()); }
};

/// The scan of each entry of \a order, which are indices in \a places and -1 for names of none; the first \a completed
/// ones were indexed to their end. Paths alone do not tell: both places may be one directory, or lie in one another.
QList<Scan> scansOf(const QList<qsizetype> &order, qsizetype completed, const CountingEngine &engine,
                    const QList<Place> &places)
{
    const QList<qsizetype> &ends = engine.scanEnds();
    const bool isLastStopped = completed < order.size() && order.at(completed) >= 0 && !ends.isEmpty();
    const qsizetype whole = ends.size() - (isLastStopped ? 1 : 0);
    QList<Scan> result(order.size());
    qsizetype next = 0;
    for (qsizetype entry = 0; entry < completed && next < whole; ++entry) {
        const Scan scan = {next > 0 ? ends.at(next - 1) : 0, ends.at(next)};
        // A place without files has no scan. Where one has none, the other's files are below its own roots alone.
        if (whole == completed || placeHolding(engine.files().value(scan.begin), places) == order.at(entry)) {
            result[entry] = scan;
            ++next;
        }
    }
    if (isLastStopped) {
        result[completed] = {whole > 0 ? ends.at(whole - 1) : 0, ends.last()};
    }
    return result;
}

/// The number of media files below the roots of \a place, by the walk that a refresh makes.
qsizetype walk(const MP_MyLibrary &library, const Place &place)
{
    QStringList extensions;
    MediaTypeRegistry::querySupportedExtensions(extensions, MediaTypeRegistry::MediaPlayer);
    QString filter;
    for (const QString &extension : std::as_const(extensions)) {
        filter += u"*."_s + extension + u';';
    }
    QStringList files;
    for (const QString &root : place.roots) {
        library.getAllFiles(root, filter, files);
    }
    return files.size();
}

bool anyRootExists(const Place &place)
{
    return std::any_of(place.roots.begin(), place.roots.end(), [](const QString &root) { return QDir(root).exists(); });
}

/// The indices in \a places of the places called \a names; -1 where there is none.
QList<qsizetype> indicesOf(const QStringList &names, const QList<Place> &places)
{
    QList<qsizetype> result;
    for (const QString &name : names) {
        const auto place = std::find_if(places.begin(), places.end(), [&](const Place &p) { return p.name == name; });
        result.append(place != places.end() ? place - places.begin() : -1);
    }
    return result;
}

QList<PlaceSummary> summarizePlaces(Session &session, const RefreshRun &run, qsizetype indexed)
{
    const QList<Place> places = libraryPlaces(session.places());
    const QStringList names = session.library().getRefreshFlag();
    const QList<qsizetype> order = indicesOf(names, places);
    const QList<Scan> scans = scansOf(order, run.completed.size(), session.engine(), places);
    QList<PlaceSummary> result;
    for (qsizetype entry = 0; entry < names.size(); ++entry) {
        PlaceSummary summary;
        summary.name = names.at(entry);
        summary.isComplete = entry < run.completed.size();
        if (order.at(entry) >= 0) {
            const Place &place = places.at(order.at(entry));
            summary.id = place.id;
            summary.isThere = anyRootExists(place);
            summary.indexed = scans.at(entry).sizeWithin(indexed);
            if (summary.isComplete) {
                summary.found = scans.at(entry).size();
            } else if (!run.isCancelled) {
                summary.found = walk(session.library(), place);
                // Where there is nothing at all to index, a refresh does not even begin with its places.
                summary.isComplete = summary.found == 0;
            }
        }
        result.append(summary);
    }
    return result;
}

/// What the index holds is no work of this refresh: it may be that of an older one.
void disclaimIndex(RefreshSummary &summary)
{
    for (PlaceSummary &place : summary.places) {
        place.indexed = 0;
        place.isComplete = place.isComplete && place.found == 0;
    }
}

QString explain(StopReason reason, const Limits &limits, const Session &session)
{
    switch (reason) {
    case StopReason::None:
        return {};
    case StopReason::Cancelled:
        return u"cancelled"_s;
    case StopReason::FileLimit:
        return u"the limit of %1 files was reached; raise MaxNumOfMediaFile in %2"_s.arg(
            QString::number(limits.mediaFiles), session.settingsFile());
    case StopReason::IndexFull:
        return u"the space reserved for the index is full; give fewer places, or shorter paths"_s;
    case StopReason::UnknownPlace:
        return u"the search order names no place that is known; set it with 'marvola settings set search-order'"_s;
    case StopReason::NotWritten:
        break;
    }
    return u"the index could not be written; see 'marvola status'"_s;
}

} // namespace

std::optional<qsizetype> RefreshSummary::found() const
{
    qsizetype sum = 0;
    for (const PlaceSummary &place : places) {
        if (!place.found && !place.id.isEmpty()) {
            return std::nullopt;
        }
        sum += place.found.value_or(0);
    }
    return sum;
}

qsizetype RefreshSummary::indexed() const
{
    qsizetype sum = 0;
    for (const PlaceSummary &place : places) {
        sum += place.indexed;
    }
    return sum;
}

RefreshSummary summarize(Session &session, const RefreshRun &run)
{
    RefreshFacts facts;
    facts.examined = session.engine().files();
    facts.indexed = session.library().getAllMedia();
    const Limits limits = readLimits(session.settingsFile());
    RefreshSummary summary;
    summary.milliseconds = run.milliseconds;
    summary.unread = session.suspects();
    summary.places = summarizePlaces(session, run, facts.indexed.size());
    const auto stopped = std::find_if(summary.places.begin(), summary.places.end(),
                                      [](const PlaceSummary &place) { return !place.isComplete; });
    facts.isCancelled = run.isCancelled;
    facts.isComplete = stopped == summary.places.end();
    facts.meetsUnknown = !facts.isComplete && stopped->id.isEmpty();
    facts.fileLimit = limits.mediaFiles;
    facts.isIndexFull = measureIndex(session.library().getWorkDirectory()).isFull();
    summary.reason = stopReason(facts);
    if (!isIndexOfRefresh(facts)) {
        disclaimIndex(summary);
    }
    summary.explanation = explain(summary.reason, limits, session);
    return summary;
}

} // namespace marvola
