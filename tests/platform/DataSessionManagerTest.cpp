// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/DataSessionManager.h>

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

struct SessionManager : testing::Test
{
    ~SessionManager() override { DataSessionManager::setFactory({}); }

    static std::unique_ptr<DataSessionManager> created()
    {
        return std::unique_ptr<DataSessionManager>(DataSessionManager::create());
    }
    static std::function<DataSessionManager *()> named(const char *name)
    {
        return [name] { return new DataSessionManager(nullptr, name); };
    }
};

} // namespace

TEST_F(SessionManager, HasTheParentAndTheNameThatItIsGiven)
{
    QObject parent;
    const auto *manager = new DataSessionManager(&parent, "手机");
    EXPECT_EQ(manager->parent(), &parent);
    EXPECT_EQ(manager->objectName(), u"手机"_s);
    EXPECT_EQ(DataSessionManager().parent(), nullptr);
    EXPECT_TRUE(DataSessionManager().objectName().isEmpty());
}

TEST_F(SessionManager, OfTheBaseClassOpensNothing)
{
    DataSessionManager manager;
    manager.init(false);
    EXPECT_EQ(manager.openLink(u"Operator"_s), -1);
    manager.closeLink(1);
    QString name = u"unchanged"_s;
    unsigned long value = 7;
    EXPECT_NE(manager.getDeviceInfo(1, name, &value), 0);
    EXPECT_NE(manager.getDeviceInfo(1, name, nullptr), 0);
    EXPECT_EQ(name, u"unchanged"_s);
    EXPECT_EQ(value, 7UL);
}

TEST_F(SessionManager, IsOfTheBaseClassUnlessAKindWasNamed)
{
    EXPECT_EQ(created()->metaObject(), &DataSessionManager::staticMetaObject);
    EXPECT_TRUE(created()->objectName().isEmpty());
}

TEST_F(SessionManager, IsOfTheKindThatWasNamedLast)
{
    DataSessionManager::setFactory(named("first"));
    DataSessionManager::setFactory(named("second"));
    const auto one = created();
    const auto other = created();
    EXPECT_EQ(one->objectName(), u"second"_s);
    EXPECT_NE(one, other) << "each call makes one of its own";
    DataSessionManager::setFactory({});
    EXPECT_TRUE(created()->objectName().isEmpty());
}

TEST_F(SessionManager, IsThereEvenWhenTheKindMakesNone)
{
    DataSessionManager::setFactory([]() -> DataSessionManager * { return nullptr; });
    EXPECT_NE(created(), nullptr);
}

TEST_F(SessionManager, KindMayNameAnotherWhileItMakesOne)
{
    const QByteArray kept(100, 'x'); // gone with the function, unless that outlives its own replacement
    DataSessionManager::setFactory([kept] {
        DataSessionManager::setFactory({});
        return new DataSessionManager(nullptr, kept.constData());
    });
    EXPECT_EQ(created()->objectName(), QString::fromLatin1(kept));
    EXPECT_TRUE(created()->objectName().isEmpty());
}
