#include "Demo/ScanAreas.h"

#include <algorithm>

namespace kelvara::demo {

namespace {

constexpr double kCutoutAspect = 1.42;
constexpr double kPortraitWidth = 0.9;
constexpr double kLandscapeHeight = 0.75;
constexpr QSizeF kOval(300, 400);

constexpr double kCapitalMillimetres = 2.54;
constexpr double kWellHeldCard = 0.91;

QRectF centred(const QSizeF& size, const QPointF& centre)
{
    QRectF rect(QPointF(), size);
    rect.moveCenter(centre);
    return rect;
}

} // namespace

ScanAreas ScanAreas::of(const QSizeF& view, const QSize& frame)
{
    if (view.isEmpty() || frame.isEmpty())
        return { frame, {}, {} };
    const double cardWidth = view.height() > view.width() ? view.width() * kPortraitWidth
                                                          : view.height() * kLandscapeHeight * kCutoutAspect;
    const double pixelsPerPoint = std::min(frame.width() / view.width(), frame.height() / view.height());
    const QPointF centre(frame.width() / 2.0, frame.height() / 2.0);
    return { frame, centred(QSizeF(cardWidth, cardWidth / kCutoutAspect) * pixelsPerPoint, centre),
        centred(kOval * pixelsPerPoint, centre) };
}

double ScanAreas::mrzCapitalHeight() const
{
    return card.width() * kWellHeldCard * kCapitalMillimetres / kCardMillimetres;
}

} // namespace kelvara::demo
