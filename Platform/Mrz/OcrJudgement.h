#pragma once

#include "Platform/Mrz/MrzLineReading.h"
#include "Platform/Mrz/OcrGlyphs.h"
#include "Platform/Mrz/OcrLayout.h"
#include "Platform/Mrz/TesseractSheetReader.h"

namespace kelvara::ocr {

/// Internal. The height of a capital in a line, in pixels: from letters and digits alike by what each of them measures
/// in OCR-B. `text` has a character for each cell; O and 0 count for nothing.
[[nodiscard]] double capitalOf(const Line& line, const QString& text);

/// Internal. A line's reading from what Tesseract sees in its cells and from a second opinion on their patches. Where
/// the two agree there is hardly a doubt left; where they differ, the second is believed as far as it is sure.
[[nodiscard]] MrzLineReading judged(
    const Line& line, const std::vector<Candidates>& candidates, const GlyphPatches& patches);

} // namespace kelvara::ocr
