#include "Platform/Vision/NativeFaceDetector.h"
#include "Platform/Vision/VisionImage.h"
#include "Tools/Specimen/Scene.h"

#include <cmath>
#include <gmock/gmock.h>

#include <QPainter>

#include <iostream>
#include <thread>

using namespace kelvara;
using namespace kelvara::specimen;

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int shareOfScenes = 8;
#else
constexpr int shareOfScenes = 1;
#endif

std::vector<VNFaceObservation> facesIn(const QImage& picture)
{
    return makeNativeFaceDetector()->detect(VisionImage(picture));
}

/// The observation's box in the picture's pixels, origin at the upper left.
QRectF inPixels(const VNFaceObservation& face, QSize size)
{
    const QRectF box = face.boundingBox;
    return { box.x() * size.width(), (1 - box.y() - box.height()) * size.height(), box.width() * size.width(),
        box.height() * size.height() };
}

double overlap(const QRectF& a, const QRectF& b)
{
    const QRectF common = a & b;
    const double area = common.width() * common.height();
    return area / (a.width() * a.height() + b.width() * b.height() - area);
}

QImage selfie(QSize size, std::uint32_t seed = 5'300'000)
{
    return photograph(SpecimenData::fromSeed(seed), ordinary(seed, Subject::Selfie, size)).image;
}

// ---------------------------------------------------------------------------------------------------------------------

/// Scenes of one kind, and how many of them may be judged wrongly.
struct Gate
{
    const char* name;
    Subject subject;
    QSize size;
    int scenes;
    double mistakesAllowed; ///< part of the scenes
};

class FaceGate : public testing::TestWithParam<Gate>
{ };

TEST_P(FaceGate, SeesFacesAndOnlyFaces)
{
    const Gate& gate = GetParam();
    const int scenes = gate.scenes / shareOfScenes;
    if (shareOfScenes > 1)
        std::cout << "Under a sanitizer: " << scenes << " of " << gate.scenes << " scenes.\n";
    int mistakes = 0;
    for (int i = 0; i < scenes; ++i) {
        const auto seed = static_cast<std::uint32_t>(5'200'000 + i);
        SceneOptions options = ordinary(seed, gate.subject, gate.size);
        if (gate.subject == Subject::Front && options.fill < 0.75)
            options.fill = 0.75;
        const Scene scene = photograph(SpecimenData::fromSeed(seed), options);
        const std::vector<VNFaceObservation> faces = facesIn(scene.image);
        // The first one counts: the portrait, not its ghost; and the whole of it.
        const bool right = scene.face ? !faces.empty() && overlap(inPixels(faces.front(), gate.size), *scene.face) > 0.6
                                      : faces.empty();
        if (right)
            continue;
        ++mistakes;
        std::cout << gate.name << ", seed " << seed << ": " << faces.size() << " faces\n";
    }
    // Two standard deviations of the sample on top: processors round differently, and a rare share is no gate.
    const double allowed = gate.mistakesAllowed * gate.scenes;
    EXPECT_LE(mistakes, allowed + 2 * std::sqrt(allowed * (1 - gate.mistakesAllowed)));
}

INSTANTIATE_TEST_SUITE_P(Scenes, FaceGate,
    testing::Values(Gate { "CardFront", Subject::Front, { 1000, 700 }, 48, 0.03 },
        Gate { "SmallCardFront", Subject::Front, { 798, 562 }, 48, 0.03 },
        Gate { "Selfie", Subject::Selfie, { 540, 720 }, 48, 0.03 },
        Gate { "CardBack", Subject::Back, { 1000, 700 }, 48, 0 },
        Gate { "SmallCardBack", Subject::Back, { 798, 562 }, 48, 0 },
        Gate { "Nothing", Subject::Nothing, { 1000, 700 }, 32, 0 },
        Gate { "NothingInTheOval", Subject::Nothing, { 540, 720 }, 32, 0 },
        Gate { "Hand", Subject::Hand, { 1000, 700 }, 32, 0 }, Gate { "Phone", Subject::Phone, { 1000, 700 }, 32, 0 }),
    [](const auto& row) { return std::string(row.param.name); });

// ---------------------------------------------------------------------------------------------------------------------

