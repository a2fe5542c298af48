// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/NameFilter.h"

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
}

void NameFilter::addPattern(const QString &pattern)
{
    const QString extension = plainExtension(pattern);
    if (!extension.isNull()) {
        m_extensions.insert(extension);
        return;
    }
    QRegularExpression wildcard = ignoringCase(QRegularExpression::wildcardToRegularExpression(pattern));
    // A pattern that is no wildcard expression, like an unclosed "[", stands for itself.
    if (!wildcard.isValid())
        wildcard = ignoringCase(QRegularExpression::anchoredPattern(QRegularExpression::escape(pattern)));
    if (wildcard.isValid())
        m_wildcards.append(wildcard);
}

bool NameFilter::matches(const QString &fileName) const
{
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    if (dot >= 0 && !m_extensions.isEmpty() && m_extensions.contains(fileName.sliced(dot + 1).toCaseFolded()))
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
