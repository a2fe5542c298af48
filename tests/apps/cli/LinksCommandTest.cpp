// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <marvola/ConfigFile.h>

using namespace Qt::StringLiterals;

namespace {

class LinksCommand : public CliTest
{
protected:
    void preset(const QString &key, const QString &url) const
    {
        ConfigFile file(settingsFile(), false);
        EXPECT_TRUE(file.writeEntry(u"MediaControlItem"_s, key, url));
        EXPECT_TRUE(file.flush());
    }
};

} // namespace

TEST_F(LinksCommand, NoneIsNoError)
{
    const CliResult result = run({u"links"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.isEmpty());
    EXPECT_TRUE(run({u"links"_s, u"--json"_s}).texts().isEmpty());
}

TEST_F(LinksCommand, EmptyOneLeavesNoGap)
{
    preset(u"PreConfigURL1"_s, u""_s);
    preset(u"preConfigURL2"_s, u"rtsp://two"_s);
    preset(u"PreConfigURL3"_s, u"rtsp://three"_s);
    EXPECT_EQ(run({u"links"_s, u"--json"_s}).texts(), (QStringList{u"rtsp://two"_s, u"rtsp://three"_s}));
    EXPECT_EQ(run({u"links"_s}).output, "1  rtsp://two\n2  rtsp://three\n");
}

TEST_F(LinksCommand, StoringOtherThingsLosesNoPresetLink)
{
    preset(u"PreConfigURL1"_s, u"rtsp://one"_s);
    preset(u"preConfigURL2"_s, u"rtsp://two"_s);
    ASSERT_EQ(run({u"history"_s, u"add"_s, u"L1"_s}).status, 0);
    EXPECT_EQ(run({u"links"_s, u"--json"_s}).texts(), (QStringList{u"rtsp://one"_s, u"rtsp://two"_s}));
}
