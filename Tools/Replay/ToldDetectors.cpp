#include "Tools/Replay/ToldDetectors.h"

namespace kelvara::replay {

namespace {

struct ToldRectangles final : RectangleDetector
{
    explicit ToldRectangles(std::shared_ptr<const Told> t) : told(std::move(t)) { }
    std::vector<VNRectangleObservation> detect(const VisionImage&, const RectangleLimits&) const override
    {
        if (!told->card)
            return {};
        VNRectangleObservation card;
        card.topLeft = { 0.1, 0.9 };
        card.topRight = { 0.9, 0.9 };
        card.bottomLeft = { 0.1, 0.1 };
        card.bottomRight = { 0.9, 0.1 };
        card.boundingBox = { 0.1, 0.1, 0.8, 0.8 };
        return { card };
    }
    std::shared_ptr<const Told> told;
};

struct ToldFaces final : FaceDetector
{
    explicit ToldFaces(std::shared_ptr<const Told> t) : told(std::move(t)) { }
    std::vector<VNFaceObservation> detect(const VisionImage&) const override
    {
        if (!told->face)
            return {};
        VNFaceObservation face;
        face.boundingBox = { 0.25, 0.5, 0.5, 0.25 };
        return { face };
    }
    std::shared_ptr<const Told> told;
};

} // namespace

std::shared_ptr<const VisionDetectors> toldDetectors(std::shared_ptr<const Told> told)
{
    auto detectors = std::make_shared<VisionDetectors>();
    detectors->rectangles = std::make_shared<ToldRectangles>(told);
    detectors->faces = std::make_shared<ToldFaces>(std::move(told));
    detectors->text = VisionDetectors::native()->text;
    return detectors;
}

} // namespace kelvara::replay
