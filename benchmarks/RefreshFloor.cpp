// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// refresh_floor FOLDER: the least that taking in the media files of a folder takes with libavformat, as a program of
// its own: walk, open each file, name its demuxer by its first bytes, read its headers and its texts. No index is made,
// nothing is checked or written, and no library but libavformat is loaded. Prints how many files have sound or pictures
// and how many bytes of text they have.

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
}

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

using namespace std::string_view_literals;

struct Totals
{
    int files = 0;
    std::size_t textBytes = 0;
};

void walk(const std::string &folder, std::vector<std::string> &files)
{
    DIR *open = ::opendir(folder.c_str());
    if (!open)
        return;
    std::vector<std::string> folders;
    const std::size_t first = files.size();
    while (const dirent *entry = ::readdir(open)) {
        if (entry->d_type == DT_REG)
            files.push_back(folder + '/' + entry->d_name);
        else if (entry->d_type == DT_DIR && entry->d_name[0] != '.')
            folders.push_back(folder + '/' + entry->d_name);
    }
    ::closedir(open);
    std::sort(files.begin() + static_cast<std::ptrdiff_t>(first), files.end());
    std::sort(folders.begin(), folders.end());
    for (const std::string &inner : folders)
        walk(inner, files);
}

const char *formatOf(std::string_view head)
{
    struct Sign
    {
        std::size_t offset;
        std::string_view bytes;
        const char *format;
    };
    static constexpr std::array<Sign, 7> Signs = {{{4, "ftyp"sv, "mov"},
                                                   {0, "OggS"sv, "ogg"},
                                                   {0, "fLaC"sv, "flac"},
                                                   {0, "#!AMR"sv, "amr"},
                                                   {8, "WAVE"sv, "wav"},
                                                   {0, "\x1A\x45\xDF\xA3"sv, "matroska"},
                                                   {0, "ID3"sv, "mp3"}}};
    for (const Sign &sign : Signs) {
        if (head.size() >= sign.offset && head.substr(sign.offset, sign.bytes.size()) == sign.bytes)
            return sign.format;
    }
    const bool isFrame = head.size() >= 2 && head[0] == '\xFF' && (head[1] & '\xE0') == '\xE0';
    return isFrame ? "mp3" : nullptr;
}

struct File
{
    int descriptor = -1;
};

int readFile(void *opaque, std::uint8_t *buffer, int size)
{
    const ssize_t got = ::read(static_cast<File *>(opaque)->descriptor, buffer, static_cast<std::size_t>(size));
    return got > 0 ? static_cast<int>(got) : AVERROR_EOF;
}

std::int64_t seekFile(void *opaque, std::int64_t offset, int whence)
{
    const int descriptor = static_cast<File *>(opaque)->descriptor;
    if (whence != AVSEEK_SIZE)
        return ::lseek(descriptor, offset, whence);
    const off_t position = ::lseek(descriptor, 0, SEEK_CUR);
    const off_t size = ::lseek(descriptor, 0, SEEK_END);
    ::lseek(descriptor, position, SEEK_SET);
    return size;
}

void countTexts(const AVDictionary *texts, Totals &totals)
{
    const AVDictionaryEntry *entry = nullptr;
    while ((entry = av_dict_get(texts, "", entry, AV_DICT_IGNORE_SUFFIX)))
        totals.textBytes += std::strlen(entry->value);
}

void readHeaders(File &file, const char *format, Totals &totals)
{
    constexpr int BufferSize = 32 * 1024;
    AVFormatContext *context = avformat_alloc_context();
    AVIOContext *io = avio_alloc_context(static_cast<unsigned char *>(av_malloc(BufferSize)), BufferSize, 0, &file,
                                         readFile, nullptr, seekFile);
    context->pb = io;
    // A context that cannot be opened is freed by the call.
    if (avformat_open_input(&context, nullptr, av_find_input_format(format), nullptr) == 0) {
        bool isMedia = false;
        for (unsigned int i = 0; i < context->nb_streams; ++i) {
            const AVMediaType kind = context->streams[i]->codecpar->codec_type;
            isMedia = isMedia || kind == AVMEDIA_TYPE_AUDIO || kind == AVMEDIA_TYPE_VIDEO;
            countTexts(context->streams[i]->metadata, totals);
        }
        countTexts(context->metadata, totals);
        totals.files += isMedia ? 1 : 0;
        avformat_close_input(&context);
    }
    av_freep(&io->buffer);
    avio_context_free(&io);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: refresh_floor FOLDER\n", stderr);
        return 2;
    }
    av_log_set_level(AV_LOG_QUIET);
    std::vector<std::string> files;
    walk(argv[1], files);
    Totals totals;
    for (const std::string &path : files) {
        File file{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
        std::array<char, 16> head{};
        const ssize_t got = ::pread(file.descriptor, head.data(), head.size(), 0);
        if (const char *format = formatOf({head.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0))}))
            readHeaders(file, format, totals);
        ::close(file.descriptor);
    }
    std::printf("%d files, %zu bytes of text\n", totals.files, totals.textBytes);
    return 0;
}
