#include "Platform/Vision/VisionImage.h"

#include "Platform/Vision/VisionPlanes.h"

namespace kelvara {

VisionImage::VisionImage(QImage upright) : d(std::make_unique<Planes>(std::move(upright))) { }

VisionImage::~VisionImage() = default;

const QImage& VisionImage::bitmap() const
{
    return d->bitmap;
}

QSize VisionImage::size() const
{
    return d->bitmap.size();
}

VisionImage::Planes& VisionImage::planes() const
{
    return *d;
}

} // namespace kelvara
