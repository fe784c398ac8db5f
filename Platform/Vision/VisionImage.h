#pragma once

#include "Platform/Foundation/Export.h"

#include <QImage>
#include <QSize>

#include <memory>

namespace kelvara {

/// The analysed bitmap with the planes that several detectors need, each computed once, by whoever asks first. Any
/// thread. (The planes are OpenCV matrices and declared in `VisionPlanes.h`, for detectors only.)
class KELVARA_EXPORT VisionImage
{
public:
    /// `upright` in any 32-bit format; its pixels are shared and must not change while this lives.
    explicit VisionImage(QImage upright);
    ~VisionImage();

    [[nodiscard]] const QImage& bitmap() const;
    [[nodiscard]] QSize size() const;

    struct Planes;
    [[nodiscard]] Planes& planes() const;

private:
    std::unique_ptr<Planes> d;
};

} // namespace kelvara
