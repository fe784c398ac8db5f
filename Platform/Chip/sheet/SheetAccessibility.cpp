#include "Platform/Chip/sheet/SheetAccessibility.h"

#include "Platform/Chip/sheet/ReaderSheet.h"
#include "Platform/Chip/sheet/SheetText.h"

#include <QAccessibleWidget>

namespace kelvara::chip::sheet {

namespace {

class SheetInterface final : public QAccessibleWidget
{
public:
    explicit SheetInterface(ReaderSheet* widget) : QAccessibleWidget(widget, QAccessible::Dialog) { }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.modal = true;
        return state;
    }
};

QAccessibleInterface* interfaceOf(const QString&, QObject* object)
{
    if (auto* const sheet = qobject_cast<ReaderSheet*>(object))
        return new SheetInterface(sheet);
    if (auto* const text = qobject_cast<SheetText*>(object))
        return new QAccessibleWidget(text, QAccessible::StaticText);
    return nullptr;
}

} // namespace

void installAccessibility()
{
    QAccessible::installFactory(interfaceOf); // a second time does nothing
}

void announce(QWidget* widget)
{
    QAccessibleEvent event(widget, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

} // namespace kelvara::chip::sheet
