#include "Demo/Film.h"

#include <algorithm>

namespace kelvara::demo {

QImage& Film::freePicture()
{
    const auto free = std::find_if(
        m_pictures.begin(), m_pictures.end(), [](const QImage& image) { return image.isNull() || image.isDetached(); });
    QImage& image = free != m_pictures.end() ? *free : m_pictures.front();
    if (image.isNull() || free == m_pictures.end())
        image = QImage(m_movie->size(), QImage::Format_ARGB32_Premultiplied);
    return image;
}

QImage Film::operator()(std::int64_t, std::chrono::microseconds time)
{
    QImage& image = freePicture();
    m_movie->draw(image, time);
    return image; // the painter is gone by now: a picture that is being painted would be copied whole
}

} // namespace kelvara::demo
