#include "Platform/Chip/sheet/SheetFocus.h"

#include "Platform/Chip/sheet/ReaderSheet.h"

#include <QApplication>

namespace kelvara::chip::sheet {

namespace {

/// The sheet that a widget lies on, or is; null on none.
ReaderSheet* sheetOf(QWidget* widget)
{
    for (; widget; widget = widget->parentWidget()) {
        if (auto* const sheet = qobject_cast<ReaderSheet*>(widget))
            return sheet;
    }
    return nullptr;
}

} // namespace

SheetFocus::SheetFocus(ReaderSheet& sheet, QWidget& button, QWidget* window)
    : m_sheet(sheet), m_button(button), m_window(window)
{ }

SheetFocus::~SheetFocus()
{
    QObject::disconnect(m_watch); // the focus leaves the button after this, when nothing is left to guard it
}

void SheetFocus::take()
{
    if (!m_window)
        return;
    m_before = m_window->focusWidget();
    if (const ReaderSheet* earlier = sheetOf(m_before))
        m_before = earlier->m_focus->m_before; // it is just leaving: what it would give back is what counts
    m_isGuarding = true;
    m_watch
        = QObject::connect(qApp, &QApplication::focusChanged, &m_sheet, [this](QWidget*, QWidget* now) { guard(now); });
    m_button.setFocus(Qt::OtherFocusReason);
}

void SheetFocus::guard(QWidget* now)
{
    // A control of the host that takes the focus for itself, such as a shutter that becomes enabled, gets it later.
    if (!m_isGuarding || !m_sheet.isVisible() || !now || now->window() != m_window || sheetOf(now))
        return;
    m_before = now;
    QMetaObject::invokeMethod(
        &m_sheet,
        [this] {
            if (m_isGuarding && m_window && !sheetOf(m_window->focusWidget()))
                m_button.setFocus(Qt::OtherFocusReason);
        },
        Qt::QueuedConnection);
}

void SheetFocus::giveBack()
{
    if (!m_window || !m_sheet.isAncestorOf(m_window->focusWidget()))
        return; // another sheet has it, which knows where it goes
    if (m_before && m_before->window() == m_window && m_before->isEnabled())
        m_before->setFocus(Qt::OtherFocusReason);
    else
        m_window->focusWidget()->clearFocus();
}

} // namespace kelvara::chip::sheet
