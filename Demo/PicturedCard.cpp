#include "Demo/PicturedCard.h"

#include "Demo/PictureFitter.h"
#include "Kelvara/FilterVendor.h"
#include "Kelvara/MrzPageReader.h"
#include "Kelvara/OcrbModel.h"

#include <algorithm>
#include <cmath>

namespace kelvara::demo {

namespace {

constexpr double kMostZoom = 3;

// A portrait on a chip: ICAO's 413 × 531 pixels, with the face over two thirds of the width and a little high.
constexpr QSizeF kPortrait(413, 531);
constexpr double kFaceWidth = 0.68; // no wider than cards print it, so that nothing else of the print is seen
constexpr double kFaceMiddle = 0.51;

} // namespace

PicturedCard::PicturedCard(QImage picture, const QTransform& toFrame, specimen::ScanAreas areas)
    : m_picture(std::move(picture)), m_toFrame(toFrame), m_areas(areas),
      m_sharpest(std::clamp(1 / std::sqrt(std::abs(toFrame.determinant())), 1.0, kMostZoom))
{ }

QImage PicturedCard::part(const QRectF& area, double zoom) const
{
    const QTransform larger = QTransform::fromScale(zoom, zoom);
    return PictureFitter::laid(m_picture, m_toFrame * larger, larger.mapRect(area).toAlignedRect());
}

std::optional<QStringList> PicturedCard::zone() const
{
    FilterVendor::registerFilters();
    TesseractEngine engine(QStringLiteral("ocrb"), ocrbModelFolder(), TesseractEngineMode::TesseractOnly);
    const QKMRZParser parser(true);
    MrzPageReader reader(engine, parser);
    // As the camera will see it, upright; then the picture itself, should the card not have been found in it.
    for (const QImage& image : { part(m_areas.card, m_sharpest), m_picture }) {
        const MrzPageReading reading = reader.read(image);
        if (reading.result && reading.result->allCheckDigitsValid)
            return reading.lines;
    }
    return std::nullopt;
}

QImage PicturedCard::portrait(const PictureAnalysis& analysis) const
{
    const QRect card = m_areas.card.toAlignedRect();
    const auto face = analysis.face(part(card, 1));
    if (!face)
        return {};
    const double width = face->width() / kFaceWidth;
    const double height = width * kPortrait.height() / kPortrait.width();
    const QRectF around(face->center().x() - width / 2, face->center().y() - height * kFaceMiddle, width, height);
    const QRectF area = around.translated(card.topLeft()) & QRectF(card);
    return part(area, std::min(m_sharpest, kPortrait.width() / area.width()));
}

} // namespace kelvara::demo
