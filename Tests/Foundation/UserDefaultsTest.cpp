#include "Platform/Foundation/UserDefaults.h"

#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kelvara {
namespace {

enum class Kind { Standard, Memory };

class UserDefaultsTest : public testing::TestWithParam<Kind>
{
protected:
    UserDefaultsTest() { QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_folder.path()); }

    /// The store as a part of the application that opens it anew sees it.
    std::shared_ptr<UserDefaults> open()
    {
        if (GetParam() == Kind::Standard)
            return UserDefaults::standard();
        if (!m_memory)
            m_memory = UserDefaults::inMemory();
        return m_memory;
    }

private:
    QTemporaryDir m_folder;
    std::shared_ptr<UserDefaults> m_memory;
};

TEST_P(UserDefaultsTest, GivesBackWhatWasStored)
{
    const QString values[] = { QStringLiteral("tr"), QString(), QString::fromUtf8("Işık, ğüşöç İI;=\"\\"),
        QStringLiteral("@Variant(x)"), QStringLiteral(" blanks "), QStringLiteral("two\nlines"),
        QString::fromUtf8("\U0001F600"), QStringLiteral("true"), QStringLiteral("0012") };
    for (const QString& value : values) {
        open()->set(QStringLiteral("first"), QStringLiteral("key"));
        open()->set(value, QStringLiteral("key"));
        const std::optional<QString> found = open()->string(QStringLiteral("key"));
        ASSERT_TRUE(found) << value.toStdString();
        EXPECT_EQ(*found, value) << value.toStdString();
    }
}

TEST_P(UserDefaultsTest, KeysAreNamesWithoutStructure)
{
    const QString keys[] = { QString(), QStringLiteral("a"), QStringLiteral("A"), QStringLiteral("a/b"),
        QStringLiteral("/a"), QStringLiteral("a%2Fb"), QString::fromUtf8("dil şifresi") };
    for (const QString& key : keys)
        EXPECT_FALSE(open()->string(key)) << key.toStdString();
    for (const QString& key : keys)
        open()->set(QStringLiteral("<%1>").arg(key), key);
    for (const QString& key : keys)
        EXPECT_EQ(open()->string(key), QStringLiteral("<%1>").arg(key));
    open()->remove(QStringLiteral("a"));
    open()->remove(QString());
    EXPECT_FALSE(open()->string(QStringLiteral("a")));
    EXPECT_FALSE(open()->string(QString()));
    EXPECT_TRUE(open()->string(QStringLiteral("a/b")));
    EXPECT_TRUE(open()->string(QStringLiteral("/a")));
}

INSTANTIATE_TEST_SUITE_P(Stores, UserDefaultsTest, testing::Values(Kind::Standard, Kind::Memory),
    [](const auto& store) { return store.param == Kind::Standard ? "Standard" : "Memory"; });

} // namespace
} // namespace kelvara
