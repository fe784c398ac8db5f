#pragma once

#include "Demo/CardMovie.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>

namespace kelvara::demo {

/// A movie as a replay camera's generator. Each run of the camera has a copy, and with it pictures of its own, which
/// end with the run: a camera that stands still takes no memory. One thread at a time.
class Film
{
public:
    explicit Film(std::shared_ptr<CardMovie> movie) : m_movie(std::move(movie)) { }

    [[nodiscard]] QImage operator()(std::int64_t index, std::chrono::microseconds time);

private:
    [[nodiscard]] QImage& freePicture();

    std::shared_ptr<CardMovie> m_movie;
    std::array<QImage, 6> m_pictures; ///< Reused when nobody looks at them any more.
};

} // namespace kelvara::demo