TEST(FaceDetector, TakesPicturesOfAnySizeAndShape)
{
    for (const QSize size : { QSize(0, 0), QSize(1, 1), QSize(3, 900), QSize(5000, 2), QSize(4000, 79), QSize(23, 24),
             QSize(71, 71), QSize(200, 3000) }) {
        for (const auto format : { QImage::Format_ARGB32_Premultiplied, QImage::Format_RGBA8888 }) {
            QImage picture(size, format);
            picture.fill(Qt::gray);
            EXPECT_TRUE(facesIn(picture).empty()) << size.width() << " x " << size.height();
        }
    }
    EXPECT_TRUE(facesIn({}).empty());
}

TEST(FaceDetector, FindsAFaceAtAnyResolution)
{
    const QSize size(540, 720);
    const QImage picture = selfie(size);
    for (const double scale : { 0.3, 0.5, 0.83, 2.2, 4.0 }) {
        const QImage scaled = picture.scaled(size * scale, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        const std::vector<VNFaceObservation> faces = facesIn(scaled);
        ASSERT_EQ(faces.size(), 1U) << scale;
        EXPECT_GT(overlap(faces.front().boundingBox, facesIn(picture).front().boundingBox), 0.8) << scale;
    }
}

TEST(FaceDetector, CountsFromTheLowerLeftAndStaysInThePicture)
{
    const QSize size(540, 720);
    QImage wall(size * 2, QImage::Format_RGB32);
    wall.fill(QColor(120, 124, 118));
    QPainter(&wall).drawImage(0, 0, selfie(size)); // upper left quarter
    const std::vector<VNFaceObservation> faces = facesIn(wall);
    ASSERT_EQ(faces.size(), 1U);
    EXPECT_TRUE(QRectF(0, 0.5, 0.5, 0.5).contains(faces.front().boundingBox));
    EXPECT_GT(faces.front().confidence, 0.5F);

    // So near that the forehead is cut off.
    const QRect face = inPixels(facesIn(selfie(size)).front(), size).toRect();
    const std::vector<VNFaceObservation> cut = facesIn(
        selfie(size).copy(face.adjusted(-face.width() / 4, face.height() / 8, face.width() / 4, face.height() / 3)));
    ASSERT_EQ(cut.size(), 1U);
    EXPECT_TRUE(QRectF(0, 0, 1, 1).contains(cut.front().boundingBox));
}

TEST(FaceDetector, SeesTwoPeopleAndNamesTheSurerFirst)
{
    const QSize size(540, 720);
    QImage pair(size.width() * 2, size.height(), QImage::Format_RGB32);
    QPainter painter(&pair);
    painter.drawImage(0, 0, selfie(size, 5'300'001));
    painter.drawImage(size.width(), 0, selfie(size, 5'300'002));
    painter.end();
    const std::vector<VNFaceObservation> faces = facesIn(pair);
    ASSERT_EQ(faces.size(), 2U);
    EXPECT_GE(faces[0].confidence, faces[1].confidence);
    EXPECT_LT(overlap(faces[0].boundingBox, faces[1].boundingBox), 0.1);
}

TEST(FaceDetector, AnswersSeveralThreadsAlike)
{
    const auto detector = makeNativeFaceDetector();
    std::vector<QImage> pictures;
    std::vector<std::vector<VNFaceObservation>> expected;
    for (std::uint32_t seed = 5'300'010; seed < 5'300'014; ++seed) {
        pictures.push_back(selfie({ 464, 618 }, seed));
        expected.push_back(detector->detect(VisionImage(pictures.back())));
        ASSERT_EQ(expected.back().size(), 1U);
    }
    std::vector<int> differences(4);
    std::vector<std::thread> threads;
    for (std::size_t me = 0; me < differences.size(); ++me) {
        threads.emplace_back([&, me] {
            for (std::size_t round = 0; round < 12; ++round) {
                const std::size_t which = (round + me) % pictures.size();
                const auto faces = detector->detect(VisionImage(pictures[which]));
                differences[me] += faces.size() != 1 || faces.front().boundingBox != expected[which].front().boundingBox
                    || faces.front().confidence != expected[which].front().confidence;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(differences, testing::Each(0));
}

} // namespace
