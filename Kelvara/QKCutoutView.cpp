#include "Kelvara/QKCutoutView.h"

#include "Platform/Foundation/FatalError.h"

namespace kelvara {

namespace {

constexpr double kCardRatio = 1.42;
constexpr double kHeightShare = 0.75;
constexpr double kWidthShare = 0.9;
constexpr double kCornerRadius = 3.0;

} // namespace

QKCutoutView::QKCutoutView(QWidget* parent) : DimmingOverlay(parent) { }

QKCutoutView::QKCutoutView(const QRect& frame, QWidget* parent) : QKCutoutView(parent)
{
    setGeometry(frame);
}

void QKCutoutView::draw(const QRectF&)
{
    cutoutRect = calculateCutoutRect();
    removeSublayers();
    drawRectangleCutout();
}

QRectF QKCutoutView::calculateCutoutRect() const
{
    const double boundsWidth = width();
    const double boundsHeight = height();
    double cutoutWidth = 0;
    double cutoutHeight = 0;
    if (boundsHeight <= boundsWidth) {
        cutoutHeight = boundsHeight * kHeightShare;
        cutoutWidth = cutoutHeight * kCardRatio;
    } else {
        cutoutWidth = boundsWidth * kWidthShare;
        cutoutHeight = cutoutWidth / kCardRatio;
    }
    return { (boundsWidth - cutoutWidth) / 2, (boundsHeight - cutoutHeight) / 2, cutoutWidth, cutoutHeight };
}

void QKCutoutView::drawRectangleCutout()
{
    if (!cutoutRect)
        fatalError("The card's cut-out was drawn before it was computed.");
    QPainterPath outline;
    outline.addRoundedRect(*cutoutRect, kCornerRadius, kCornerRadius);
    install(outline, Qt::black);
}

} // namespace kelvara
