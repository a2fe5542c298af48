// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// How the engine and the library fare on a Qt that was built without ICU and so has no converter for GBK. This program
// is linked such that Qt finds none: see CMakeLists.txt.

#include "TextDecoder.h"

#include <marvola/FFmpegPlayerEngine.h>
#include <marvola/MP_MyLibrary.h>

#include <QtCore/QStringDecoder>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#ifdef MARVOLA_CONVERTER_OPENER
/// In place of ICU's: fails as for a name that there is no converter for.
extern "C" Q_DECL_EXPORT void *MARVOLA_CONVERTER_OPENER(const char *, int *status)
{
    constexpr int FileAccessError = 4;
    *status = FileAccessError;
    return nullptr;
}
#endif

using marvola::TextDecoder;

namespace {

const QByteArray HelloInGbk = "\xC4\xE3\xBA\xC3";

TEST(WithoutConverters, QtHasOnlyItsOwn)
{
    EXPECT_FALSE(QStringDecoder("GBK").isValid());
    EXPECT_TRUE(QStringDecoder("UTF-8").isValid());
    EXPECT_TRUE(QStringDecoder("ISO-8859-1").isValid());
}

TEST(WithoutConverters, LibraryNamesGbkAllTheSame)
{
    const QTemporaryDir home;
    qputenv("JUV_APP_WRITE_PATH", home.path().toUtf8());
    FFmpegPlayerEngine engine;
    const MP_MyLibrary library(&engine);
    EXPECT_EQ(library.getCodecForClip(), QStringLiteral("GBK"));
}

TEST(WithoutConverters, EngineTellsThatGbkIsNotThere)
{
    FFmpegPlayerEngine engine;
    EXPECT_EQ(engine.textCodec(), QStringLiteral("GBK"));
    EXPECT_FALSE(engine.isTextCodecAvailable());
    EXPECT_FALSE(engine.setTextCodec(QStringLiteral("GBK")));
}

TEST(WithoutConverters, GbkIsReadAsLatin1AndKeepsItsBytes)
{
    const QString text = TextDecoder().decode(HelloInGbk);
    EXPECT_EQ(text, QStringLiteral("Äãº\u00C3"));
    EXPECT_EQ(text.toLatin1(), HelloInGbk);
}

TEST(WithoutConverters, CutGbkKeepsItsLastByte)
{
    const QByteArray cut = HelloInGbk.chopped(1);
    EXPECT_EQ(TextDecoder().decode(cut, TextDecoder::Ending::MayBeCut).toLatin1(), cut);
}

TEST(WithoutConverters, Utf8IsReadAsEver)
{
    EXPECT_EQ(TextDecoder().decode("\xE4\xBD\xA0\xE5\xA5\xBD"), QStringLiteral("你好"));
    EXPECT_EQ(TextDecoder().decodeUtf8("Beyonc\xC3\xA9"), QStringLiteral("Beyoncé"));
}

TEST(WithoutConverters, HanziThatFormUtf8AreUtf8)
{
    EXPECT_EQ(TextDecoder().decode("\xC4\xA3"), QStringLiteral("ģ"));
}

TEST(WithoutConverters, Latin1OfQtItselfCanBeChosen)
{
    TextDecoder decoder;
    EXPECT_TRUE(decoder.setCodec(QStringLiteral("ISO-8859-1")));
    EXPECT_EQ(decoder.decode("Bj\xF6rk"), QStringLiteral("Björk"));
}

} // namespace
