// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "M3uText.h"

#include "Places.h"

#include <QtCore/QDir>
#include <QtCore/QSet>
#include <QtCore/QStringDecoder>
#include <QtCore/QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr qsizetype LongestReportedText = 200;

/// Characters that would end a line for some reader, or command a terminal.
bool breaksLine(QChar character)
{
    switch (character.category()) {
    case QChar::Other_Control:
        return character != u'\t';
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

/// Why \a text cannot stand on a line of its own; null when it can.
QString problemOf(const QString &text)
{
    if (std::any_of(text.begin(), text.end(), breaksLine)) {
        return u"it holds control characters"_s;
    }
    if (text.contains(QChar::ReplacementCharacter) || !text.isValidUtf16()) {
        return u"it holds bytes that are no text"_s;
    }
    return {};
}

bool isPathOfAnotherSystem(const QString &text)
{
    const bool hasDrive = text.size() >= 3 && text.at(0).isLetter() && text.at(1) == u':';
    return hasDrive && (text.at(2) == u'\\' || text.at(2) == u'/') && !text.mid(1).startsWith("://"_L1);
}

/// Whether \a text is a link: a scheme, as the standard for them has it, and "://".
bool isLink(const QString &text)
{
    const qsizetype length = text.indexOf("://"_L1);
    const auto isOfScheme = [](QChar character) {
        return character.unicode() < 0x80 && (character.isLetterOrNumber() || u"+-."_s.contains(character));
    };
    return length > 0 && text.at(0).isLetter() && std::all_of(text.begin(), text.begin() + length, isOfScheme);
}

M3uSkipped report(qsizetype number, const QString &text, const QString &reason)
{
    const bool isLong = text.size() > LongestReportedText;
    return {number, isLong ? text.first(LongestReportedText) + u"..."_s : text, reason};
}

/// \a path in its shortest form. cleanPath() keeps steps above the root, where there is nothing.
QString shortest(const QString &path)
{
    QString clean = QDir::cleanPath(path);
    qsizetype start = 0;
    while (QStringView(clean).mid(start).startsWith(u"/../")) {
        start += 3;
    }
    return clean.mid(start);
}

/// The item that a line stands for.
QString itemOf(const QString &line, const QString &folder)
{
    if (line.startsWith("file://"_L1, Qt::CaseInsensitive)) {
        return QUrl(line).toLocalFile();
    }
    if (isLink(line) || line.startsWith(u'/')) {
        return line;
    }
    return shortest(folder + u'/' + line);
}

/// Takes lines, one after another.
class Parser
{
public:
    explicit Parser(const QString &folder) : m_folder(folder) {}

    void take(const QString &line)
    {
        ++m_number;
        if (line.trimmed().isEmpty() || line.startsWith(u'#')) {
            return;
        }
        const QString item = itemOf(line, m_folder);
        const QString reason = reasonToSkip(line, item);
        if (!reason.isEmpty()) {
            skip(line, reason);
            return;
        }
        m_known.insert(item);
        m_entries.items.append(item);
    }
    const M3uEntries &entries() const { return m_entries; }

private:
    QString reasonToSkip(const QString &line, const QString &item) const
    {
        QString problem = problemOf(line);
        if (!problem.isEmpty()) {
            return problem;
        }
        if (isPathOfAnotherSystem(line)) {
            return u"it is a path of another system"_s;
        }
        // A link to a file can hold anything, written in hexadecimal numbers.
        if (item.isEmpty() || !problemOf(item).isEmpty()) {
            return u"it is no link to a file of this device"_s;
        }
        if (m_known.contains(item)) {
            return u"it is in the list already"_s;
        }
        return m_entries.items.size() == M3uEntries::MaxItems ? u"the list is full"_s : QString();
    }

    void skip(const QString &line, const QString &reason)
    {
        if (++m_entries.skippedCount <= M3uEntries::MaxReports) {
            m_entries.skipped.append(report(m_number, line, reason));
        }
    }

    QString m_folder;
    qsizetype m_number = 0;
    QSet<QString> m_known;
    M3uEntries m_entries;
};

/// The longest of \a roots that holds \a path; null for none.
QString rootHolding(const QString &path, const QStringList &roots)
{
    QString holder;
    for (const QString &root : roots) {
        if (liesBelow(path, root) && root.size() > holder.size()) {
            holder = root;
        }
    }
    return holder;
}

/// \a relative, so that it is read neither as a comment nor as a link, a path of another system or nothing.
QString plainly(const QString &relative)
{
    const bool isPlain = !relative.startsWith(u'#') && relative.trimmed() == relative && !relative.contains(u':');
    return isPlain && !relative.isEmpty() ? relative : u"./"_s + relative;
}

/// Writes items for one folder.
class Formatter
{
public:
    Formatter(const QString &folder, const QStringList &roots)
        : m_folder(folder), m_roots(roots), m_root(rootHolding(folder + u'/', roots))
    {
    }

    QString line(const QString &item) const
    {
        // A path that is not in its shortest form would come back as another text.
        const bool isMovable = item.startsWith(u'/') && !m_root.isNull() && QDir::cleanPath(item) == item &&
                               rootHolding(item, m_roots) == m_root;
        return isMovable ? plainly(m_folder.relativeFilePath(item)) : item;
    }

private:
    QDir m_folder;
    QStringList m_roots;
    QString m_root;
};

QString reasonToLeaveOut(const QString &item)
{
    if (item.isEmpty()) {
        return u"it is empty"_s;
    }
    QString problem = problemOf(item);
    if (!problem.isEmpty()) {
        return problem;
    }
    const bool isFileLink = item.startsWith("file://"_L1, Qt::CaseInsensitive);
    const bool comesBack = item.startsWith(u'/') || (isLink(item) && !isFileLink);
    return comesBack ? QString() : u"it is neither an absolute path nor a link"_s;
}

} // namespace

std::optional<QString> decodeM3u(const QByteArray &bytes, const QString &codecName)
{
    if (const auto encoding = QStringDecoder::encodingForData(bytes)) {
        QStringDecoder decoder(*encoding);
        return QString(decoder(bytes));
    }
    if (QByteArrayView(bytes).isValidUtf8()) {
        return QString::fromUtf8(bytes);
    }
    QStringDecoder decoder(codecName.toLatin1().constData());
    if (!decoder.isValid()) {
        return std::nullopt;
    }
    return QString(decoder(bytes));
}

M3uEntries parseM3u(const QString &text, const QString &folder)
{
    Parser parser(folder);
    for (qsizetype start = 0; start < text.size();) {
        const qsizetype found = text.indexOf(u'\n', start);
        const qsizetype end = found < 0 ? text.size() : found;
        QString line = text.mid(start, end - start);
        if (line.endsWith(u'\r')) {
            line.chop(1);
        }
        parser.take(line);
        start = end + 1;
    }
    return parser.entries();
}

M3uBytes formatM3u(const QStringList &items, const QString &folder, const QStringList &roots)
{
    const Formatter formatter(folder, roots);
    M3uBytes result;
    result.bytes = "#EXTM3U\n";
    qsizetype number = 0;
    for (const QString &item : items) {
        ++number;
        const QString reason = reasonToLeaveOut(item);
        if (!reason.isEmpty()) {
            result.skipped.append(report(number, item, reason));
            continue;
        }
        result.bytes += formatter.line(item).toUtf8() + '\n';
        ++result.itemCount;
    }
    return result;
}

} // namespace marvola
