#pragma once

#include "Platform/Conference/ConferencePage.h"
#include "Platform/Conference/ConferenceService.h"
#include "Platform/Conference/JitsiMeetViewDelegate.h"

#include <QLabel>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kelvara::test {

/// A conference without a browser: a label, and what the test makes happen.
class ScriptedPage final : public ConferencePage
{
    Q_OBJECT
public:
    ~ScriptedPage() override { delete label.data(); }

    [[nodiscard]] QWidget* widget() override { return label; }
    void open(const ConferenceInvitation& opened) override { invitation = opened; }
    void hangUp() override { ++hangUps; }

    QPointer<QLabel> label { new QLabel(QStringLiteral("call")) };
    std::optional<ConferenceInvitation> invitation;
    int hangUps = 0;
};

struct ScriptedConference final : ConferenceService
{
    [[nodiscard]] std::unique_ptr<ConferencePage> makePage() override
    {
        auto page = std::make_unique<ScriptedPage>();
        pages.emplace_back(page.get());
        return page;
    }

    [[nodiscard]] ScriptedPage* page() const { return pages.empty() ? nullptr : pages.back().data(); }
    [[nodiscard]] int alive() const
    {
        int count = 0;
        for (const auto& page : pages)
            count += page ? 1 : 0;
        return count;
    }

    std::vector<QPointer<ScriptedPage>> pages; ///< Null once deleted.
};

/// Writes down what a conference tells.
struct RecordingConferenceDelegate : JitsiMeetViewDelegate
{
    QStringList events;
    QVariantMap last;
    std::function<void(const QString&)> during;

    void note(const QString& event, const std::optional<QVariantMap>& data)
    {
        events << event;
        last = data.value_or(QVariantMap());
        if (const auto action = during)
            action(event);
    }
    void conferenceWillJoin(const std::optional<QVariantMap>& data) override { note(QStringLiteral("willJoin"), data); }
    void conferenceJoined(const std::optional<QVariantMap>& data) override { note(QStringLiteral("joined"), data); }
    void conferenceTerminated(const std::optional<QVariantMap>& data) override
    {
        note(QStringLiteral("terminated"), data);
    }
    [[nodiscard]] qsizetype terminated() const { return events.count(QStringLiteral("terminated")); }
};

} // namespace kelvara::test
