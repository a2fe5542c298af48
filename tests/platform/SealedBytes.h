// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_PLATFORM_SEALEDBYTES_H
#define MARVOLA_TESTS_PLATFORM_SEALEDBYTES_H

#include "platform/TextFrame.h"

#include <QtCore/QByteArray>

/// The bytes of a sealed file of at least \a size bytes with \a content.
inline QByteArray sealedBytes(const QByteArray &content, qsizetype size = 0, quint32 replaced = 0)
{
    return marvola::TextFrame::sealed(QByteArray(marvola::TextSeal::Size, '\n') + content, replaced, size).bytes();
}

#endif
