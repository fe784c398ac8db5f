#include "Platform/Chip/sheet/SheetAccessibility.h"

#include "Platform/Chip/sheet/ReaderSheet.h"
#include "Platform/Chip/sheet/SheetIllustration.h"
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

/// What says nothing that the words beside it do not say is passed over.
class Decoration final : public QAccessibleWidget
{
public:
    explicit Decoration(QWidget* widget) : QAccessibleWidget(widget, QAccessible::Graphic) { }

    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.invisible = true;
        state.focusable = false;
        return state;
    }
};

QAccessibleInterface* interfaceOf(const QString&, QObject* object)
{
    if (auto* const sheet = qobject_cast<ReaderSheet*>(object))
        return new SheetInterface(sheet);
    if (auto* const text = qobject_cast<SheetText*>(object))
        return new QAccessibleWidget(text, QAccessible::StaticText);
    if (auto* const picture = qobject_cast<SheetIllustration*>(object))
        return new Decoration(picture);
    return nullptr;
}

} // namespace

void installAccessibility()
{
    QAccessible::installFactory(interfaceOf); // a second time does nothing
}

} // namespace kelvara::chip::sheet
