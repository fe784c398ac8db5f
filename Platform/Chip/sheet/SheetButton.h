#pragma once

#include <QAbstractButton>

namespace kelvara::chip::sheet {

/// The sheet's wide button. Its ring shows for those who use the keyboard. Main thread.
class SheetButton final : public QAbstractButton
{
    Q_OBJECT

public:
    explicit SheetButton(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    bool m_showsFocus = false;
};

} // namespace kelvara::chip::sheet
