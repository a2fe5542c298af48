// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/State.h"

bool MP_MyLibrary::State::adoptWorkDirectory(const QString &dir)
{
    return marvola::hasEnoughSpace(dir) && workDirectory.choose(dir);
}

bool MP_MyLibrary::hasEnoughSpace(const QString &dir) const
{
    return marvola::hasEnoughSpace(dir);
}

QStringList MP_MyLibrary::getAvailableDirectory() const
{
    QStringList roots = marvola::cardRoots();
    roots.removeIf([](const QString &root) { return !marvola::hasEnoughSpace(root); });
    return roots;
}

bool MP_MyLibrary::setWorkDirectory(const QString &dir)
{
    if (!d->workDirectory.choose(dir))
        return false;
    // The player wants its lists to go to this new place, whatever is stored there; but on no other medium.
    d->knownLists.try_emplace(d->workDirectory.canonicalPath(),
                              marvola::KnownLists{d->workDirectory.listFile().medium(), 0, 0});
    return true;
}

QString MP_MyLibrary::getWorkDirectory() const
{
    return d->workDirectory.path();
}
