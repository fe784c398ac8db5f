#pragma once

#include "Demo/PictureAnalysis.h"
#include "Tools/Specimen/ScanAreas.h"

#include <QImage>
#include <QStringList>
#include <QTransform>

#include <optional>

namespace kelvara::demo {

/// What can be learnt of a card from a picture of it, which `toFrame` lays into a camera frame.
class PicturedCard
{
public:
    PicturedCard(QImage picture, const QTransform& toFrame, specimen::ScanAreas areas);

    /// The lines of its machine-readable zone; absent unless every check digit vouches for them. Takes some tenths of a
    /// second.
    [[nodiscard]] std::optional<QStringList> zone() const;
    /// The portrait: the face with room around it, at most as large as on a chip. Null if there is no face.
    [[nodiscard]] QImage portrait(const PictureAnalysis& analysis) const;

private:
    /// A part of the frame, drawn from the picture itself so many times larger.
    [[nodiscard]] QImage part(const QRectF& area, double zoom) const;

    QImage m_picture;
    QTransform m_toFrame;
    specimen::ScanAreas m_areas;
    double m_sharpest; ///< The zoom that shows all of the picture's own pixels.
};

} // namespace kelvara::demo
