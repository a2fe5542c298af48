// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_PULLED_PULLABLECARD_H
#define MARVOLA_TESTS_PULLED_PULLABLECARD_H

#include <QtCore/QString>

#include <memory>

/// A memory card at one path, which can be taken out while it is used and put in again. What needs a mount is mounted
/// in a namespace of this process, and is gone with it.
class PullableCard
{
public:
    enum class Kind {
        Folder,   ///< a folder that is removed
        Detached, ///< a filesystem that is unmounted lazily: open files go on, paths lead elsewhere
        ShutDown  ///< an ext4 filesystem whose medium is gone: every call fails from then on
    };
    enum class Return { Same, ReadOnly, Empty };

    /// \a folder holds the card's path and what is needed behind it.
    static std::unique_ptr<PullableCard> make(Kind kind, const QString &folder);
    /// Why there can be no such card on this machine; null when there can be one.
    static QString whyNot(Kind kind);

    explicit PullableCard(const QString &folder);
    PullableCard(const PullableCard &) = delete;
    PullableCard &operator=(const PullableCard &) = delete;
    virtual ~PullableCard() = default;

    QString path() const { return m_folder + QStringLiteral("/card"); }
    /// Whether what was written to the card is still on it after it was pulled.
    virtual bool keepsWhatIsWritten() const { return true; }

    /// Keeps in mind what is on the card, for kinds that lose it.
    virtual void remember() {}
    /// Callable from any thread and from within a call to the system.
    virtual void pull() = 0;
    /// Everything on the card has been closed by then.
    virtual void putBack(Return how) = 0;

protected:
    QString inFolder(const char *name) const { return m_folder + QLatin1Char('/') + QLatin1String(name); }

private:
    QString m_folder;
};

#endif
