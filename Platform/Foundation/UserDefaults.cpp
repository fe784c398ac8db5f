#include "Platform/Foundation/UserDefaults.h"

#include <QCoreApplication>
#include <QSettings>
#include <QUrl>

#include <map>

namespace kelvara {

namespace {

class SettingsDefaults final : public UserDefaults
{
public:
    SettingsDefaults()
        : m_settings(QSettings::IniFormat, QSettings::UserScope,
            QCoreApplication::organizationName().isEmpty() ? QStringLiteral("Kelvara")
                                                           : QCoreApplication::organizationName(),
            QCoreApplication::applicationName())
    { }

    std::optional<QString> string(const QString& key) const override
    {
        const QVariant value = m_settings.value(stored(key));
        if (!value.isValid())
            return std::nullopt;
        return value.toString();
    }

    void set(const QString& value, const QString& key) override { m_settings.setValue(stored(key), value); }
    void remove(const QString& key) override { m_settings.remove(stored(key)); }

private:
    /// Settings read a slash as a group, whose removal takes all of it, and an empty key as everything; a key here is
    /// just a name.
    static QString stored(const QString& key)
    {
        return key.isEmpty() ? QStringLiteral("%") : QString::fromLatin1(QUrl::toPercentEncoding(key));
    }

    QSettings m_settings;
};

class MemoryDefaults final : public UserDefaults
{
public:
    std::optional<QString> string(const QString& key) const override
    {
        const auto found = m_values.find(key);
        return found == m_values.end() ? std::nullopt : std::optional(found->second);
    }

    void set(const QString& value, const QString& key) override { m_values[key] = value; }
    void remove(const QString& key) override { m_values.erase(key); }

private:
    std::map<QString, QString> m_values;
};

} // namespace

std::shared_ptr<UserDefaults> UserDefaults::standard()
{
    return std::make_shared<SettingsDefaults>();
}

std::shared_ptr<UserDefaults> UserDefaults::inMemory()
{
    return std::make_shared<MemoryDefaults>();
}

} // namespace kelvara
