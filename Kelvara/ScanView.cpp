#include "Kelvara/ScanView.h"

#include <QPainter>

namespace kelvara {

namespace {

constexpr double kFrameRadius = 5.0;
constexpr double kBorderWidth = 3.0;

} // namespace

ScanView::ScanView(QWidget* parent) : QWidget(parent) { }

ScanView::ScanView(const QRect& frame, QWidget* parent) : ScanView(parent)
{
    setGeometry(frame);
}

void ScanView::shape()
{
    m_shaped = true;
    update();
}

void ScanView::paintEvent(QPaintEvent*)
{
    if (!m_shaped)
        return;
    constexpr double inset = kBorderWidth / 2;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, kBorderWidth));
    painter.drawRoundedRect(
        QRectF(rect()).adjusted(inset, inset, -inset, -inset), kFrameRadius - inset, kFrameRadius - inset);
}

} // namespace kelvara
