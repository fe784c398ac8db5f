#include "Platform/Chip/sheet/SheetProgress.h"

#include "Platform/Chip/sheet/SheetStyle.h"

#include <QPainter>

#include <algorithm>

namespace kelvara::chip::sheet {

namespace {

constexpr int kGlideMilliseconds = 220;

} // namespace

SheetProgress::SheetProgress(QWidget* parent) : QProgressBar(parent), m_color(kAccent)
{
    setRange(0, 100);
    setValue(0);
    setTextVisible(false);
    setAccessibleName(QString::fromUtf8("Okuma ilerlemesi"));
    m_glide.setDuration(kGlideMilliseconds);
    m_glide.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_glide, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_shown = value.toDouble();
        update();
    });
}

void SheetProgress::advance(int percent, bool glides)
{
    setValue(std::clamp(percent, minimum(), maximum()));
    m_glide.stop();
    if (!glides) {
        m_shown = value();
        update();
        return;
    }
    m_glide.setStartValue(m_shown);
    m_glide.setEndValue(double(value()));
    m_glide.start();
}

void SheetProgress::setColor(const QColor& color)
{
    m_color = color;
    update();
}

void SheetProgress::paintEvent(QPaintEvent*)
{
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
