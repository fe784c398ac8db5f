#pragma once

#include "Demo/PictureAnalysis.h"
#include "Demo/Subject.h"
#include "Tools/Specimen/ScanAreas.h"

#include <QColor>
#include <QImage>
#include <QTransform>

#include <optional>
#include <vector>

namespace kelvara::demo {

/// How a picture is laid into a camera frame.
struct PictureFit
{
    QTransform toFrame; ///< From the picture's pixels to the frame's.
    bool found = false; ///< Whether the card or face was found; if not, the fit is a guess.
    bool takenForCard = false; ///< Not found, but the picture has about a card's shape and is laid as one.
};

/// Lays pictures as people have them (a phone's photograph, a scan, a portrait) into a camera frame so that what they
/// show lies in the cut-out, as if a steady hand held it there.
class PictureFitter
{
public:
    PictureFitter(PictureAnalysis analysis, specimen::ScanAreas areas);

    [[nodiscard]] PictureFit fit(const QImage& picture, Subject subject) const;

    /// What is seen beside the picture.
    [[nodiscard]] static QColor margin();
    /// `area` of the frame with the picture laid into it, over a neutral margin. Format_ARGB32_Premultiplied.
    [[nodiscard]] static QImage laid(const QImage& picture, const QTransform& toFrame, const QRect& area);

private:
    /// What looks like a card in parts of the picture, the largest first.
    [[nodiscard]] std::vector<QPolygonF> findCards(const QImage& picture) const;
    [[nodiscard]] QTransform layCard(const QPolygonF& corners, double fill, double turn) const;
    /// The same, turned so that a face is seen; absent if none is either way.
    [[nodiscard]] std::optional<QTransform> layUpright(const QImage& picture, const QPolygonF& card, double fill) const;
    [[nodiscard]] bool showsFace(const QImage& picture, const QTransform& toFrame) const;
    [[nodiscard]] PictureFit fitCard(const QImage& picture, bool front) const;
    [[nodiscard]] PictureFit fitFace(const QImage& picture) const;
    /// The whole picture over the whole frame.
    [[nodiscard]] QTransform layWhole(const QImage& picture) const;

    PictureAnalysis m_analysis;
    specimen::ScanAreas m_areas;
};

} // namespace kelvara::demo
