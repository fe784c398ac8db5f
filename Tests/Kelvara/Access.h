#pragma once

#include "Tests/Kelvara/WidgetTools.h"
#include "Tests/Support/KycHarness.h"
#include "Tests/Support/ScriptedConference.h"

#include <QAccessible>
#include <QLineEdit>

#include <gtest/gtest.h>

namespace kelvara::test {

inline constexpr auto kFrontInstruction
    = "T.C Kimlik Kartınızın ön yüzünü yukarıda belirtilen alan içerisine yerleştiriniz.";

/// A phone in a host's window, between two fields of the host's own.
class Access : public testing::Test
{
protected:
    Access()
    {
        Device device = Device::phone();
        device.conference = conference;
        device.hasNfc = true;
        stage = std::make_unique<Stage>(device);
        window.resize(390, 900);
        before = new QLineEdit(&window);
        stage->view->setParent(&window);
        stage->view->move(0, 25);
        stage->view->show();
        after = new QLineEdit(&window);
        after->move(0, 872);
        window.show();
        QApplication::setActiveWindow(&window);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    ~Access() override { delete stage->view.data(); }

    static QString nameOf(QWidget* widget)
    {
        auto* const interface = widget ? QAccessible::queryAccessibleInterface(widget) : nullptr;
        return interface ? interface->text(QAccessible::Name) : QString();
    }
    [[nodiscard]] QWidget* focus() const { return window.focusWidget(); }
    /// The names of what Tab comes to between the host's fields.
    QStringList tabbed(Qt::Key key = Qt::Key_Tab)
    {
        QStringList names;
        QWidget* const first = key == Qt::Key_Tab ? before : after;
        const QWidget* const last = key == Qt::Key_Tab ? after : before;
        first->setFocus();
        for (int press = 0; press < 12; ++press) {
            QTest::keyClick(focus(), key);
            if (focus() == last)
                return names;
            names << nameOf(focus());
        }
        return names << "…";
    }
    /// Until what was gathered has been said.
    static void hear() { QTest::qWait(Announcer::kGatherMilliseconds + 60); }

    std::shared_ptr<ScriptedConference> conference = std::make_shared<ScriptedConference>();
    std::unique_ptr<Stage> stage;
    QWidget window;
    QLineEdit* before = nullptr;
    QLineEdit* after = nullptr;
};

} // namespace kelvara::test
