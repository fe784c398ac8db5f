#include "Kelvara/ControlButton.h"

#include "Kelvara/TouchMargin.h"

#include <QFocusEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <numbers>

namespace kelvara {

namespace {

constexpr double kPressedOpacity = 0.65;
constexpr double kHoveredOpacity = 0.88;
constexpr double kDisabledOpacity = 0.5;
constexpr int kPressedDarkening = 122;
constexpr int kHoveredLightening = 110;
constexpr int kTitleMargin = 16;

/// True while the focus moves on by itself, because the widget that had it without a ring vanished or was disabled.
bool s_focusFellToNext = false;

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

QPainterPath ControlButton::outline(double inset) const
{
    const QRectF area = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    const double radius = std::max(0.0, m_cornerRadius - inset);
    QPainterPath path;
    path.addRoundedRect(area, radius, radius);
    return path;
}

bool ControlButton::hitButton(const QPoint& position) const
{
    if (m_touchMargin && !rect().contains(position))
        return m_touchMargin->contains(position);
    return rect().contains(position) && outline(0).contains(QPointF(position) + QPointF(0.5, 0.5));
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
    paintContent(painter);
    if (m_showsFocus && hasFocus())
        paintFocusRing(painter);
}

void ControlButton::paintContent(QPainter& painter) const
{
    const bool hovered = underMouse();
    QColor background = m_backgroundColor;
    double opacity = 1;
    if (!isEnabled()) {
        opacity = kDisabledOpacity;
    } else if (isDown()) {
        background = background.darker(kPressedDarkening);
        opacity = kPressedOpacity;
    } else if (hovered) {
        background = background.lighter(kHoveredLightening);
        opacity = kHoveredOpacity;
    }
    if (!isEnabled())
        painter.setOpacity(opacity);
    if (background.alpha() > 0)
        painter.fillPath(outline(0), background);

    painter.setOpacity(opacity);
    const QPainterPath clip = m_clipsToBounds && m_cornerRadius > 0 ? outline(0) : QPainterPath();
    const QRectF bounds = rect();
    if (m_backgroundImage)
        m_backgroundImage->paint(painter, bounds, clip);
    if (m_image) {
        const QSizeF natural = m_image->size();
        const QSizeF size = natural.scaled(bounds.size().boundedTo(natural), Qt::KeepAspectRatio);
        QRectF target(QPointF(), size);
        target.moveCenter(bounds.center());
        m_image->paint(painter, target, {});
    }
    if (!m_title.isEmpty()) {
        painter.setPen(m_titleColor);
        const QRect area = rect().adjusted(kTitleMargin, 0, -kTitleMargin, 0);
        painter.drawText(area, Qt::AlignCenter | Qt::TextSingleLine,
            fontMetrics().elidedText(m_title, Qt::ElideMiddle, area.width()));
    }
    painter.setOpacity(1);
}

void ControlButton::paintFocusRing(QPainter& painter) const
{
    // Light on dark: to be seen on whatever the camera shows.
    painter.setBrush(Qt::NoBrush);
    painter.strokePath(outline(1.5), QPen(QColor(0, 0, 0, 190), 3));
    painter.strokePath(outline(1.5), QPen(Qt::white, 1.5));
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
        m_showsFocus = !s_focusFellToNext;
    }
    s_focusFellToNext = false;
    QAbstractButton::focusInEvent(event);
}

void ControlButton::focusOutEvent(QFocusEvent* event)
{
    // Qt moves the focus on as if by Tab when its owner vanishes: no ring for those who never used the keyboard.
    s_focusFellToNext = !m_showsFocus && event->reason() == Qt::TabFocusReason && !(isVisible() && isEnabled());
    QAbstractButton::focusOutEvent(event);
}

} // namespace kelvara
