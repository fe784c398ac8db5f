#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>

class QAbstractButton;

namespace kelvara::demo {

/// What a person sees of the view, found from outside by texts and accessible names only. Main thread.
class ScreenReader
{
public:
    explicit ScreenReader(QWidget& view);

    /// The shutter, when it is on the screen.
    [[nodiscard]] QAbstractButton* shutter() const;
    /// Whether the shutter is there to be pressed.
    [[nodiscard]] bool isReady() const;
    /// The button that leaves the view, when it is on the screen.
    [[nodiscard]] QAbstractButton* closeButton() const;
    /// Whether the picture that asks to turn the card over is on the screen.
    [[nodiscard]] bool asksToTurn() const;
    [[nodiscard]] bool shows(const QString& text) const;

private:
    [[nodiscard]] QAbstractButton* button(const QString& accessibleName) const;

    QPointer<QWidget> m_view;
};

} // namespace kelvara::demo
