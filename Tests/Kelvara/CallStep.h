#pragma once

#include "Platform/Conference/ConferenceCover.h"
#include "Tests/Support/KycHarness.h"
#include "Tests/Support/ScriptedConference.h"

#include <gtest/gtest.h>

namespace kelvara::test {

/// A phone at its video-call step.
class Call : public testing::Test
{
protected:
    /// Runs what is queued, deletions included.
    static void settle() { QTest::qWait(10); }
    void open(const QList<ViewType>& steps = { ViewType::jitsi })
    {
        Device device = Device::phone();
        device.conference = conference;
        stage = std::make_unique<Stage>(device);
        stage->setSteps(steps);
        stage->view->setDidConferenceTerminated([this](const std::optional<QVariantMap>& data) {
            ++terminated;
            inJitsiAtItsEnd = stage->view->inJitsi();
            if (data)
                last = *data;
        });
    }
    void call(const QString& url = QStringLiteral("https://meet.example.com"))
    {
        stage->view->setJitsiConference(url, "room", "token");
    }
    void join()
    {
        call();
        Q_EMIT conference->page()->joined({});
        settle();
    }
    [[nodiscard]] QList<JitsiMeetView*> callViews() const { return stage->view->findChildren<JitsiMeetView*>(); }
    [[nodiscard]] bool showsWaiting() const { return stage->isShown(stage->d().jitsiLabel); }
    [[nodiscard]] bool seesCall() const
    {
        const ScriptedPage* page = conference->page();
        return page && page->label && page->label->isVisible() && stage->view->isAncestorOf(page->label);
    }
    /// What a touch there reaches.
    [[nodiscard]] bool reachesCloseButton() const
    {
        const QWidget* button = stage->d().closeButton;
        return stage->view->childAt(button->geometry().center()) == button;
    }
    [[nodiscard]] ConferenceCover* cover() const { return stage->view->findChild<ConferenceCover*>(); }

    std::shared_ptr<ScriptedConference> conference = std::make_shared<ScriptedConference>();
    std::unique_ptr<Stage> stage;
    int terminated = 0;
    bool inJitsiAtItsEnd = false; ///< While the host is told of it.
    QVariantMap last;
};

} // namespace kelvara::test
