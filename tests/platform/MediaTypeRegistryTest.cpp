// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/MediaTypeRegistry.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

QStringList extensionsOf(int category)
{
    QStringList extensions{u"stale"_s};
    MediaTypeRegistry::querySupportedExtensions(extensions, category);
    return extensions;
}

/// Puts the media player's extensions back.
class MediaTypeRegistryTest : public testing::Test
{
protected:
    ~MediaTypeRegistryTest() override
    {
        MediaTypeRegistry::setSupportedExtensions(MediaTypeRegistry::MediaPlayer, m_before);
    }

private:
    const QStringList m_before = extensionsOf(MediaTypeRegistry::MediaPlayer);
};

} // namespace

TEST_F(MediaTypeRegistryTest, MediaPlayerIsCategoryTwo)
{
    EXPECT_EQ(int(MediaTypeRegistry::MediaPlayer), 2);
}

TEST_F(MediaTypeRegistryTest, UsualExtensionsAreKnownFromTheStart)
{
    const QStringList extensions = extensionsOf(MediaTypeRegistry::MediaPlayer);
    for (const QString &usual : {u"mp3"_s, u"amr"_s, u"mid"_s, u"mp4"_s, u"3gp"_s})
        EXPECT_THAT(extensions, Contains(usual));
    for (const QString &extension : extensions) {
        EXPECT_FALSE(extension.startsWith(u'.'));
        EXPECT_EQ(extension, extension.trimmed().toLower());
        EXPECT_EQ(extensions.count(extension), 1) << qPrintable(extension);
    }
}

TEST_F(MediaTypeRegistryTest, AnEngineReplacesThemInItsOrder)
{
    MediaTypeRegistry::setSupportedExtensions(MediaTypeRegistry::MediaPlayer, {u"zzz"_s, u"aaa"_s});
    EXPECT_THAT(extensionsOf(MediaTypeRegistry::MediaPlayer), ElementsAre(u"zzz"_s, u"aaa"_s));
}

TEST_F(MediaTypeRegistryTest, AnEngineMayPlayNothing)
{
    MediaTypeRegistry::setSupportedExtensions(MediaTypeRegistry::MediaPlayer, {});
    EXPECT_THAT(extensionsOf(MediaTypeRegistry::MediaPlayer), IsEmpty());
}

TEST_F(MediaTypeRegistryTest, CategoryThatNobodyFilledIsEmpty)
{
    EXPECT_THAT(extensionsOf(-1), IsEmpty());
    EXPECT_THAT(extensionsOf(3), IsEmpty());
}

TEST_F(MediaTypeRegistryTest, CategoriesAreApart)
{
    MediaTypeRegistry::setSupportedExtensions(77, {u"png"_s});
    EXPECT_THAT(extensionsOf(77), ElementsAre(u"png"_s));
    EXPECT_THAT(extensionsOf(MediaTypeRegistry::MediaPlayer), testing::Not(Contains(u"png"_s)));
    MediaTypeRegistry::setSupportedExtensions(77, {});
}
