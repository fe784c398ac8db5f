#include "Kelvara/TouchMargin.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QMouseEvent>

#include <algorithm>

namespace kelvara {

TouchMargin::TouchMargin(QAbstractButton* button) : QObject(button), m_button(button)
{
    button->installEventFilter(this);
    watchParent();
}

void TouchMargin::watchParent()
{
    if (m_parent)
        m_parent->removeEventFilter(this);
    m_forwarding = false;
    m_parent = m_button->parentWidget();
    if (m_parent)
        m_parent->installEventFilter(this);
}

bool TouchMargin::contains(const QPoint& position) const
{
    const int x = std::max(0, m_minimumSize.width() - m_button->width());
    const int y = std::max(0, m_minimumSize.height() - m_button->height());
    return m_button->rect().adjusted(-x / 2, -y / 2, x - x / 2, y - y / 2).contains(position);
}

bool TouchMargin::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_button) {
        if (event->type() == QEvent::ParentChange)
            watchParent();
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        return forward(static_cast<QMouseEvent&>(*event));
    default:
        return false;
    }
}

bool TouchMargin::forward(QMouseEvent& event)
{
    // What the button has no use for Qt passes on to its parent, and so back to here.
    if (m_sending)
        return true;
    const QPointF position = m_button->mapFromParent(event.position());
    const bool isPress = event.type() == QEvent::MouseButtonPress || event.type() == QEvent::MouseButtonDblClick;
    if (isPress) {
        // A press on the button itself that it has let pass on is not wanted back.
        if (!m_button->isVisible() || !m_button->isEnabled() || !contains(position.toPoint())
            || m_button->rect().contains(position.toPoint()))
            return false;
        m_forwarding = true;
    } else if (!m_forwarding) {
        return false;
    }
    if (event.type() == QEvent::MouseButtonRelease)
        m_forwarding = false;
    QMouseEvent moved(event.type(), position, event.scenePosition(), event.globalPosition(), event.button(),
        event.buttons(), event.modifiers(), event.pointingDevice());
    const QPointer<TouchMargin> life(this); // The click may delete the button.
    m_sending = true;
    QCoreApplication::sendEvent(m_button, &moved);
    if (life)
        m_sending = false;
    return true;
}

} // namespace kelvara
