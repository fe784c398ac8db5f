#include "Platform/Vision/VNDetectFaceRectanglesRequest.h"
#include "Platform/Vision/VNDetectRectanglesRequest.h"
#include "Platform/Vision/VNDetectTextRectanglesRequest.h"
#include "Platform/Vision/VNImageRequestHandler.h"
#include "Platform/Vision/VisionDetectors.h"
#include "Platform/Vision/VisionPlanes.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <thread>

using namespace kelvara;
using testing::ElementsAre;

namespace {

/// Reports where in the upright bitmap the one red pixel is, as a face; throws on a white one.
class RedPixelDetector final : public FaceDetector, public RectangleDetector
{
public:
    std::vector<VNFaceObservation> detect(const VisionImage& image) const override
    {
        VNFaceObservation face;
        face.boundingBox = redPixel(image);
        return { face };
    }

    std::vector<VNRectangleObservation> detect(const VisionImage& image, const RectangleLimits& limits) const override
    {
        VNRectangleObservation rectangle;
        rectangle.boundingBox = redPixel(image);
        rectangle.confidence = limits.minimumSize;
        return { rectangle };
    }

private:
    static QRectF redPixel(const VisionImage& image)
    {
        const cv::Mat& pixels = image.planes().bgra(0);
        for (int y = 0; y < pixels.rows; ++y) {
            for (int x = 0; x < pixels.cols; ++x) {
                const cv::Vec4b pixel = pixels.at<cv::Vec4b>(y, x);
                if (pixel[0] == 255)
                    throw std::runtime_error("White");
                if (pixel[2] == 255)
                    return QRectF(x, y, 1, 1);
            }
        }
        return {};
    }
};

std::shared_ptr<const VisionDetectors> redPixelDetectors()
{
    auto detectors = std::make_shared<VisionDetectors>();
    const auto detector = std::make_shared<const RedPixelDetector>();
    detectors->rectangles = detector;
    detectors->faces = detector;
    return detectors;
}

QImage imageWithRedPixel(QPoint at, QSize size = { 6, 4 })
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    image.setPixelColor(at, Qt::red);
    return image;
}

} // namespace

TEST(VNImageRequestHandler, CompletesEveryRequestInOrderOnThePerformingThread)
{
    std::vector<std::string> told;
    const auto tell = [&, caller = std::this_thread::get_id()](const char* name) {
        return [&told, caller, name](const VNRequest&, const std::optional<VNError>& error) {
            EXPECT_EQ(std::this_thread::get_id(), caller);
            told.push_back(std::string(name) + (error ? error->message.isEmpty() ? "?" : "!" : ""));
        };
    };
    const auto rectangles = std::make_shared<VNDetectRectanglesRequest>(tell("rectangles"));
    rectangles->limits.minimumSize = 0.25F;
    const auto text = std::make_shared<VNDetectTextRectanglesRequest>(tell("text"));
    const auto faces = std::make_shared<VNDetectFaceRectanglesRequest>(tell("faces"));
    const std::vector<std::shared_ptr<VNRequest>> requests { rectangles, text, faces };

    // Many frames: the same requests are performed again and again, by a thread that has help.
    for (int frame = 0; frame < 200; ++frame) {
        told.clear();
        const QPoint red(frame % 6, frame % 4);
        VNImageRequestHandler handler(
            imageWithRedPixel(red), CGImagePropertyOrientation::Up, QVariantMap(), redPixelDetectors());
        ASSERT_FALSE(handler.perform(requests));
        ASSERT_THAT(told, ElementsAre("rectangles", "text!", "faces"));
        ASSERT_EQ(rectangles->resultsAs<VNRectangleObservation>()->front().boundingBox.topLeft(), red);
        ASSERT_EQ(rectangles->resultsAs<VNRectangleObservation>()->front().confidence, 0.25F);
        ASSERT_EQ(faces->resultsAs<VNFaceObservation>()->front().boundingBox.topLeft(), red);
        ASSERT_FALSE(faces->resultsAs<VNRectangleObservation>());
    }
}

