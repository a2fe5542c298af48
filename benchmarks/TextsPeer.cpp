// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// texts_peer FOLDER: reads the texts of the media files of a folder with TagLib alone, which says nothing of what kinds
// of streams they hold. Prints how many files it knows and how many bytes of text they have.

#include <taglib/fileref.h>
#include <taglib/tag.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: texts_peer FOLDER\n", stderr);
        return 2;
    }
    std::vector<std::string> paths;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(argv[1])) {
        if (entry.is_regular_file())
            paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    int files = 0;
    std::size_t bytes = 0;
    for (const std::string &path : paths) {
        const TagLib::FileRef file(path.c_str(), false);
        if (file.isNull() || !file.tag())
            continue;
        ++files;
        for (const TagLib::String &text :
             {file.tag()->title(), file.tag()->artist(), file.tag()->album(), file.tag()->genre()})
            bytes += text.to8Bit(true).size();
    }
    std::printf("%d files, %zu bytes of text\n", files, bytes);
    return 0;
}
