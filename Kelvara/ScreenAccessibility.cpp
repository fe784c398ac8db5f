#include "Kelvara/ScreenAccessibility.h"

#include "Kelvara/Announcer.h"
#include "Kelvara/DimmingOverlay.h"
#include "Kelvara/FlipImageView.h"
#include "Kelvara/QorvelKycView.h"
#include "Platform/Conference/JitsiMeetView.h"

#include <QAccessibleWidget>

namespace kelvara {

namespace {

/// On the screen at all times, but to be seen only for a while.
class FlipInterface final : public QAccessibleWidget
{
public:
    explicit FlipInterface(FlipImageView* view) : QAccessibleWidget(view, QAccessible::Graphic) { }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        if (static_cast<FlipImageView*>(widget())->alpha() <= 0)
            state.invisible = true;
        return state;
    }
};

QAccessibleInterface* interfaceOf(const QString&, QObject* object)
{
    if (auto* const flip = qobject_cast<FlipImageView*>(object))
        return new FlipInterface(flip);
    if (auto* const overlay = qobject_cast<DimmingOverlay*>(object))
        return new QAccessibleWidget(overlay, QAccessible::Graphic);
    if (auto* const announcer = qobject_cast<Announcer*>(object))
        return new QAccessibleWidget(announcer, QAccessible::Notification);
    if (auto* const view = qobject_cast<QorvelKycView*>(object))
        return new QAccessibleWidget(view, QAccessible::Grouping);
    if (auto* const call = qobject_cast<JitsiMeetView*>(object))
        return new QAccessibleWidget(call, QAccessible::Grouping);
    return nullptr;
}

} // namespace

void installScreenAccessibility()
{
    QAccessible::installFactory(interfaceOf); // a second time does nothing
}

} // namespace kelvara
