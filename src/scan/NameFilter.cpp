// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/NameFilter.h"

#include <QtCore/QVarLengthArray>

#include <algorithm>

namespace marvola {

namespace {

constexpr QLatin1String anyStem("*.");
constexpr QLatin1Char separator(';');

/// The "mp3" of "*.mp3"; null for any other kind of pattern.
QString plainExtension(const QString &pattern)
{
    if (!pattern.startsWith(anyStem))
        return {};
    const QString extension = pattern.sliced(anyStem.size());
    const bool plain =
        std::none_of(extension.begin(), extension.end(), [](QChar c) { return QStringView(u"*?[].\\").contains(c); });
    return plain ? extension.toCaseFolded() : QString();
}

QRegularExpression ignoringCase(const QString &expression)
{
    QRegularExpression compiled(expression, QRegularExpression::CaseInsensitiveOption);
    compiled.optimize();
    return compiled;
}

} // namespace

NameFilter::NameFilter(const QString &patterns)
{
    const QStringList parts = patterns.split(separator);
    for (const QString &part : parts) {
        const QString pattern = part.trimmed();
        if (!pattern.isEmpty())
            addPattern(pattern);
    }
    std::sort(m_extensions.begin(), m_extensions.end());
}

void NameFilter::addPattern(const QString &pattern)
{
    const QString extension = plainExtension(pattern);
    if (!extension.isNull()) {
        m_extensions.push_back(extension);
        return;
    }
    QRegularExpression wildcard = ignoringCase(QRegularExpression::wildcardToRegularExpression(pattern));
    // A pattern that is no wildcard expression, like an unclosed "[", stands for itself.
    if (!wildcard.isValid())
        wildcard = ignoringCase(QRegularExpression::anchoredPattern(QRegularExpression::escape(pattern)));
    if (wildcard.isValid())
        m_wildcards.append(wildcard);
}

/// Asked for each file of a walk: the usual extension is looked up without a text of its own.
bool NameFilter::hasExtension(QStringView extension) const
{
    QVarLengthArray<QChar, 16> folded;
    for (const QChar c : extension) {
        if (c.unicode() >= 0x80)
            return isExtension(extension.toString().toCaseFolded());
        folded.append(c >= u'A' && c <= u'Z' ? QChar(c.unicode() + (u'a' - u'A')) : c);
    }
    return isExtension(QStringView(folded.constData(), folded.size()));
}

bool NameFilter::isExtension(QStringView folded) const
{
    const auto found = std::lower_bound(m_extensions.begin(), m_extensions.end(), folded);
    return found != m_extensions.end() && *found == folded;
}

bool NameFilter::matches(const QString &fileName) const
{
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    if (dot >= 0 && hasExtension(QStringView(fileName).sliced(dot + 1)))
        return true;
    return std::any_of(m_wildcards.begin(), m_wildcards.end(),
                       [&fileName](const QRegularExpression &wildcard) { return wildcard.match(fileName).hasMatch(); });
}

QString NameFilter::filterOf(const QStringList &extensions)
{
    QString patterns;
    for (const QString &extension : extensions)
        patterns += anyStem + extension + separator;
    return patterns;
}

} // namespace marvola
