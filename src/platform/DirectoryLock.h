// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_DIRECTORYLOCK_H
#define MARVOLA_PLATFORM_DIRECTORYLOCK_H

#include <QtCore/QByteArray>

#include <memory>

namespace marvola {

/// An exclusive lock on a directory, held until the last copy of the object goes. It lies on the directory itself, so
/// there is no lock file, and the operating system lets go of it when its holder dies.
///
/// Two objects of one thread never wait for one another: while a thread holds a directory, it gets the same lock again.
class DirectoryLock
{
public:
    /// Whoever holds a lock lets go of it within a commit or two, unless it is stopped in the middle; so waiting ends,
    /// after ten seconds.
    enum class Patience { Wait, DoNotWait };

    /// Not held.
    DirectoryLock() = default;
    /// Not held when the directory cannot be opened or its filesystem knows no locks, or when another holds it for
    /// longer than \a patience goes.
    DirectoryLock(const QByteArray &directory, Patience patience);

    bool isHeld() const { return m_held != nullptr; }
    /// Whether it is not held because another holds it.
    bool isHeldByAnother() const { return m_isHeldByAnother; }

private:
    class Held;
    std::shared_ptr<Held> m_held;
    bool m_isHeldByAnother = false;
};

} // namespace marvola

#endif
