#include "Kelvara/PixelBufferImage.h"
#include "Tests/Support/KycHarness.h"

#include <gtest/gtest.h>

#include <array>

namespace kelvara::test {
namespace {

using enum ViewType;

struct BufferRow
{
    const char* name;
    bool hasBytes;
    QSize size;
    std::size_t rowBytes;
    std::uint32_t format;
    bool drawable;
    int locks; ///< That are left.
};

TEST(Frames, ABufferThatCannotBeDrawnStaysLocked)
{
    constexpr auto kBgra = kCVPixelFormatType_32BGRA;
    const BufferRow rows[] = {
        { "sound", true, { 4, 4 }, 16, kBgra, true, 0 },
        { "no bytes to lock", false, { 4, 4 }, 16, kBgra, false, 0 },
        { "short rows", true, { 4, 4 }, 15, kBgra, false, 1 },
        { "no width", true, { 0, 4 }, 16, kBgra, false, 1 },
        { "no height", true, { 4, 0 }, 16, kBgra, false, 1 },
        { "another format", true, { 4, 4 }, 16, 0x34323076, false, 1 },
    };
    for (const BufferRow& row : rows) {
        const auto bytes = std::make_shared<std::array<std::uint8_t, 64>>();
        const CVPixelBuffer buffer(bytes, row.hasBytes ? bytes->data() : nullptr, row.size.width(), row.size.height(),
            row.rowBytes, row.format);
        EXPECT_EQ(cgImage(buffer).has_value(), row.drawable) << row.name;
        EXPECT_EQ(buffer.lockCount(), row.locks) << row.name;
    }
}

/// A frame of 512 × 512 that is shown point by point, so that what is cut out of the screen is cut out of it.
class Cuts : public testing::Test
{
protected:
    Cuts()
    {
        geometry.mapping.bounds = QRectF(QPointF(), frame.size());
        for (int y = 0; y < frame.height(); ++y)
            for (int x = 0; x < frame.width(); ++x)
                frame.setPixel(x, y, qRgb(x / 2, y / 2, (x % 2) * 2 + y % 2));
    }
    void cutOut(const QRectF& rect) { geometry.cutoutRect = geometry.cutoutSelfieRect = rect; }
    [[nodiscard]] QImage part(const QRect& rect) const { return frame.copy(rect); }

