// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TROVE_GLOBAL_H
#define MARVOLA_TROVE_GLOBAL_H

#include <marvola/Export.h>

#include <QtCore/QString>

/// What the phone knows about its storage places. All operations may be called from any thread.
class MARVOLA_EXPORT TROVE_Global
{
public:
    /// The one object of this class; it lives as long as the process.
    static TROVE_Global *instance();

    TROVE_Global(const TROVE_Global &) = delete;
    TROVE_Global &operator=(const TROVE_Global &) = delete;

    /// The folder level of the storage place that holds \a path: the number of "/" in the place's root, written without
    /// a trailing "/". The place is the longest of the configured ones (the environment's data path and card mount
    /// paths) that holds \a path, else the mount point that does; "/" is level 0 and "/a/b" level 2.
    ///
    /// The answer depends on the text of \a path alone: links are not resolved and the path need not exist.
    int getPartiFolderLevel(const QString &path) const;

private:
    TROVE_Global() = default;
};

#endif
