#pragma once

#include <QMetaObject>
#include <QPointer>
#include <QWidget>

namespace kelvara::chip {
class ReaderSheet;
}

namespace kelvara::chip::sheet {

/// Keeps a window's focus on a sheet while the sheet is there, and gives it back to who had it before or asked for it
/// meanwhile. Main thread.
class SheetFocus
{
public:
    /// `sheet` lies in `window`, and its `button` is to have the focus; all are borrowed, the window may go at any
    /// time.
    SheetFocus(ReaderSheet& sheet, QWidget& button, QWidget* window);
    SheetFocus(const SheetFocus&) = delete;
    SheetFocus& operator=(const SheetFocus&) = delete;
    /// Guards no more, and gives nothing back.
    ~SheetFocus();

    /// The focus is the button's from now on.
    void take();
    /// As the sheet begins to leave: from now on others may have the focus.
    void release() { m_isGuarding = false; }
    /// When it has left. Not to a window that is on its way out.
    void giveBack();

private:
    void guard(QWidget* now);

    ReaderSheet& m_sheet;
    QWidget& m_button;
    const QPointer<QWidget> m_window;
    QPointer<QWidget> m_before;
    bool m_isGuarding = false;
    QMetaObject::Connection m_watch;
};

} // namespace kelvara::chip::sheet
