#include "Platform/Vision/VisionDetectors.h"

#include "Platform/Vision/CardRectangleDetector.h"
#include "Platform/Vision/NativeFaceDetector.h"
#include "Platform/Vision/TextLineDetector.h"

namespace kelvara {

std::shared_ptr<const VisionDetectors> VisionDetectors::native()
{
    static const std::shared_ptr<const VisionDetectors> shared = [] {
        auto detectors = std::make_shared<VisionDetectors>();
        detectors->rectangles = std::make_shared<const CardRectangleDetector>();
        detectors->text = std::make_shared<const TextLineDetector>();
        detectors->faces = makeNativeFaceDetector();
        return detectors;
    }();
    return shared;
}

} // namespace kelvara
