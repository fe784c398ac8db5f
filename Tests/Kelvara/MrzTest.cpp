#include "Kelvara/MrzPreprocessing.h"
#include "Kelvara/QKMRZScanResult.h"
#include "Kelvara/ScanAreaMapping.h"
#include "Kelvara/SdkModel.h"
#include "Platform/Vision/TextLineDetector.h"
#include "Tests/Support/KycHarness.h"
#include "Tools/Specimen/ScanAreas.h"

#include <QDeadlineTimer>
#include <QThread>

#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

using enum ViewType;
using specimen::SpecimenData;

constexpr QSize kFrame(1080, 1920);

/// What the test says are lines of text, beside or instead of what is seen.
struct ToldLines final : TextRectangleDetector
{
    std::vector<VNTextObservation> detect(const VisionImage& image) const override
    {
        ++performed;
        std::vector<VNTextObservation> lines
            = seesToo ? TextLineDetector().detect(image) : std::vector<VNTextObservation>();
        for (const QRectF& box : told) {
            VNTextObservation line;
            line.boundingBox = box;
            lines.push_back(line);
        }
        return lines;
    }
    bool seesToo = true;
    QList<QRectF> told;
    mutable std::atomic<int> performed { 0 };
};

struct BandRow
{
    const char* name;
    QList<QRectF> lines; ///< Of the whole, origin bottom-left.
    QRectF band; ///< Of 1000 × 500 pixels, origin top-left.
};

TEST(MrzBand, LiesAroundTheLongLines)
{
    const QRectF upper(0.05, 0.25, 0.9, 0.1);
    const QRectF lower(0.0625, 0.125, 0.875, 0.0625);
    const QRectF both(50, 325, 900, 112.5);
    const BandRow rows[] = {
        { "no line", {}, {} },
        { "one line", { lower }, { 62.5, 406.25, 875, 31.25 } },
        { "two lines", { upper, lower }, both },
        { "in another order", { lower, upper }, both },
        { "with short lines elsewhere", { { 0.1, 0.9, 0.5, 0.05 }, lower, { 0, 0, 0.8, 0.01 }, upper }, both },
        { "exactly four fifths of the width", { { 0.1, 0.1, 0.8, 0.1 } }, {} },
        { "a little more", { { 0.1, 0.5, 0.801, 0.25 } }, { 100, 125, 801, 125 } },
        { "exactly two fifths of the height", { { 0, 0.5, 1, 0.4 } }, { 0, 50, 1000, 200 } },
        { "a little more", { { 0, 0.5, 1, 0.4001 } }, {} },
        { "too far apart", { { 0, 0.125, 1, 0.125 }, { 0, 0.5, 1, 0.125 } }, {} },
    };
    for (const BandRow& row : rows) {
        std::vector<VNTextObservation> lines;
        for (const QRectF& box : row.lines)
            lines.emplace_back().boundingBox = box;
        const QRectF band = QorvelKycViewPrivate::mrzBand(lines, { 1000, 500 });
        EXPECT_EQ(band.isNull(), row.band.isNull()) << row.name;
        EXPECT_TRUE(band == row.band) << row.name << ' ' << band.x() << ' ' << band.y() << ' ' << band.width() << ' '
                                      << band.height();
    }
}