    using View = QorvelKycViewPrivate;
    CaptureGeometry geometry;
    QImage frame { 512, 512, QImage::Format_RGB32 };
};

TEST_F(Cuts, GrowByATwentiethOfTheirHeightOnEverySide)
{
    cutOut({ 100, 150, 300, 200 });
    EXPECT_EQ(View::documentImage(geometry, frame), part({ 100, 150, 300, 200 }));
    EXPECT_EQ(View::selfieImage(geometry, frame), part({ 100, 150, 300, 200 }));
    EXPECT_EQ(QImage(View::enlargedDocumentImage(geometry, frame)), part({ 90, 140, 320, 220 }));
    EXPECT_EQ(QImage(View::enlargedSelfieImage(geometry, frame)), part({ 90, 140, 320, 220 }));
    geometry.previewOrientation = AVCaptureVideoOrientation::Portrait; // the sensor lies on its side
    EXPECT_EQ(View::documentImage(geometry, frame), part({ 150, 100, 200, 300 }));
    EXPECT_EQ(QImage(View::enlargedSelfieImage(geometry, frame)), part({ 135, 85, 230, 330 }));
}

TEST_F(Cuts, LeaveTheFrameWholeWhereNothingOfItIsShown)
{
    cutOut({ 600, 600, 100, 100 });
    EXPECT_EQ(View::documentImage(geometry, frame), frame);
    EXPECT_EQ(View::selfieImage(geometry, frame), frame);
    EXPECT_DEATH((void)View::enlargedDocumentImage(geometry, frame), "The card's area lies outside the frame");
    EXPECT_DEATH((void)View::enlargedSelfieImage(geometry, frame), "The selfie's area lies outside the frame");
}

TEST_F(Cuts, NeedACutout)
{
    for (const auto cut : { &View::documentImage, &View::selfieImage })
        EXPECT_DEATH((void)cut(geometry, frame), "cut-out was asked for before the overlay was drawn");
    for (const auto cut : { &View::enlargedDocumentImage, &View::enlargedSelfieImage })
        EXPECT_DEATH((void)cut(geometry, frame), "cut-out was asked for before the overlay was drawn");
}

struct CountedLines final : TextRectangleDetector
{
    std::vector<VNTextObservation> detect(const VisionImage&) const override
    {
        ++searches;
        return {};
    }
    mutable std::atomic<int> searches { 0 };
};

struct SearchRow
{
    const char* name;
    ViewType step;
    bool hasNfc;
    const char* requests; ///< In their order: Rectangles, Text, Faces.
    bool checkMrz; ///< After the first frame, in which no text was seen.
};

void PrintTo(const SearchRow& row, std::ostream* out)
{
    *out << row.name;
}

char letterOf(const VNRequest& request)
{
    if (dynamic_cast<const VNDetectRectanglesRequest*>(&request))
        return 'R';
    return dynamic_cast<const VNDetectTextRectanglesRequest*>(&request) ? 'T' : 'F';
}

class Searches : public testing::TestWithParam<SearchRow>
{ };

TEST_P(Searches, AreThoseOfTheStep)
{
    const SearchRow& row = GetParam();
    const auto lines = std::make_shared<CountedLines>();
    Device device = Device::phone();
    device.hasNfc = row.hasNfc;
    device.text = lines;
    Stage stage(device);
    stage.setSteps({ row.step });
    QorvelKycViewPrivate& d = stage.d();
    d.videoQueue.drain(); // frames from before the step
    settle();
    ToldDetectors::Told& told = *device.eyes.told;
    told.cardSearches = told.faceSearches = lines->searches = 0;
    d.checkMrz = false;
    const ReplayCamera& camera = row.step == selfie ? *device.front : *device.back;
    const auto before = camera.deliveredFrames();
    ASSERT_TRUE(spinUntil([&] { return camera.deliveredFrames() > before + 5; }));
    d.videoQueue.drain();
    const std::string searched = std::string(told.cardSearches > 0 ? "R" : "") + (lines->searches > 0 ? "T" : "")
        + (told.faceSearches > 0 ? "F" : "");
    EXPECT_EQ(searched, row.requests);
    EXPECT_EQ(d.checkMrz, row.checkMrz);
    std::string requests;
    d.videoQueue.sync([&] {
        for (const auto& request : d.createVisionRequests())
            requests += letterOf(*request);
    });
    EXPECT_EQ(requests, row.requests);
    if (row.step != idPhoto)
        return;
    const auto limits = told.limits.load();
    ASSERT_TRUE(limits);
    EXPECT_EQ(limits->minimumAspectRatio, 1.3F);
    EXPECT_EQ(limits->maximumAspectRatio, 1.6F);
    EXPECT_EQ(limits->minimumSize, 0.5F);
    EXPECT_EQ(limits->maximumObservations, 1);
}

INSTANTIATE_TEST_SUITE_P(All, Searches,
    testing::Values(SearchRow { "card", idPhoto, false, "RF", true },
        SearchRow { "cardBeforeAChip", idPhoto, true, "RTF", false }, SearchRow { "selfie", selfie, true, "F", false },
        SearchRow { "chip", nfcRead, false, "", false }, SearchRow { "call", jitsi, false, "F", false }),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Frames, AreAnalysedWholeAsLongAsNoCutoutIsKnown)
{
    Device device = Device::phone();
    device.eyes.told->card = device.eyes.told->face = true;
    QorvelKycView view(QRectF(0, 0, 390, 844), device.services()); // never shown, so that no overlay is drawn
    QorvelKycViewPrivate& d = QorvelKycViewPrivate::of(view);
    const auto analysed = [&] {
        const int before = device.eyes.told->performed;
        return spinUntil([&] { return device.eyes.told->performed > before + 4; });
    };
    view.setViewTypes({ idPhoto });
    ASSERT_TRUE(analysed());
    settle();
    EXPECT_EQ(d.inputCGImage.load()->size(), QSize(270, 480));
    EXPECT_FALSE(d.inputCIImage.load());
    EXPECT_FALSE(d.checkRectangle || d.checkFace) << "there is nothing to cut what was found out of";
    QImage earlier(20, 10, QImage::Format_ARGB32_Premultiplied);
    earlier.fill(Qt::red);
    d.inputCIImage.store(CIImage(earlier));
    ASSERT_TRUE(analysed());
    ASSERT_TRUE(d.inputCIImage.load());
    EXPECT_EQ(d.inputCIImage.load()->extent().size(), QSizeF(20, 10));
}

TEST(Frames, AFaceInTheCallsStepCountsAndShowsNowhere)
{
    Stage stage;
    stage.setSteps({ jitsi });
    stage.show(false, true);
    EXPECT_TRUE(spinUntil([&] { return stage.d().checkFace.load(); }));
    settle();
    EXPECT_FALSE(stage.d().takePhotoButton->isEnabled());
    EXPECT_FALSE(stage.d().capturedFace);
}

} // namespace
} // namespace kelvara::test
