// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/MediaWalker.h"

#include <cstdio>

/// Walks the folder that the argument names, and writes how many mp3 files it has.
int main(int argc, char **argv)
{
    if (argc != 2)
        return 2;
    QStringList files;
    marvola::MediaWalker(marvola::NameFilter(QStringLiteral("*.mp3;"))).walk(QString::fromUtf8(argv[1]), files);
    std::printf("%lld\n", static_cast<long long>(files.size()));
    return 0;
}
