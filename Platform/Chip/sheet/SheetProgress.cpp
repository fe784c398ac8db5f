#include "Platform/Chip/sheet/SheetProgress.h"

#include "Platform/Chip/sheet/SheetStyle.h"
#include "Platform/Foundation/Announcement.h"

#include <QPainter>
#include <QPointer>
#include <QTimerEvent>

#include <algorithm>
#include <cmath>

namespace kelvara::chip::sheet {

namespace {

constexpr int kFrameMilliseconds = 16;
constexpr double kGlideMilliseconds = 70; ///< In which two thirds of the way that is left are made.
constexpr double kUnseen = 0.2; ///< Percent.

} // namespace

SheetProgress::SheetProgress(QWidget* parent) : QProgressBar(parent), m_color(kAccent)
{
    setRange(0, 100);
    setValue(0);
    setTextVisible(false);
    setAccessibleName(QString::fromUtf8("Okuma ilerlemesi"));
}

void SheetProgress::advance(int percent, bool glides)
{
    glide();
    setValue(std::clamp(percent, minimum(), maximum()));
    if (!glides) {
        m_timer.stop();
        m_shown = value();
        update();
    } else if (!m_timer.isActive()) {
        // Never begun anew on the way: where pieces come quicker than frames it would not move at all.
        m_clock.start();
        m_timer.start(kFrameMilliseconds, this);
    }
}

void SheetProgress::glide()
{
    if (!m_timer.isActive())
        return;
    const double left = (value() - m_shown) * std::exp(-static_cast<double>(m_clock.restart()) / kGlideMilliseconds);
    m_shown = value() - left;
    if (std::abs(left) >= kUnseen)
        return;
    m_shown = value();
    m_timer.stop();
}

void SheetProgress::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timer.timerId()) {
        QProgressBar::timerEvent(event);
        return;
    }
    glide();
    update();
}

void SheetProgress::setColor(const QColor& color)
{
    m_color = color;
    update();
}

void SheetProgress::announceValue()
{
    const QPointer<SheetProgress> life(this); // who hears of it may have the sheet deleted
    setAccessibleDescription(QString::fromUtf8("Yüzde %1").arg(value()));
    if (life)
        announce(*this, accessibleDescription());
}

void SheetProgress::paintEvent(QPaintEvent*)
{
    glide();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const double radius = height() / 2.0;
    QRectF bar = rect();
    painter.setBrush(kQuiet);
    painter.drawRoundedRect(bar, radius, radius);
    if (m_shown <= 0)
        return;
    const double length = std::max(bar.height(), bar.width() * m_shown / 100);
    if (layoutDirection() == Qt::RightToLeft)
        bar.setLeft(bar.right() - length);
    else
        bar.setWidth(length);
    painter.setBrush(m_color);
    painter.drawRoundedRect(bar, radius, radius);
}

} // namespace kelvara::chip::sheet
