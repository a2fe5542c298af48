// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "VorbisComments.h"

#include "ClipTexts.h"
#include "TextDecoder.h"

#include <marvola/PlayerEngine.h>

#include <QtCore/QStringList>
#include <QtCore/QtEndian>

#include <algorithm>
#include <array>

namespace marvola {

namespace {

constexpr qint64 LengthSize = 4;
/// More bytes than any text that is shown, and than any name that is known.
constexpr qint64 MostCommentSize = qint64(16) * 1024;
constexpr qint64 MostNameSize = 16;
constexpr int MostCommentValues = 100;

struct CommentField
{
    const char *name;
    QString ClipInfo::*field;
};

constexpr std::array<CommentField, 9> Fields = {{{"TITLE", &ClipInfo::title},
                                                 {"ARTIST", &ClipInfo::artist},
                                                 {"AUTHOR", &ClipInfo::artist},
                                                 {"ALBUM", &ClipInfo::album},
                                                 {"GENRE", &ClipInfo::genre},
                                                 {"COMPOSER", &ClipInfo::composer},
                                                 {"COPYRIGHT", &ClipInfo::copyright},
                                                 {"COMMENT", &ClipInfo::comment},
                                                 {"DESCRIPTION", &ClipInfo::comment}}};

bool isKnown(const QByteArray &name)
{
    return std::any_of(Fields.begin(), Fields.end(), [&name](const CommentField &each) { return name == each.name; });
}

/// The number at \a offset; -1 where there is none.
qint64 lengthAt(const VorbisComments::Source &source, qint64 offset)
{
    const QByteArray bytes = source(offset, LengthSize);
    return bytes.size() == LengthSize ? qFromLittleEndian<quint32>(bytes.constData()) : -1;
}

} // namespace

VorbisComments::VorbisComments(const Source &source, qint64 size) : m_isModest(size <= MostSize)
{
    // First comes the name of the program that wrote the list.
    const qint64 vendor = lengthAt(source, 0);
    if (vendor < 0 || vendor > size - 2 * LengthSize)
        return;
    m_countOffset = LengthSize + vendor;
    read(source, m_countOffset, size);
}

void VorbisComments::read(const Source &source, qint64 from, qint64 size)
{
    const qint64 announced = lengthAt(source, from);
    qint64 offset = from + LengthSize;
    for (; m_count < announced && m_count <= MostComments; ++m_count) {
        const qint64 length = lengthAt(source, offset);
        offset += LengthSize;
        if (length < 0 || length > size - offset)
            return;
        const QByteArray start = source(offset, std::min(length, MostNameSize));
        const qsizetype nameSize = start.indexOf('=');
        const QByteArray name = start.left(std::max<qsizetype>(nameSize, 0)).toUpper();
        if (isKnown(name) && m_comments.size() < MostCommentValues) {
            const qint64 valueSize = std::min(length - nameSize - 1, MostCommentSize);
            m_comments.append({name, source(offset + nameSize + 1, valueSize)});
        }
        offset += length;
    }
    m_isModest = m_isModest && m_count <= MostComments;
}

void VorbisComments::addTexts(ClipInfo &info, const TextDecoder &decoder) const
{
    for (const CommentField &each : Fields) {
        QStringList values;
        for (const Comment &comment : m_comments) {
            if (comment.name == each.name)
                values.append(decoder.decodeUtf8(comment.value, TextDecoder::Ending::MayBeCut));
        }
        const QString text = values.join(QChar(ValueSeparator));
        fillText(info.*each.field, each.field == &ClipInfo::genre ? genreText(text) : text);
    }
}

} // namespace marvola
