// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// Runs a fuzz target over files that are there, without a fuzzer: every seed, and every input that once was a finding.

#include <QtCore/QDirIterator>
#include <QtCore/QFile>

#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size);

int main(int count, char **arguments)
{
    int files = 0;
    for (int number = 1; number < count; ++number) {
        QDirIterator folder(QFile::decodeName(arguments[number]), QDir::Files | QDir::Hidden);
        while (folder.hasNext()) {
            QFile file(folder.next());
            std::printf("%s\n", qPrintable(file.fileName()));
            std::fflush(stdout);
            if (!file.open(QIODevice::ReadOnly))
                return 1;
            const QByteArray bytes = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char *>(bytes.constData()),
                                   static_cast<std::size_t>(bytes.size()));
            ++files;
        }
    }
    std::printf("%d inputs\n", files);
    return files > 0 ? 0 : 1;
}
