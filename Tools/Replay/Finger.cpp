#include "Tools/Replay/Finger.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMouseEvent>
#include <QPointer>

namespace kelvara::replay {

namespace {

/// Found as a screen reader finds it: by what it is called.
const char* nameOf(Control control)
{
    switch (control) {
    case Control::Shutter:
        return "Fotoğraf çek";
    case Control::Close:
        return "Kapat";
    case Control::Read:
        return "Tara";
    case Control::Next:
        return "Devam";
    case Control::Flash:
        return "Flaş";
    case Control::Sheet:
    case Control::Call:
        break;
    }
    return "";
}

bool isMeant(const QAbstractButton& button, Control control)
{
    if (control != Control::Sheet && control != Control::Call)
        return button.accessibleName() == QString::fromUtf8(nameOf(control));
    const char* owner = control == Control::Sheet ? "kelvara::chip::ReaderSheet" : "kelvara::ConferenceCover";
    for (const QWidget* widget = &button; widget; widget = widget->parentWidget()) {
        if (widget->inherits(owner))
            return true;
    }
    return false;
}

bool isReached(const QAbstractButton& button)
{
    const QWidget* window = button.window();
    const QWidget* hit = window->childAt(button.mapTo(window, button.rect().center()));
    return hit && (hit == &button || button.isAncestorOf(hit));
}

QAbstractButton* find(const QWidget& view, Control control)
{
    for (QAbstractButton* button : view.window()->findChildren<QAbstractButton*>()) {
        if (button->isVisible() && button->isEnabled() && isMeant(*button, control) && isReached(*button))
            return button;
    }
    return nullptr;
}

} // namespace

bool canTap(QWidget& view, Control control)
{
    return find(view, control) != nullptr;
}

void tap(QWidget& view, Control control)
{
    const QPointer<QAbstractButton> button = find(view, control);
    if (!button)
        return;
    const QPointF place = QRectF(button->rect()).center();
    const QPointF inWindow = button->mapTo(button->window(), place);
    const QPointF global = button->mapToGlobal(place);
    QMouseEvent press(
        QEvent::MouseButtonPress, place, inWindow, global, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(button, &press);
    if (!button)
        return;
    QMouseEvent release(
        QEvent::MouseButtonRelease, place, inWindow, global, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(button, &release);
}

} // namespace kelvara::replay
