#include "Tools/Replay/LookCounter.h"

namespace kelvara::replay {

namespace {

struct CountedFaces final : FaceDetector
{
    CountedFaces(std::shared_ptr<const FaceDetector> f, std::shared_ptr<std::atomic<std::int64_t>> l)
        : faces(std::move(f)), looks(std::move(l))
    { }
    std::vector<VNFaceObservation> detect(const VisionImage& image) const override
    {
        auto found = faces->detect(image);
        ++*looks;
        return found;
    }
    std::shared_ptr<const FaceDetector> faces;
    std::shared_ptr<std::atomic<std::int64_t>> looks;
};

} // namespace

std::shared_ptr<const VisionDetectors> countingLooks(
    const std::shared_ptr<const VisionDetectors>& detectors, std::shared_ptr<std::atomic<std::int64_t>> looks)
{
    auto counting = std::make_shared<VisionDetectors>(*detectors);
    counting->faces = std::make_shared<CountedFaces>(detectors->faces, std::move(looks));
    return counting;
}

} // namespace kelvara::replay
