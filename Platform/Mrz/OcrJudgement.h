#pragma once

#include "Platform/Mrz/MrzLineReading.h"
#include "Platform/Mrz/OcrLayout.h"
#include "Platform/Mrz/TesseractSheetReader.h"

namespace kelvara::ocr {

/// Internal. A line's reading from what Tesseract sees in its cells and from what is known of OCR-B: a zero is taller
/// than the letter O.
[[nodiscard]] MrzLineReading judged(const Line& line, const std::vector<Candidates>& candidates);

} // namespace kelvara::ocr
