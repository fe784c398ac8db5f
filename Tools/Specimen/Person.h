#pragma once

#include <QImage>
#include <QRectF>

#include <cstdint>
#include <memory>

namespace kelvara::specimen {

/// Head and shoulders of one invented person, cut out of the studio.
struct Person
{
    QImage image; ///< `Format_ARGB32_Premultiplied`, transparent around the person.
    QRectF face; ///< Forehead to chin, ear to ear, in the image's pixels.
    QRectF head; ///< Hair to chin, hair to hair.
};

/// The person of this seed: the one photograph there is, made another's by small changes of features, colours and light
/// that keep it a natural face. The last few are kept. Any thread.
[[nodiscard]] std::shared_ptr<const Person> personOf(std::uint32_t seed);

} // namespace kelvara::specimen
