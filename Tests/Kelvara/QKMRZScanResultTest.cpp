#include "Kelvara/QKMRZScanResult.h"
#include "Platform/Mrz/QKMRZResult.h"
#include "Platform/Vision/VisionDetectors.h"
#include "Platform/Vision/VisionImage.h"
#include "Tools/Specimen/Specimen.h"

#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

/// Finds the faces it is told of (pixels, origin bottom-left), and counts how often it is asked.
class ToldFaces final : public FaceDetector
{
public:
    explicit ToldFaces(std::vector<QRectF> faces) : m_faces(std::move(faces)) { }

    std::vector<VNFaceObservation> detect(const VisionImage& image) const override
    {
        ++asked;
        std::vector<VNFaceObservation> found;
        const QSizeF size = image.size();
        for (const QRectF& face : m_faces)
            found.push_back({ { QRectF(face.x() / size.width(), face.y() / size.height(), face.width() / size.width(),
                                    face.height() / size.height()),
                1 } });
        return found;
    }

    mutable int asked = 0;

private:
    const std::vector<QRectF> m_faces;
};

std::shared_ptr<const VisionDetectors> detectorsOf(const std::shared_ptr<const FaceDetector>& faces)
{
    auto detectors = std::make_shared<VisionDetectors>();
    detectors->faces = faces;
    return detectors;
}

/// Red says how far to the right a pixel lies, green how far from the top.
QImage chart()
{
    QImage image(640, 800, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x * 255 / 640, y * 255 / 800, 0));
    }
    return image;
}

TEST(QKMRZScanResult, CutsOutTheFirstFaceOnceWithRoomAroundIt)
{
    struct Row
    {
        QRectF face;
        QRect cut; ///< Origin top-left.
    };
    const Row rows[] = {
        { QRectF(100, 200, 120, 150), QRect(70, 800 - 165 - 320, 180, 320) },
        { QRectF(100, 600, 120, 150), QRect(70, 0, 180, 800 - 565) }, // At the upper border it is cut off.
        { QRectF(0, 0, 120, 150), QRect(0, 800 - 285, 150, 285) },
    };
    const QImage image = chart();
    for (const Row& row : rows) {
        const auto faces = std::make_shared<ToldFaces>(std::vector { row.face, QRectF(400, 400, 100, 100) });
        QKMRZScanResult result({}, image, detectorsOf(faces));
        EXPECT_EQ(faces->asked, 0);
        const auto found = result.faceImage();
        ASSERT_TRUE(found);
        ASSERT_EQ(found->cgImage()->size(), row.cut.size());
        EXPECT_EQ(found->scale(), 1);
        for (const QPoint corner : { QPoint(0, 0), QPoint(row.cut.width() - 1, row.cut.height() - 1) }) {
            const QRgb cut = found->cgImage()->pixel(corner);
            const QRgb whole = image.pixel(corner + row.cut.topLeft());
            EXPECT_NEAR(qRed(cut), qRed(whole), 1);
            EXPECT_NEAR(qGreen(cut), qGreen(whole), 1);
        }
        EXPECT_TRUE(result.faceImage());
        EXPECT_EQ(faces->asked, 1);
    }
}

TEST(QKMRZScanResult, KeepsWhatItWasToldOrDidNotFind)
{
    const auto none = std::make_shared<ToldFaces>(std::vector<QRectF> {});
    QKMRZScanResult faceless({}, chart(), detectorsOf(none));
    EXPECT_FALSE(faceless.faceImage());
    EXPECT_FALSE(faceless.faceImage());
    EXPECT_EQ(none->asked, 1);

    QKMRZScanResult told({}, chart(), detectorsOf(none));
    told.setFaceImage(UIImage(chart()));
    EXPECT_TRUE(told.faceImage());
    told.setFaceImage(std::nullopt);
    EXPECT_FALSE(told.faceImage());
    EXPECT_EQ(none->asked, 1);

    QKMRZScanResult empty({}, UIImage(), detectorsOf(none));
    EXPECT_FALSE(empty.faceImage());
}

TEST(QKMRZScanResult, CopiesEveryFieldAsItIs)
{
    QKMRZResult parsed;
    parsed.documentType = QStringLiteral("I");
    parsed.countryCode = QStringLiteral("TUR");
    parsed.surnames = QStringLiteral("YILMAZ");
    parsed.givenNames = QStringLiteral("AYSE NUR");
    parsed.documentNumber = QStringLiteral("A12<34567");
    parsed.nationality = QStringLiteral("D");
    parsed.birthDate = QDate(1985, 8, 9);
    parsed.sex = QStringLiteral("F");
    parsed.expiryDate = QDate(2031, 2, 3);
    parsed.personalNumber = QStringLiteral("10000000146");
    parsed.personalNumber2 = QStringLiteral("X");
    const QKMRZScanResult result(parsed, UIImage());
    EXPECT_EQ(result.documentType, parsed.documentType);
    EXPECT_EQ(result.countryCode, parsed.countryCode);
    EXPECT_EQ(result.surnames, parsed.surnames);
    EXPECT_EQ(result.givenNames, parsed.givenNames);
    EXPECT_EQ(result.documentNumber, parsed.documentNumber);
    EXPECT_EQ(result.nationality, parsed.nationality);
    EXPECT_EQ(result.birthDate, parsed.birthDate);
    EXPECT_EQ(result.sex, parsed.sex);
    EXPECT_EQ(result.expiryDate, parsed.expiryDate);
    EXPECT_EQ(result.personalNumber, parsed.personalNumber);
    EXPECT_EQ(result.personalNumber2, parsed.personalNumber2);
}

TEST(QKMRZScanResult, FindsThePortraitOfACard)
{
    const QImage card = specimen::printFront(specimen::SpecimenData::fromSeed(3), 1400);
    ASSERT_FALSE(card.isNull());
    QKMRZScanResult result({}, card);
    EXPECT_FALSE(result.birthDate || result.sex || result.expiryDate || result.personalNumber2);
    const auto face = result.faceImage();
    ASSERT_TRUE(face);
    EXPECT_LT(face->size().width(), card.width() / 2);
}

} // namespace
} // namespace kelvara::test
