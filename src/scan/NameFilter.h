// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_NAMEFILTER_H
#define MARVOLA_SCAN_NAMEFILTER_H

#include <QtCore/QList>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace marvola {

/// Says which file names are media, by wildcard patterns like "*.mp3;*.amr;". Letter case does not matter.
///
/// Patterns stand between ";" with blanks around them ignored and may hold "*", "?" and "[...]". Without a pattern
/// nothing matches: an engine that plays nothing has no media.
class NameFilter
{
public:
    explicit NameFilter(const QString &patterns);

    bool matches(const QString &fileName) const;

    /// The patterns for files with \a extensions, which come without dots.
    static QString filterOf(const QStringList &extensions);

private:
    void addPattern(const QString &pattern);
    bool hasExtension(QStringView extension) const;
    bool isExtension(QStringView folded) const;

    std::vector<QString> m_extensions; ///< case-folded, of patterns like "*.mp3"; sorted
    QList<QRegularExpression> m_wildcards;
};

} // namespace marvola

#endif
