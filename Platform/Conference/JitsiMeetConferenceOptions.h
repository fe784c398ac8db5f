#pragma once

#include "Platform/Foundation/Export.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

namespace kelvara {

class JitsiMeetConferenceOptionsBuilder;

/// How a conference is to be joined: an immutable value, made by a builder.
///
///     const auto options = JitsiMeetConferenceOptions::fromBuilder([](JitsiMeetConferenceOptionsBuilder& builder) {
///         builder.setServerURL(QUrl("https://meet.example.com"));
///         builder.setRoom("room");
///     });
///
/// What was never set is absent, and the conference server's own default applies. The token is a secret: the value
/// keeps it in memory and shows it to nobody but the conference's page. Any thread.
class KELVARA_EXPORT JitsiMeetConferenceOptions
{
public:
    [[nodiscard]] static JitsiMeetConferenceOptions fromBuilder(
        const std::function<void(JitsiMeetConferenceOptionsBuilder&)>& build);

    /// Where the conference server is. Absent: there is no default server here, and joining says so.
    [[nodiscard]] const std::optional<QUrl>& serverURL() const { return m_serverURL; }
    [[nodiscard]] const std::optional<QString>& room() const { return m_room; }
    [[nodiscard]] const std::optional<QString>& token() const { return m_token; }

    [[nodiscard]] std::optional<bool> audioOnly() const { return option(QStringLiteral("audioOnly")); }
    [[nodiscard]] std::optional<bool> audioMuted() const { return option(QStringLiteral("audioMuted")); }
    [[nodiscard]] std::optional<bool> videoMuted() const { return option(QStringLiteral("videoMuted")); }
    [[nodiscard]] std::optional<bool> welcomePageEnabled() const
    {
        return option(QStringLiteral("welcomePageEnabled"));
    }
    /// What the last call for that flag said; absent when there was none.
    [[nodiscard]] std::optional<bool> featureFlag(const QString& name) const;

    /// One call of a setter that takes a boolean.
    struct Setting
    {
        QString name; ///< Of the option ("audioOnly", …) or the feature flag ("chat.enabled", …).
        bool value = false;
        bool isFeatureFlag = false;

        friend bool operator==(const Setting&, const Setting&) = default;
    };
    /// All those calls in their order, repeated ones too. The conference's page gets this very list.
    [[nodiscard]] const QList<Setting>& settings() const { return m_settings; }

private:
    friend class JitsiMeetConferenceOptionsBuilder;
    [[nodiscard]] std::optional<bool> option(const QString& name) const;
    [[nodiscard]] std::optional<bool> last(const QString& name, bool isFeatureFlag) const;

    std::optional<QUrl> m_serverURL;
    std::optional<QString> m_room;
    std::optional<QString> m_token;
    QList<Setting> m_settings;
};

} // namespace kelvara
