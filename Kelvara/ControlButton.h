#pragma once

#include "Kelvara/ControlImage.h"
#include "Platform/Foundation/Export.h"

#include <QAbstractButton>
#include <QColor>
#include <QPointer>

#include <optional>

namespace kelvara {

class TouchMargin;

/// What all buttons of the screens have in common: background colour and image, an image and a title above them,
/// rounded corners, and the looks of being pressed, hovered over, focused and disabled. Pressed by touch, mouse, Space,
/// Enter and assistive technology; `clicked()` is the touch-up-inside event. Geometry in points. Main thread.
class KELVARA_EXPORT ControlButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit ControlButton(QWidget* parent = nullptr);
    ~ControlButton() override;

    /// Also the accessible name, until one is set.
    [[nodiscard]] const QString& title() const { return m_title; }
    void setTitle(const QString& title);
    [[nodiscard]] QColor titleColor() const { return m_titleColor; }
    void setTitleColor(const QColor& color);

    /// Initially clear.
    [[nodiscard]] QColor backgroundColor() const { return m_backgroundColor; }
    void setBackgroundColor(const QColor& color);

    /// Fills the button. Absent and null images alike take it away.
    [[nodiscard]] const std::optional<ControlImage>& backgroundImage() const { return m_backgroundImage; }
    void setBackgroundImage(const std::optional<ControlImage>& image);

    /// Lies in the middle above the background, at its own size or smaller.
    [[nodiscard]] const std::optional<ControlImage>& image() const { return m_image; }
    void setImage(const std::optional<ControlImage>& image);

    /// Rounds the background colour, the focus ring and the area that can be pressed; images only when clipping.
    [[nodiscard]] double cornerRadius() const { return m_cornerRadius; }
    void setCornerRadius(double radius);
    [[nodiscard]] bool clipsToBounds() const { return m_clipsToBounds; }
    void setClipsToBounds(bool clips);

    /// Lets presses count that land close to a button smaller than this, on what lies beneath it. Its geometry stays.
    /// Needs a parent that gets those presses (that is, nothing that takes them for itself lies there). Initially
    /// empty.
    [[nodiscard]] QSize minimumTouchSize() const;
    void setMinimumTouchSize(const QSize& size);

    /// Whether it shows that it has the focus, or would: not to those who came by mouse or touch.
    [[nodiscard]] bool showsFocus() const { return m_showsFocus; }
    /// Whether it lost the focus by being disabled, and takes it back when it is enabled again.
    [[nodiscard]] bool awaitsFocus() const;
    /// Takes the focus, with or without a ring; a disabled button when it is enabled, unless the focus moves before.
    void takeFocus(bool showsFocus);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    /// By how much the whole button is painted turned about its middle, clockwise, in radians.
    [[nodiscard]] virtual double paintedRotation() const { return 0; }

    /// How strongly a disabled button shows its images.
    [[nodiscard]] virtual double disabledImageOpacity() const;

    bool hitButton(const QPoint& position) const override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    template<typename T> void assign(T& member, const T& value);
    [[nodiscard]] QPainterPath outline(double inset, double cornerRadius) const;
    void paintBackground(QPainter& painter) const;
    void paintImages(QPainter& painter) const;
    void paintTitle(QPainter& painter) const;
    void paintFocusRing(QPainter& painter) const;

    QString m_title;
    QColor m_titleColor = Qt::white;
    QColor m_backgroundColor = Qt::transparent;
    std::optional<ControlImage> m_backgroundImage;
    std::optional<ControlImage> m_image;
    double m_cornerRadius = 0;
    bool m_clipsToBounds = false;
    bool m_showsFocus = false;
    bool m_losesFocusDisabled = false;
    bool m_awaitsFocus = false;
    QPointer<QWidget> m_focusHeir; ///< Who got the focus when this button lost it by being disabled.
    TouchMargin* m_touchMargin = nullptr;
};

} // namespace kelvara
