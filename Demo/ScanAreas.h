#pragma once

#include <QRectF>
#include <QSize>
#include <QSizeF>

namespace kelvara::demo {

/// Where the view's two cut-outs lie in a camera frame that fills the view (aspect kept, the surplus cut away equally
/// on both sides). Pixels of the upright frame, origin top-left. A value.
struct ScanAreas
{
    QSize frame;
    QRectF card;
    QRectF oval;

    /// `view` in points.
    [[nodiscard]] static ScanAreas of(const QSizeF& view, const QSize& frame);

    /// Height in pixels of a capital of the card's machine-readable zone, for a card that spans 91 % of the cut-out.
    [[nodiscard]] double mrzCapitalHeight() const;
};

/// The width of an ID-1 card (ISO/IEC 7810).
inline constexpr double kCardMillimetres = 85.6;

/// Below this many pixels the machine-readable zone's capitals are not read reliably.
inline constexpr double kReadableCapital = 16;

} // namespace kelvara::demo
