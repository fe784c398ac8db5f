#include "Tools/Specimen/ScanAreas.h"

#include <algorithm>

namespace kelvara::specimen {

namespace {

// As the view's overlays draw them.
constexpr double kCutoutAspect = 1.42;
constexpr double kShareOfUprightWidth = 0.9;
constexpr double kShareOfLyingHeight = 0.75;
constexpr QSizeF kOval(300, 400);

constexpr double kFrontFill = 0.93;
constexpr double kBackFill = 0.955; ///< Nearer: the machine-readable lines must span four fifths of the cut-out.
constexpr double kFaceFill = 0.5;

QRectF centred(const QSizeF& size, const QPointF& centre)
{
    QRectF rect(QPointF(), size);
    rect.moveCenter(centre);
    return rect;
}

} // namespace

ScanAreas ScanAreas::of(const QSizeF& view, const QSize& picture)
{
    if (view.isEmpty() || picture.isEmpty())
        return { picture, {}, {} };
    const double cardWidth = view.height() > view.width() ? view.width() * kShareOfUprightWidth
                                                          : view.height() * kShareOfLyingHeight * kCutoutAspect;
    const double pixelsPerPoint = std::min(picture.width() / view.width(), picture.height() / view.height());
    const QPointF centre(picture.width() / 2.0, picture.height() / 2.0);
    return { picture, centred(QSizeF(cardWidth, cardWidth / kCutoutAspect) * pixelsPerPoint, centre),
        centred(kOval * pixelsPerPoint, centre) };
}

SceneOptions ScanAreas::held(Subject subject, std::uint32_t seed) const
{
    SceneOptions options;
    options.seed = seed;
    options.size = picture;
    options.subject = subject;
    options.frame = subject == Subject::Selfie ? oval : card;
    options.fill = subject == Subject::Selfie ? kFaceFill : subject == Subject::Back ? kBackFill : kFrontFill;
    return options;
}

} // namespace kelvara::specimen
