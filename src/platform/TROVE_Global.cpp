// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/TROVE_Global.h>

#include "platform/MountTable.h"

#include <array>
#include <mutex>

namespace {

using namespace marvola;

constexpr QLatin1Char slash('/');

/// The root of one storage place as the environment names it, decoded once per value.
class ConfiguredPlace
{
public:
    explicit ConfiguredPlace(const char *variable) : m_variable(variable) {}

    /// The root without trailing "/" when it holds \a path. "/a/b" holds itself and what is below, not "/a/bc".
    std::optional<QStringView> rootOf(QStringView path)
    {
        refresh();
        if (m_value.isEmpty() || !path.startsWith(m_root))
            return std::nullopt;
        if (path.size() > m_root.size() && path[m_root.size()] != slash)
            return std::nullopt;
        return QStringView(m_root);
    }

private:
    void refresh()
    {
        const QByteArray value = qgetenv(m_variable);
        if (value == m_value)
            return;
        m_value = value;
        m_root = QString::fromLocal8Bit(value);
        while (m_root.endsWith(slash))
            m_root.chop(1);
    }

    const char *m_variable;
    QByteArray m_value;
    QString m_root;
};

struct Places
{
    std::mutex mutex;
    std::array<ConfiguredPlace, 3> configured{ConfiguredPlace("TROVE_DATA_PATH"), ConfiguredPlace("CARD1_MOUNT_PATH"),
                                              ConfiguredPlace("CARD2_MOUNT_PATH")};
    MountTable mounts;
};

/// Never destroyed: a refresh may still walk while the process ends.
Places &places()
{
    static Places &instance = *new Places;
    return instance;
}

} // namespace

TROVE_Global *TROVE_Global::instance()
{
    static TROVE_Global &global = *new TROVE_Global;
    return &global;
}

int TROVE_Global::getPartiFolderLevel(const QString &path) const
{
    Places &known = places();
    const std::lock_guard locker(known.mutex);
    std::optional<QStringView> root;
    for (ConfiguredPlace &place : known.configured) {
        const std::optional<QStringView> candidate = place.rootOf(path);
        if (candidate && (!root || candidate->size() > root->size()))
            root = candidate;
    }
    if (!root)
        root = known.mounts.pointOf(path);
    return root ? static_cast<int>(root->count(slash)) : 0;
}
