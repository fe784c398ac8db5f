#pragma once

namespace kelvara::demo {

/// What is held before a camera.
enum class Subject { CardFront, CardBack, Selfie };

} // namespace kelvara::demo
