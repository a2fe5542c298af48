// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Id3Texts.h"

#include "ClipTexts.h"
#include "Id3v2Frames.h"
#include "MediaFile.h"
#include "TextDecoder.h"

#include <marvola/PlayerEngine.h>

#include <QtCore/QStringList>
#include <QtCore/QtEndian>

#include <taglib/apetag.h>
#include <taglib/commentsframe.h>
#include <taglib/id3v2framefactory.h>
#include <taglib/mpegfile.h>
#include <taglib/tbytevectorstream.h>
#include <taglib/textidentificationframe.h>

#include <algorithm>
#include <array>

namespace marvola {

namespace {

constexpr qint64 Id3v1Size = 128;
constexpr qint64 ApeFooterSize = 32;
/// Cover art may be in there; a tag that is longer is left alone.
constexpr qint64 MostApeSize = 1 * MiB;
/// Each is compared with those before it.
constexpr qsizetype MostValues = 100;

/// Texts by the names that they go by in one kind of tag.
struct NamedField
{
    const char *name;
    QString ClipInfo::*field;
};

constexpr std::array<NamedField, 6> Id3v2Fields = {{{"TIT2", &ClipInfo::title},
                                                    {"TPE1", &ClipInfo::artist},
                                                    {"TALB", &ClipInfo::album},
                                                    {"TCON", &ClipInfo::genre},
                                                    {"TCOM", &ClipInfo::composer},
                                                    {"TCOP", &ClipInfo::copyright}}};

constexpr std::array<NamedField, 7> ApeFields = {{{"TITLE", &ClipInfo::title},
                                                  {"ARTIST", &ClipInfo::artist},
                                                  {"ALBUM", &ClipInfo::album},
                                                  {"GENRE", &ClipInfo::genre},
                                                  {"COMPOSER", &ClipInfo::composer},
                                                  {"COPYRIGHT", &ClipInfo::copyright},
                                                  {"COMMENT", &ClipInfo::comment}}};

/// The content of a frame of text, which begins with the number of an encoding. TagLib takes any number for one of its
/// own; bytes in an encoding that does not exist are as good as Latin-1, which is guessed at anyway.
QByteArray textContent(const Id3v2Frame &frame)
{
    QByteArray content = frame.content;
    if (!content.isEmpty() && static_cast<quint8>(content.front()) > TagLib::String::UTF8)
        content.front() = static_cast<char>(TagLib::String::Latin1);
    return content;
}

/// A frame of text as TagLib's frame classes take it: with a version 2.4 header and no flags.
TagLib::ByteVector plainFrame(const Id3v2Frame &frame)
{
    const QByteArray content = textContent(frame);
    TagLib::ByteVector bytes(frame.id.constData(), 4);
    for (int shift = 21; shift >= 0; shift -= 7)
        bytes.append(static_cast<char>((content.size() >> shift) & 0x7F));
    bytes.append(TagLib::ByteVector(2, '\0'));
    bytes.append(TagLib::ByteVector(content.constData(), static_cast<unsigned int>(content.size())));
    return bytes;
}

/// \a text, whose characters are the tag's bytes when \a encoding is Latin-1: nearly every writer puts whatever bytes
/// it has where the tag says Latin-1.
QString decoded(const TagLib::String &text, TagLib::String::Type encoding, const TextDecoder &decoder)
{
    if (encoding == TagLib::String::Latin1)
        return decoder.decode(text.to8Bit(false));
    return QString::fromStdWString(text.toWString());
}

QString textOf(const Id3v2Frame &frame, const TextDecoder &decoder)
{
    const TagLib::ID3v2::TextIdentificationFrame parsed(plainFrame(frame));
    QStringList values;
    for (const TagLib::String &value : parsed.fieldList()) {
        if (values.size() == MostValues)
            break;
        const QString text = decoded(value, parsed.textEncoding(), decoder).trimmed();
        const QString shown = frame.id == "TCON" ? genreText(text) : text;
        if (!shown.isEmpty() && !values.contains(shown))
            values.append(shown);
    }
    return values.join(QChar(ValueSeparator));
}

/// Comments with a description are remarks of programs to themselves.
QString plainComment(const Id3v2Frame &frame, const TextDecoder &decoder)
{
    const TagLib::ID3v2::CommentsFrame parsed(plainFrame(frame));
    return parsed.description().isEmpty() ? decoded(parsed.text(), parsed.textEncoding(), decoder) : QString();
}

QString fixedField(const QByteArray &tag, qsizetype from, qsizetype size, const TextDecoder &decoder)
{
    const QByteArray field = tag.mid(from, size);
    const qsizetype end = field.indexOf('\0');
    return end < 0 ? decoder.decode(field, TextDecoder::Ending::MayBeCut) : decoder.decode(field.left(end));
}

void addId3v1Texts(ClipInfo &info, const QByteArray &tag, const TextDecoder &decoder)
{
    constexpr qsizetype FieldSize = 30;
    // Version 1.1 keeps the track number in the comment's last byte, after a zero.
    const bool hasTrack = tag.at(125) == '\0' && tag.at(126) != '\0';
    fillText(info.title, fixedField(tag, 3, FieldSize, decoder));
    fillText(info.artist, fixedField(tag, 33, FieldSize, decoder));
    fillText(info.album, fixedField(tag, 63, FieldSize, decoder));
    fillText(info.comment, fixedField(tag, 97, hasTrack ? FieldSize - 2 : FieldSize, decoder));
    fillText(info.genre, genreName(static_cast<quint8>(tag.at(127))));
}

/// The APE tag that ends at \a end of \a file; empty when there is none.
QByteArray apeTag(MediaFile &file, qint64 end)
{
    const QByteArray footer = end >= ApeFooterSize ? file.bytes(end - ApeFooterSize, ApeFooterSize) : QByteArray();
    if (footer.size() < ApeFooterSize || !footer.startsWith("APETAGEX"))
        return {};
    // The size counts the items and the footer, not the header.
    const qint64 size = qFromLittleEndian<quint32>(footer.constData() + 12);
    return size >= ApeFooterSize && size <= std::min(end, MostApeSize) ? file.bytes(end - size, size) : QByteArray();
}

void addApeTexts(ClipInfo &info, const QByteArray &bytes)
{
    TagLib::ByteVectorStream stream(TagLib::ByteVector(bytes.constData(), static_cast<unsigned int>(bytes.size())));
    TagLib::MPEG::File file(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
    const TagLib::APE::Tag *tag = file.APETag(false);
    if (!tag)
        return;
    const TagLib::APE::ItemListMap &items = tag->itemListMap();
    for (const NamedField &each : ApeFields) {
        const auto item = items.find(each.name);
        if (item == items.end() || item->second.type() != TagLib::APE::Item::Text)
            continue;
        QStringList values;
        for (const TagLib::String &value : item->second.values())
            values.append(QString::fromStdWString(value.toWString()));
        fillText(info.*each.field, values.join(QChar(ValueSeparator)));
    }
}

} // namespace

void addId3v2Texts(ClipInfo &info, const Id3v2Tag &tag, const TextDecoder &decoder)
{
    for (const Id3v2Frame &frame : tag.frames) {
        const auto known = std::find_if(Id3v2Fields.begin(), Id3v2Fields.end(),
                                        [&frame](const NamedField &each) { return frame.id == each.name; });
        if (known != Id3v2Fields.end())
            fillText(info.*known->field, textOf(frame, decoder));
        else
            fillText(info.comment, plainComment(frame, decoder));
    }
}

void addTrailingTexts(ClipInfo &info, MediaFile &file, const TextDecoder &decoder)
{
    const qint64 start = std::max<qint64>(file.size() - Id3v1Size, 0);
    const QByteArray last = file.bytes(start, Id3v1Size);
    const bool hasId3v1 = last.size() == Id3v1Size && last.startsWith("TAG");
    const QByteArray ape = apeTag(file, hasId3v1 ? start : file.size());
    if (!ape.isEmpty())
        addApeTexts(info, ape);
    if (hasId3v1)
        addId3v1Texts(info, last, decoder);
}

} // namespace marvola