TEST(VNImageRequestHandler, ServesSeveralThreadsAtATime)
{
    std::vector<std::thread> threads;
    for (int view = 0; view < 3; ++view) {
        threads.emplace_back([view] {
            int completed = 0;
            const auto count = [&](const VNRequest&, const std::optional<VNError>&) { ++completed; };
            const std::vector<std::shared_ptr<VNRequest>> requests { std::make_shared<VNDetectRectanglesRequest>(count),
                std::make_shared<VNDetectFaceRectanglesRequest>(count) };
            for (int frame = 0; frame < 100; ++frame) {
                VNImageRequestHandler handler(imageWithRedPixel(QPoint(view, 1)), CGImagePropertyOrientation::Up,
                    QVariantMap(), redPixelDetectors());
                handler.perform(requests);
                EXPECT_EQ(requests[1]->resultsAs<VNFaceObservation>()->front().boundingBox.x(), view);
            }
            EXPECT_EQ(completed, 200);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST(VNImageRequestHandler, TurnsTheBitmapUpright)
{
    // A 6 × 4 bitmap whose pixel (1, 0) is red, and where that pixel is in the upright image.
    const struct
    {
        CGImagePropertyOrientation orientation;
        QPoint upright;
    } rows[] = {
        { CGImagePropertyOrientation::Up, { 1, 0 } },
        { CGImagePropertyOrientation::UpMirrored, { 4, 0 } },
        { CGImagePropertyOrientation::Down, { 4, 3 } },
        { CGImagePropertyOrientation::DownMirrored, { 1, 3 } },
        { CGImagePropertyOrientation::LeftMirrored, { 0, 1 } },
        { CGImagePropertyOrientation::Right, { 3, 1 } },
        { CGImagePropertyOrientation::RightMirrored, { 3, 4 } },
        { CGImagePropertyOrientation::Left, { 0, 4 } },
    };
    for (const auto& row : rows) {
        const auto faces = std::make_shared<VNDetectFaceRectanglesRequest>();
        VNImageRequestHandler handler(imageWithRedPixel({ 1, 0 }), row.orientation, QVariantMap(), redPixelDetectors());
        handler.perform(std::vector<std::shared_ptr<VNRequest>> { faces });
        EXPECT_EQ(faces->resultsAs<VNFaceObservation>()->front().boundingBox.topLeft(), row.upright)
            << "orientation " << static_cast<int>(row.orientation);
    }
}

TEST(VNImageRequestHandler, TellsFailuresApart)
{
    std::optional<VNError> told;
    int completions = 0;
    const auto faces = std::make_shared<VNDetectFaceRectanglesRequest>(
        [&](const VNRequest& request, const std::optional<VNError>& error) {
            ++completions;
            told = error;
            EXPECT_EQ(request.resultsAs<VNFaceObservation>() == nullptr, error.has_value());
        });
    const std::vector<std::shared_ptr<VNRequest>> requests { faces };

    VNImageRequestHandler empty(QImage(), CGImagePropertyOrientation::Up, QVariantMap(), redPixelDetectors());
    const std::optional<VNError> invalid = empty.perform(requests);
    ASSERT_TRUE(invalid);
    EXPECT_EQ(invalid->kind, VNError::Kind::InvalidImage);
    EXPECT_EQ(completions, 0);

    QImage white(2, 2, QImage::Format_RGB32);
    white.fill(Qt::white);
    VNImageRequestHandler(white, CGImagePropertyOrientation::Up, QVariantMap(), redPixelDetectors()).perform(requests);
    ASSERT_TRUE(told);
    EXPECT_EQ(told->kind, VNError::Kind::DetectorFailed);

    VNImageRequestHandler(white, CGImagePropertyOrientation::Up, QVariantMap(), nullptr).perform(requests);
    ASSERT_TRUE(told);
    EXPECT_EQ(told->kind, VNError::Kind::NoDetector);
    EXPECT_EQ(completions, 2);
}

TEST(VisionPlanes, HalveWithoutMovingThePixelGridAndShareTheBitmap)
{
    QImage image(21, 14, QImage::Format_RGB888);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixelColor(x, y, QColor(10 * x, 10 * x, 10 * x));
    }
    image = image.convertToFormat(QImage::Format_RGB32);
    const VisionImage vision(image);
    EXPECT_EQ(vision.planes().bgra(0).data, image.constBits());
    for (int level = 0; level < VisionImage::Planes::levels; ++level) {
        const cv::Mat& luma = vision.planes().luma(level);
        ASSERT_EQ(luma.cols, 21 >> level);
        ASSERT_EQ(luma.rows, 14 >> level);
        EXPECT_EQ(vision.planes().luma(level).data, luma.data) << "computed once";
        // A ramp of 10 grey levels a pixel: the grey of a pixel is the full image's place of its centre.
        for (int x = 0; x < luma.cols; ++x)
            EXPECT_NEAR(luma.at<uchar>(0, x), 10.0 * ((x + 0.5) * (1 << level) - 0.5), level) << "level " << level;
    }
}
