// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/NetworkProfile.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct NetworkProfile : testing::Test
{
    ~NetworkProfile() override { setNetworkProfileChooser({}); }

    QString profile = u"before"_s;
};

} // namespace

TEST_F(NetworkProfile, IsNotChosenWithoutAChooser)
{
    EXPECT_NE(selectNetworkProfile(profile), 0);
    setNetworkProfileChooser([](QString &) { return 0; });
    setNetworkProfileChooser({});
    EXPECT_NE(selectNetworkProfile(profile), 0);
    EXPECT_EQ(profile, u"before"_s);
}

TEST_F(NetworkProfile, IsWhatTheLastChooserSays)
{
    setNetworkProfileChooser([](QString &) { return 0; });
    setNetworkProfileChooser([](QString &name) {
        EXPECT_EQ(name, u"before"_s);
        name = u"after"_s;
        return 42;
    });
    EXPECT_EQ(selectNetworkProfile(profile), 42);
    EXPECT_EQ(profile, u"after"_s);
}

TEST_F(NetworkProfile, ChooserMayNameAnotherWhileItRuns)
{
    const QByteArray kept(100, 'x'); // gone with the function, unless that outlives its own replacement
    setNetworkProfileChooser([kept](QString &name) {
        setNetworkProfileChooser([](QString &) { return 5; });
        name = QString::fromLatin1(kept);
        return 0;
    });
    EXPECT_EQ(selectNetworkProfile(profile), 0);
    EXPECT_EQ(profile, QString::fromLatin1(kept));
    EXPECT_EQ(selectNetworkProfile(profile), 5);
}
