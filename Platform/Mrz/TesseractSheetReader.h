#pragma once

#include "Platform/Mrz/OcrSheet.h"
#include "Platform/Mrz/TesseractEngine.h"

#include <QChar>

#include <optional>
#include <utility>
#include <vector>

namespace tesseract {
class TessBaseAPI;
}

namespace kelvara::ocr {

/// What a glyph may be, likeliest first, with the library's rating of each (0 to 100; no probability).
struct Candidates
{
    std::vector<std::pair<QChar, float>> ranked;
    bool split = false; ///< Tesseract took it for several glyphs.
};

/// Internal. Tesseract, reading sheets of glyphs.
class TesseractSheetReader
{
public:
    /// The reader, or why there is none.
    [[nodiscard]] static std::variant<std::unique_ptr<TesseractSheetReader>, TesseractError> make(
        const QString& language, const QByteArray& model, TesseractEngineMode mode);
    ~TesseractSheetReader();

    /// For each line and cell of the layout what Tesseract sees there; nothing where it sees nothing. Absent when it
    /// fails.
    [[nodiscard]] std::optional<std::vector<std::vector<Candidates>>> read(const Layout& layout, const Sheet& sheet);

private:
    explicit TesseractSheetReader(std::unique_ptr<tesseract::TessBaseAPI> api);
    void collect(std::vector<std::vector<Candidates>>& found) const;
    void readAlone(std::size_t line, std::size_t cell, Candidates& to);

    const std::unique_ptr<tesseract::TessBaseAPI> m_api;
};

} // namespace kelvara::ocr
