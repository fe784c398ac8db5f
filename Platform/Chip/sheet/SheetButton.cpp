#include "Platform/Chip/sheet/SheetButton.h"

#include "Platform/Chip/sheet/SheetStyle.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace kelvara::chip::sheet {

namespace {

constexpr int kLowest = 52;
constexpr int kMargin = 16;
constexpr double kRadius = 14;
constexpr int kPressedDarkening = 110;
constexpr int kHoveredDarkening = 103;

} // namespace

SheetButton::SheetButton(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
}

QSize SheetButton::sizeHint() const
{
    const QSize letters = fontMetrics().size(Qt::TextSingleLine, text());
    return { letters.width() + 2 * kMargin, std::max(kLowest, letters.height() + 2 * kMargin) };
}

void SheetButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor color = kQuiet;
    if (isDown())
        color = color.darker(kPressedDarkening);
    else if (underMouse())
        color = color.darker(kHoveredDarkening);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(rect(), kRadius, kRadius);
    painter.setPen(kDeepAccent);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
    if (m_showsFocus && hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(kDeepAccent, 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), kRadius - 1, kRadius - 1);
    }
}

void SheetButton::keyPressEvent(QKeyEvent* event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && !event->isAutoRepeat())
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void SheetButton::focusInEvent(QFocusEvent* event)
{
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        m_showsFocus = true;
    else if (event->reason() == Qt::MouseFocusReason)
        m_showsFocus = false;
    QAbstractButton::focusInEvent(event);
}

} // namespace kelvara::chip::sheet
