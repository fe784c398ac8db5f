#pragma once

#include "Platform/Vision/VisionDetectors.h"

namespace kelvara {

/// Finds long lines of dark, evenly spaced characters, as the machine-readable zone of a document has them, when the
/// document nearly fills the image: lines of 28 to 48 characters that span two thirds of the image's width or more and
/// are turned by up to 6°. Shorter lines, words, labels, and texture are passed over; an ordinary printed line of the
/// same length may be reported.
///
/// Boxes surround the ink of a line with a little air, so that a glyph's edge is never cut. Each line is an
/// observation, from top to bottom. Bounded work; stateless, any thread, several at a time.
class TextLineDetector final : public TextRectangleDetector
{
public:
    [[nodiscard]] std::vector<VNTextObservation> detect(const VisionImage& image) const override;
};

} // namespace kelvara
