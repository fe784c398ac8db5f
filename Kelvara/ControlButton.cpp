#include "Kelvara/ControlButton.h"

#include "Kelvara/PaintScale.h"
#include "Kelvara/TextSeam.h"
#include "Kelvara/TouchMargin.h"

#include <QApplication>
#include <QFocusEvent>
#include <QFontMetrics>
#include <QImage>
#include <QKeyEvent>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace kelvara {

namespace {

constexpr double kPressedScale = 0.93;
constexpr double kPressedOpacity = 0.85;
constexpr double kHoveredOpacity = 0.9;
constexpr double kDisabledOpacity = 0.5;
constexpr int kPressedDarkening = 122;
constexpr int kHoveredLightening = 110;
constexpr int kTitleMargin = 16;
/// Just enough of a seam to lift white letters on the accent colour to a contrast of 4.5 : 1.
constexpr double kTitleSeamRadius = 1.5;
constexpr int kTitleSeamAlpha = 84;
constexpr QColor kFocusColor { 255, 210, 74 };

/// To whom the focus has just moved by itself, because the button that had it without a ring vanished or was disabled.
/// Compared only, never used.
const QWidget* s_focusFellTo = nullptr;

/// An absent image in every case that shows nothing.
std::optional<ControlImage> visible(const std::optional<ControlImage>& image)
{
    return image && !image->isNull() ? image : std::nullopt;
}

} // namespace

ControlButton::ControlButton(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

ControlButton::~ControlButton() = default;

template<typename T> void ControlButton::assign(T& member, const T& value)
{
    if (member == value)
        return;
    member = value;
    update();
}

void ControlButton::setTitle(const QString& title)
{
    assign(m_title, title);
    // The base class takes a lone ampersand for a keyboard shortcut.
    setText(QString(title).replace(QLatin1Char('&'), QLatin1String("&&")));
    updateGeometry();
}

void ControlButton::setTitleColor(const QColor& color)
{
    assign(m_titleColor, color);
}
void ControlButton::setBackgroundColor(const QColor& color)
{
    assign(m_backgroundColor, color);
}
void ControlButton::setCornerRadius(double radius)
{
    assign(m_cornerRadius, radius);
}
void ControlButton::setClipsToBounds(bool clips)
{
    assign(m_clipsToBounds, clips);
}

void ControlButton::setBackgroundImage(const std::optional<ControlImage>& image)
{
    assign(m_backgroundImage, visible(image));
}

void ControlButton::setImage(const std::optional<ControlImage>& image)
{
    assign(m_image, visible(image));
}

QSize ControlButton::minimumTouchSize() const
{
    return m_touchMargin ? m_touchMargin->minimumSize() : QSize();
}

void ControlButton::setMinimumTouchSize(const QSize& size)
{
    if (!m_touchMargin)
        m_touchMargin = new TouchMargin(this);
    m_touchMargin->setMinimumSize(size);
}

QSize ControlButton::sizeHint() const
{
    QSize size(0, 0);
    for (const auto& image : { m_backgroundImage, m_image }) {
        if (image)
            size = size.expandedTo(image->size().toSize());
    }
    if (!m_title.isEmpty()) {
        const QSize text = fontMetrics().size(Qt::TextSingleLine, m_title);
        size = size.expandedTo(QSize(text.width() + 2 * kTitleMargin, text.height() + kTitleMargin));
    }
    return size;
}

QPainterPath ControlButton::outline(double inset, double cornerRadius) const
{
    const double radius = std::max(0.0, cornerRadius - inset);
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius, radius);
    return path;
}

double ControlButton::disabledImageOpacity() const
{
    return kDisabledOpacity;
}

bool ControlButton::hitButton(const QPoint& position) const
{
    if (m_touchMargin && !rect().contains(position))
        return m_touchMargin->contains(position);
    return rect().contains(position) && outline(0, m_cornerRadius).contains(QPointF(position) + QPointF(0.5, 0.5));
}

void ControlButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (const double angle = paintedRotation(); angle != 0) {
        const QPointF middle = QRectF(rect()).center();
        painter.translate(middle);
        painter.rotate(angle * 180 / std::numbers::pi);
        painter.translate(-middle);
    }
    paintBackground(painter);
    paintImages(painter);
    painter.setOpacity(isEnabled() ? 1 : kDisabledOpacity);
    if (!m_title.isEmpty())
        paintTitle(painter);
    painter.setOpacity(1);
    if (m_showsFocus && hasFocus())
        paintFocusRing(painter);
}

void ControlButton::paintBackground(QPainter& painter) const
{
    QColor color = m_backgroundColor;
    if (isDown())
        color = color.darker(kPressedDarkening);
    else if (underMouse() && isEnabled())
        color = color.lighter(kHoveredLightening);
    painter.setOpacity(isEnabled() ? 1 : kDisabledOpacity);
    if (color.alpha() > 0)
        painter.fillPath(outline(0, m_cornerRadius), color);
}