/// A phone with a contactless reader whose back camera sees a card's back.
class MrzStep : public testing::Test
{
protected:
    void open(const SpecimenData& card, double fill = 0.955)
    {
        Device device = Device::phone();
        ReplayCameraOptions options;
        options.size = kFrame;
        device.back = Device::camera(AVCaptureDevicePosition::Back, options);
        device.hasNfc = true;
        device.text = lines;
        stage = std::make_unique<Stage>(device);
        stage->setSteps({ idPhoto });
        ASSERT_TRUE(spinUntil([&] { return lines->performed > 0; })) << "the NFC device searches for text";
        const auto areas = specimen::ScanAreas::of(stage->view->size(), kFrame);
        specimen::SceneOptions scene = areas.held(specimen::Subject::Back, card.seed);
        scene.background = specimen::Background::Wood;
        scene.fill = fill;
        stage->device.back->setSource(ReplaySource::still(photograph(card, scene).image));
    }
    /// Lets at least so many frames be analysed from beginning to end.
    [[nodiscard]] bool analysed(int frames)
    {
        const int goal = lines->performed + frames + 1;
        return spinUntil([&] { return lines->performed >= goal; }, 60'000);
    }
    [[nodiscard]] bool accepted() const { return stage->d().sdkModel->mrzInfo != nullptr; }

    std::shared_ptr<ToldLines> lines = std::make_shared<ToldLines>();
    std::unique_ptr<Stage> stage;
};

TEST_F(MrzStep, AnAcceptedReadingFillsTheRecordAndMakesTheBackReady)
{
    const auto card = SpecimenData::fromSeed(5'000'001);
    open(card);
    stage->d().isFront = false;
    stage->d().startSide();
    stage->show(true, false);
    ASSERT_TRUE(spinUntil([&] { return accepted(); }, 60'000));
    settle();
    EXPECT_TRUE(stage->d().checkMrz);
    QKMRZScanResult& mrz = *stage->d().sdkModel->mrzInfo;
    EXPECT_EQ(mrz.documentNumber, card.documentNumber);
    EXPECT_EQ(mrz.personalNumber, card.identityNumber);
    EXPECT_EQ(mrz.birthDate, card.birthDate);
    EXPECT_EQ(mrz.expiryDate, card.expiryDate);
    EXPECT_EQ(mrz.sex, card.sex);
    EXPECT_EQ(mrz.nationality, card.nationality);
    const auto& picture = stage->d().sdkModel->mrzImage;
    ASSERT_TRUE(picture && stage->d().capturedMrz);
    EXPECT_EQ(QImage(*picture).size(), stage->d().inputCGImage.load()->size());
    EXPECT_FALSE(QImage(mrz.documentImage).isNull());
    EXPECT_TRUE(spinUntil([&] { return stage->d().takePhotoButton->isEnabled(); }));

    // The zone holds although the card is looked for anew every two seconds, and a new side begins without it.
    stage->show(false, false);
    stage->view->runTimedCode();
    EXPECT_TRUE(stage->d().checkMrz);
    stage->device.back->setStalled(true);
    stage->d().startSide();
    settle();
    EXPECT_FALSE(stage->d().checkMrz);
    EXPECT_TRUE(accepted()) << "nothing is ever cleared from the record";
}

TEST_F(MrzStep, TheBackIsNotReadyWithoutAReading)
{
    open(SpecimenData::fromSeed(5'000'002), 0.86); // too far away: the lines span less than four fifths
    stage->d().isFront = false;
    stage->d().startSide();
    stage->show(true, false);
    ASSERT_TRUE(analysed(4));
    EXPECT_TRUE(spinUntil([&] { return stage->d().checkRectangle.load(); }));
    EXPECT_FALSE(stage->d().checkMrz);
    EXPECT_FALSE(stage->d().takePhotoButton->isEnabled());
    EXPECT_FALSE(accepted());
}

TEST_F(MrzStep, AnIdentityNumberThatCannotBeIsNeverAccepted)
{
    auto card = SpecimenData::fromSeed(5'000'003);
    // The zone's check digits are printed right for it; its own last digit is wrong.
    card.identityNumber.back() = card.identityNumber.back() == u'7' ? u'8' : u'7';
    open(card);
    ASSERT_TRUE(analysed(6));
    EXPECT_FALSE(accepted());
}

TEST_F(MrzStep, OtherTextAroundTheLinesSpoilsTheBand)
{
    const QRectF nearTheTop(0.05, 0.85, 0.9, 0.05);
    lines->told = { nearTheTop };
    open(SpecimenData::fromSeed(5'000'004));
    ASSERT_TRUE(analysed(4));
    EXPECT_FALSE(accepted()) << "the lines together are taller than two fifths of the frame";
}

TEST_F(MrzStep, ShortLinesAndBoxesOutsideTheFrameMakeNoBand)
{
    lines->seesToo = false;
    // Exactly four fifths are not enough; a wide box above the frame leaves nothing to cut out.
    lines->told = { { 0.1, 0.05, 0.8, 0.3 }, { 0.05, 1.2, 0.9, 0.1 } };
    open(SpecimenData::fromSeed(5'000'005));
    ASSERT_TRUE(analysed(4));
    EXPECT_FALSE(accepted());
}

TEST_F(MrzStep, TheViewMayGoWhileTheZoneIsRead)
{
    open(SpecimenData::fromSeed(5'000'006));
    ASSERT_TRUE(analysed(1));
    for (int wait = 0; wait < 3; ++wait) {
        QTest::qWait(7 * wait);
        delete stage->view.data();
        settle();
        Device device = stage->device;
        stage = std::make_unique<Stage>(device);
        stage->setSteps({ idPhoto });
        ASSERT_TRUE(analysed(1));
    }
    // A view without size shows nothing that could be cut out, whatever is read.
    stage->view->resize(0, 0);
    ASSERT_TRUE(analysed(2));
}

TEST_F(MrzStep, AViewThatShrankDuringAnotherStepHasNothingToCutOutAtFirst)
{
    const auto card = SpecimenData::fromSeed(5'000'007);
    open(card);
    stage->setSteps({ selfie });
    stage->view->resize(60, 60);
    settle();
    specimen::SceneOptions scene;
    scene.seed = card.seed;
    scene.size = kFrame;
    scene.subject = specimen::Subject::Back;
    scene.fill = 0.97;
    stage->device.back->setSource(ReplaySource::still(photograph(card, scene).image));
    // Until the event loop runs, frames are seen through a cut-out that lies outside the view: as a whole.
    stage->view->setViewTypes({ idPhoto });
    const auto geometry = stage->d().geometry.load();
    ASSERT_FALSE(QRectF(QPointF(), kFrame).intersects(scanAreaInFrame(*geometry->cutoutRect, *geometry, kFrame)));
    const int before = lines->performed;
    for (QDeadlineTimer limit(60'000); lines->performed < before + 3 && !limit.hasExpired();)
        QThread::msleep(5);
    ASSERT_GE(lines->performed, before + 3);
    settle();
    EXPECT_FALSE(accepted()) << "there would be no picture of the document";
}

} // namespace
} // namespace kelvara::test
