#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Imaging/UIImage.h"
#include "Platform/Vision/VNRequest.h"

#include <QImage>
#include <QVariantMap>

#include <memory>
#include <span>

namespace kelvara {

/// Performs analysis requests on one bitmap. The detectors share the image's downscaled planes, which are computed
/// once. The requests of one `perform` may be searched side by side on several cores; completions are called on the
/// performing thread, in request order, before `perform` returns.
class KELVARA_EXPORT VNImageRequestHandler
{
public:
    /// `image` is turned upright by `orientation` before the analysis; what is found is normalised to the upright
    /// image. Its pixels are shared (copied only when there is something to turn) and must not change while this
    /// lives. No options are defined; what is in `options` is ignored. Without `detectors` no request can be served.
    VNImageRequestHandler(QImage image, CGImagePropertyOrientation orientation, const QVariantMap& options,
        std::shared_ptr<const VisionDetectors> detectors);
    ~VNImageRequestHandler();

    /// Performs all requests; each one's own failure reaches its completion. Absent on success; an error when the
    /// image itself is of no use (then no completion is called).
    std::optional<VNError> perform(std::span<const std::shared_ptr<VNRequest>> requests);

private:
    struct State;
    std::unique_ptr<State> d;
};

} // namespace kelvara
