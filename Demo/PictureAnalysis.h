#pragma once

#include <QImage>
#include <QPolygonF>
#include <QRectF>

#include <memory>
#include <optional>

namespace kelvara {
class VisionDetectors;
}

namespace kelvara::demo {

/// Looks at one picture with the requests that the view uses, outside of the view. Coordinates are the picture's
/// pixels, origin top-left.
class PictureAnalysis
{
public:
    explicit PictureAnalysis(std::shared_ptr<const VisionDetectors> detectors);

    /// A card's corners: top left, top right, bottom right, bottom left. `minimumSize` is its short side over the
    /// picture's.
    [[nodiscard]] std::optional<QPolygonF> card(const QImage& picture, float minimumSize) const;
    [[nodiscard]] std::optional<QRectF> face(const QImage& picture) const;

    /// How wide the longest line of machine-readable type is, over the picture's width; 0 if there is none.
    [[nodiscard]] double textWidth(const QImage& picture) const;

private:
    std::shared_ptr<const VisionDetectors> m_detectors;
};

} // namespace kelvara::demo
