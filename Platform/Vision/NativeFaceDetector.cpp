#include "Platform/Vision/NativeFaceDetector.h"

#include "Platform/Vision/FaceScan.h"
#include "Platform/Vision/VisionImage.h"
#include "Platform/Vision/VisionPlanes.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

/// The area that is searched, whatever the image's size and shape: 640 × 448 pixels of a card's cut-out, 464 × 618 of
/// an oval's. The search finds faces of 80 pixels and more: an eighth of the cut-out's width, a sixth of the oval's. On
/// the card's front the portrait's face measures 17 % of the card.
constexpr double searchedArea = 640 * 448;
/// Enlarging more than this adds nothing but time.
constexpr double largestEnlargement = 2;
/// Decides between a face and none: the model's own balance point. See Docs/accuracy-faces.md.
constexpr float minimumScore = 0.0F;
/// The model's boxes begin at the eyebrows; a face begins at the forehead. Part of the box's height.
constexpr float forehead = 0.12F;

/// The image at the size to be searched.
cv::Mat searchedPlane(VisionImage::Planes& planes, cv::Size size)
{
    const double scale
        = std::min(largestEnlargement, std::sqrt(searchedArea / (static_cast<double>(size.width) * size.height)));
    const cv::Size searched(cvRound(size.width * scale), cvRound(size.height * scale));
    // From the smallest level that still has the pixels: shrinking by more than two would skip some of them.
    int level = 0;
    while (level + 1 < VisionImage::Planes::levels && size.width >> (level + 1) >= searched.width
        && size.height >> (level + 1) >= searched.height)
        ++level;
    cv::Mat plane;
    if (!searched.empty())
        cv::resize(planes.luma(level), plane, searched, 0, 0, cv::INTER_LINEAR);
    return plane;
}

VNFaceObservation observation(const FaceCandidate& candidate, cv::Size searched)
{
    const cv::Rect2f& box = candidate.box;
    const QRectF face(box.x, box.y - forehead * box.height, box.width, (1 + forehead) * box.height);
    const QRectF visible = face & QRectF(0, 0, searched.width, searched.height);
    VNFaceObservation result;
    result.boundingBox = QRectF(visible.x() / searched.width, 1 - visible.bottom() / searched.height,
        visible.width() / searched.width, visible.height() / searched.height);
    result.confidence = 1 / (1 + std::exp(-2 * candidate.score));
    return result;
}

class NativeFaceDetector final : public FaceDetector
{
public:
    explicit NativeFaceDetector(float leastScore) : m_leastScore(leastScore) { }

    [[nodiscard]] std::vector<VNFaceObservation> detect(const VisionImage& image) const override
    {
        const cv::Size size(image.size().width(), image.size().height());
        std::vector<VNFaceObservation> faces;
        if (size.empty())
            return faces;
        try {
            const cv::Mat plane = searchedPlane(image.planes(), size);
            for (const FaceCandidate& candidate : scanForFaces(plane, m_leastScore))
                faces.push_back(observation(candidate, plane.size()));
        } catch (const cv::Exception&) {
            faces.clear(); // An image that OpenCV cannot take shows no face that could be used.
        }
        return faces;
    }

private:
    const float m_leastScore;
};

} // namespace

std::shared_ptr<const FaceDetector> makeNativeFaceDetector()
{
    return makeFaceDetector(minimumScore);
}

std::shared_ptr<const FaceDetector> makeFaceDetector(float leastScore)
{
    return std::make_shared<const NativeFaceDetector>(leastScore);
}

float faceScore(const VNFaceObservation& face)
{
    return std::log(face.confidence / (1 - face.confidence)) / 2;
}

} // namespace kelvara
