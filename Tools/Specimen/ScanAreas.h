#pragma once

#include "Platform/Foundation/Export.h"
#include "Tools/Specimen/Scene.h"

#include <QRectF>
#include <QSize>
#include <QSizeF>

#include <cstdint>

namespace kelvara::specimen {

/// Where the capture view's two cut-outs lie in its camera's picture, for tests that hold something there. The picture
/// fills the view: its aspect is kept, and what is too much of it cut off evenly on both sides. Pixels of the picture
/// as the view shows it (upright), origin top-left. A value; any thread.
///
///     const auto areas = ScanAreas::of({ 390, 844 }, { 1080, 1920 });
///     const QImage seen = photograph(SpecimenData::fromSeed(7), areas.held(Subject::Front)).image;
struct KELVARA_EXPORT ScanAreas
{
    QSize picture;
    QRectF card; ///< Of the step that photographs the card; 1.42 times as wide as high.
    QRectF oval; ///< Around the selfie's. It does not grow with the view and may reach beyond a small one.

    /// `view` is the view's size in points, `picture` the camera's in pixels. Null areas where either is empty.
    [[nodiscard]] static ScanAreas of(const QSizeF& view, const QSize& picture);

    /// How to take the picture of someone who does as the view asks: the card fills its cut-out, its back so that the
    /// machine-readable zone can be read, the selfie's face half the oval's height. Nothing is tilted or blurred; the
    /// rest follows from the seed. What is no selfie lies where the card does.
    [[nodiscard]] SceneOptions held(Subject subject, std::uint32_t seed = 1) const;
};

} // namespace kelvara::specimen