void ControlButton::paintImages(QPainter& painter) const
{
    painter.save();
    const QRectF bounds = rect();
    double opacity = 1;
    if (!isEnabled()) {
        opacity = disabledImageOpacity();
    } else if (isDown()) {
        opacity = kPressedOpacity;
        painter.translate(bounds.center());
        painter.scale(kPressedScale, kPressedScale);
        painter.translate(-bounds.center());
    } else if (underMouse()) {
        opacity = kHoveredOpacity;
    }
    painter.setOpacity(opacity);
    if (m_backgroundImage) {
        const bool clips = m_clipsToBounds && m_cornerRadius > 0;
        m_backgroundImage->paint(painter, bounds, clips ? outline(0, m_cornerRadius) : QPainterPath());
    }
    if (m_image) {
        const QSizeF natural = m_image->size();
        QRectF target(QPointF(), natural.scaled(bounds.size().boundedTo(natural), Qt::KeepAspectRatio));
        target.moveCenter(bounds.center());
        m_image->paint(painter, target, {});
    }
    painter.restore();
}

void ControlButton::paintTitle(QPainter& painter) const
{
    const double ratio = pixelsPerPoint(painter);
    const QRect area = rect().adjusted(kTitleMargin, 0, -kTitleMargin, 0);
    const QString title = fontMetrics().elidedText(m_title, Qt::ElideRight, area.width());
    // The seam is costly for each pixel, and a button may be far larger than its title.
    const int room = static_cast<int>(std::ceil(2 * kTitleSeamRadius)) + 1; // as far as it reaches, and italics lean
    const QRect box = fontMetrics()
                          .boundingRect(area, Qt::AlignCenter | Qt::TextSingleLine, title)
                          .adjusted(-room, -room, room, room)
                          .intersected(rect());
    QImage letters((QSizeF(box.size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (letters.isNull())
        return;
    letters.setDevicePixelRatio(ratio);
    letters.fill(Qt::transparent);
    {
        QPainter letterPainter(&letters);
        letterPainter.translate(-box.topLeft());
        letterPainter.setFont(font());
        letterPainter.setPen(m_titleColor);
        letterPainter.drawText(area, Qt::AlignCenter | Qt::TextSingleLine, title);
    }
    QColor seam = seamColor(m_titleColor);
    seam.setAlpha(kTitleSeamAlpha);
    painter.drawImage(box.topLeft(), withSeam(letters, kTitleSeamRadius * ratio, seam));
}

void ControlButton::paintFocusRing(QPainter& painter) const
{
    // A light line on a dark one: to be seen on whatever the camera shows. What is just a picture is rather round.
    const double half = std::min(width(), height()) / 2.0;
    const QPainterPath ring = outline(2, m_cornerRadius > 0 || !m_title.isEmpty() ? m_cornerRadius : half);
    painter.strokePath(ring, QPen(QColor(0, 0, 0, 200), 4));
    painter.strokePath(ring, QPen(kFocusColor, 2));
}

void ControlButton::keyPressEvent(QKeyEvent* event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && !event->isAutoRepeat())
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void ControlButton::focusInEvent(QFocusEvent* event)
{
    switch (event->reason()) {
    case Qt::MouseFocusReason:
        m_showsFocus = false;
        break;
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
        break; // As it was.
    default:
        m_showsFocus = s_focusFellTo != this;
    }
    s_focusFellTo = nullptr;
    QAbstractButton::focusInEvent(event);
}

void ControlButton::focusOutEvent(QFocusEvent* event)
{
    // Qt moves the focus on as if by Tab when its owner vanishes: no ring for those who never used the keyboard.
    const bool falls = !m_showsFocus && event->reason() == Qt::TabFocusReason && !(isVisible() && isEnabled());
    s_focusFellTo = falls ? QApplication::focusWidget() : nullptr; // which is the next one by now
    m_losesFocusDisabled = isVisible() && !isEnabled();
    QAbstractButton::focusOutEvent(event);
}

void ControlButton::changeEvent(QEvent* event)
{
    const QPointer<ControlButton> life(this); // who hears of the state may delete the button
    QAbstractButton::changeEvent(event);
    if (!life || event->type() != QEvent::EnabledChange)
        return;
    // The shutter comes and goes with what the camera sees. Whoever was about to press it by keyboard would otherwise
    // press its neighbour.
    if (!isEnabled()) {
        m_awaitsFocus = std::exchange(m_losesFocusDisabled, false);
        m_focusHeir = QApplication::focusWidget();
    } else {
        const bool returns = awaitsFocus();
        m_awaitsFocus = false;
        if (returns && isVisible())
            takeFocus(m_showsFocus);
    }
}

bool ControlButton::awaitsFocus() const
{
    return m_awaitsFocus && QApplication::focusWidget() == m_focusHeir;
}

void ControlButton::takeFocus(bool showsFocus)
{
    if (isEnabled()) {
        setFocus(showsFocus ? Qt::TabFocusReason : Qt::MouseFocusReason);
        return;
    }
    m_showsFocus = showsFocus;
    m_awaitsFocus = true;
    m_focusHeir = QApplication::focusWidget();
}

bool ControlButton::focusNextPrevChild(bool next)
{
    if (isVisible() && isEnabled())
        return QAbstractButton::focusNextPrevChild(next);
    // It is Qt that moves the focus on, not the person, who is still here and not at some field of the host's.
    for (QWidget* other = nextInFocusChain(); other != this; other = other->nextInFocusChain()) {
        if (other->parentWidget() == parentWidget() && other->isVisible() && other->isEnabled()
            && (other->focusPolicy() & Qt::TabFocus)) {
            other->setFocus(Qt::TabFocusReason);
            return true;
        }
    }
    return false;
}

void ControlButton::hideEvent(QHideEvent* event)
{
    setDown(false); // The touch under way is lost; it must not show when the button comes back.
    QAbstractButton::hideEvent(event);
}

} // namespace kelvara
