// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FFMPEG_MOVIEBYTES_H
#define MARVOLA_TESTS_FFMPEG_MOVIEBYTES_H

#include "MediaBytes.h"

/// A box that starts with a version and flags.
inline QByteArray fullBox(const QByteArray &type, const QByteArray &content)
{
    return box(type, bigEndian(0) + content);
}

/// A track of AMR speech that says that it has so many samples, of one byte each and all of the same length.
inline QByteArray movieTrack(quint32 samples, quint32 sampleLength = 160)
{
    const QByteArray head = fullBox("tkhd", bigEndian(0).repeated(2) + bigEndian(1) + QByteArray(68, '\0'));
    const QByteArray mediaHead =
        fullBox("mdhd", bigEndian(0).repeated(2) + bigEndian(8000) + bigEndian(8000) + bigEndian(0x55C40000));
    const QByteArray handler = fullBox("hdlr", bigEndian(0) + "soun" + QByteArray(13, '\0'));
    const QByteArray entry = box("samr", QByteArray(6, '\0') + QByteArray("\0\1", 2) + QByteArray(8, '\0') +
                                             bigEndian(0x00010010) + bigEndian(0) + bigEndian(8000U << 16));
    const QByteArray tables = fullBox("stsd", bigEndian(1) + entry) +
                              fullBox("stts", bigEndian(1) + bigEndian(samples) + bigEndian(sampleLength)) +
                              fullBox("stsc", bigEndian(1) + bigEndian(1) + bigEndian(samples) + bigEndian(1)) +
                              fullBox("stsz", bigEndian(1) + bigEndian(samples)) +
                              fullBox("stco", bigEndian(1) + bigEndian(40));
    const QByteArray info = box("minf", fullBox("smhd", bigEndian(0)) + box("stbl", tables));
    return box("trak", head + box("mdia", mediaHead + handler + info));
}

inline QByteArray movieOf(const QByteArray &tracks)
{
    const QByteArray head =
        fullBox("mvhd", bigEndian(0).repeated(2) + bigEndian(1000) + bigEndian(1000) + QByteArray(80, '\0'));
    return box("ftyp", "3gp4" + bigEndian(0) + "3gp4") + box("moov", head + tracks);
}

/// A fragment of the first track that says that it has so many samples.
inline QByteArray movieFragment(quint32 samples)
{
    return box("moof", fullBox("mfhd", bigEndian(1)) +
                           box("traf", fullBox("tfhd", bigEndian(1)) + fullBox("trun", bigEndian(samples))));
}

#endif
