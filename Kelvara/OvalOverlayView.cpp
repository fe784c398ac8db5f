#include "Kelvara/OvalOverlayView.h"

#include "Platform/Foundation/FatalError.h"

namespace kelvara {

namespace {

constexpr QSizeF kOval { 300.0, 400.0 };

} // namespace

OvalOverlayView::OvalOverlayView(QWidget* parent) : DimmingOverlay(parent) { }

OvalOverlayView::OvalOverlayView(const QRect& frame, QWidget* parent) : OvalOverlayView(parent)
{
    setGeometry(frame);
}

void OvalOverlayView::draw(const QRectF&)
{
    overlayFrame = calculateCutoutRect();
    removeSublayers();
    drawOvalCutout();
}

QRectF OvalOverlayView::calculateCutoutRect() const
{
    return { QPointF((width() - kOval.width()) / 2, (height() - kOval.height()) / 2), kOval };
}

void OvalOverlayView::drawOvalCutout()
{
    if (!overlayFrame)
        fatalError("The selfie's cut-out was drawn before it was computed.");
    QPainterPath outline;
    outline.addEllipse(*overlayFrame);
    install(outline, Qt::transparent);
}

} // namespace kelvara
