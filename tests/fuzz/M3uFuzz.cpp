// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// Playlists of other programs: whatever they hold, items are paths or links of one line, each once, and what is written
// from them reads back the same.

#include "FuzzInput.h"
#include "Require.h"

#include "M3uText.h"

#include <QtCore/QSet>

#include <algorithm>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

/// Codecs that a user may have named; not every system has each.
constexpr const char *Codecs[] = {"GBK", "utf8", "Big5", "Shift_JIS", "UTF-16", "UTF-32BE", "ISO-8859-1", "none"};

const QString Folder = u"/mmc/mmca1/my lists"_s;
const QStringList Roots = {u"/"_s, u"/mmc/mmca1"_s, u"/home/user/media"_s};

bool isSane(const QString &item)
{
    const bool isOneLine = !item.contains(u'\n') && !item.contains(u'\r') && !item.contains(QChar(0));
    return isOneLine && item.isValidUtf16() && (item.startsWith(u'/') || item.contains("://"_L1));
}

void requireReadBack(const QStringList &items, const QStringList &roots)
{
    const M3uBytes written = formatM3u(items, Folder, roots);
    require(written.itemCount + written.skipped.size() == items.size(), "every item is written or reported");
    const auto text = decodeM3u(written.bytes, u"none"_s);
    require(text.has_value(), "what is written is UTF-8");
    const M3uEntries again = parseM3u(*text, Folder);
    require(again.skippedCount == 0, "nothing that is written is left out by a reader");
    QStringList kept = items;
    for (auto skipped = written.skipped.crbegin(); skipped != written.skipped.crend(); ++skipped)
        kept.removeAt(skipped->number - 1);
    require(again.items == kept, "items read back as they were");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    FuzzInput input(data, size);
    const QString codec = QString::fromLatin1(Codecs[input.takeByte() % std::size(Codecs)]);
    const QByteArray bytes = input.rest().toByteArray();
    const std::optional<QString> text = decodeM3u(bytes, codec);
    if (!text)
        return 0;

    const M3uEntries entries = parseM3u(*text, Folder);
    require(std::all_of(entries.items.begin(), entries.items.end(), isSane), "items are paths or links of one line");
    require(QSet<QString>(entries.items.begin(), entries.items.end()).size() == entries.items.size(),
            "no item comes twice");
    require(entries.items.size() + entries.skippedCount <= text->count(u'\n') + 1, "a line gives one item at most");
    require(entries.skipped.size() == std::min(entries.skippedCount, M3uEntries::MaxReports), "reports are counted");
    requireReadBack(entries.items, Roots);
    requireReadBack(entries.items, {});
    return 0;
}
