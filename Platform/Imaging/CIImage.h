#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Imaging/UIImage.h"

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace kelvara {

namespace imaging {
class Node;
}

/// A filter image: an immutable recipe (a bitmap and what is to be done to it), evaluated only when a `CIContext`
/// renders it. Coordinates have their origin at the bottom left, in pixels. A value; any thread.
class KELVARA_EXPORT CIImage
{
public:
    /// A recipe of just this bitmap; its extent is (0, 0, width, height). Pixels are shared, not copied.
    explicit CIImage(const QImage& bitmap);
    /// From an image's upright bitmap; absent without bitmap content.
    [[nodiscard]] static std::optional<CIImage> make(const UIImage& image);

    /// Where the image has pixels (origin bottom-left).
    [[nodiscard]] QRectF extent() const;

    /// The same limited to the rectangle (origin bottom-left); the extent is the intersection.
    [[nodiscard]] CIImage cropped(const QRectF& rect) const;

    /// Turned and mirrored so that what the orientation says is up comes up; `Up` changes nothing.
    [[nodiscard]] CIImage oriented(CGImagePropertyOrientation orientation) const;

    /// The output of the registered filter of that name with these parameters and this image as "inputImage"; absent
    /// when there is no such filter or it has no output.
    [[nodiscard]] std::optional<CIImage> applyingFilter(const QString& name, const QVariantMap& parameters = {}) const;

    // For filters and contexts.
    explicit CIImage(std::shared_ptr<const imaging::Node> node);
    [[nodiscard]] const std::shared_ptr<const imaging::Node>& node() const { return m_node; }

private:
    std::shared_ptr<const imaging::Node> m_node;
};

} // namespace kelvara
