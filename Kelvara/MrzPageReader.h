#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Mrz/QKMRZParser.h"
#include "Platform/Mrz/TesseractEngine.h"
#include "Platform/Vision/MrzBandFinder.h"

#include <QImage>

#include <optional>
#include <vector>

namespace kelvara {

/// What a picture's machine-readable zone was read as, and how.
struct MrzPageReading
{
    /// How long each stage took, in milliseconds.
    struct Stages
    {
        double search = 0; ///< For the band.
        double preprocess = 0; ///< Drawing the band evenly lit and upright, and making it black and white.
        double ocr = 0;
        double parse = 0;
    };

    std::optional<MrzBand> band; ///< Absent when nothing looks like a zone.
    std::vector<MrzLineReading> text; ///< The band's lines as the OCR gave them; what several readings agree upon.
    QStringList lines; ///< The document's own lines as they seem to be printed; see `printedLines`.
    std::optional<QKMRZResult> result; ///< Absent when the lines are none of a zone.
    std::optional<TesseractError> error; ///< Why the OCR could not read at all.
    int attempts = 0; ///< How many times a band was drawn and read.
    Stages stages;
};

/// Reads the machine-readable zone of a whole document in a still picture: finds the band, draws it upright and evenly
/// lit and takes the way of the live view from there (`preprocessImage`, `TesseractEngine`, `mrzLines`,
/// `QKMRZParser`). What is not vouched for is drawn and read again in other ways; readings that are vouched for and
/// differ make none valid. One thread at a time. Needs `FilterVendor::registerFilters`.
class KELVARA_EXPORT MrzPageReader
{
public:
    /// `engine` and `parser` are used, not copied, and must live as long.
    MrzPageReader(TesseractEngine& engine, const QKMRZParser& parser) : m_engine(engine), m_parser(parser) { }

    /// `picture` is upright.
    [[nodiscard]] MrzPageReading read(const QImage& picture);

private:
    TesseractEngine& m_engine;
    const QKMRZParser& m_parser;
};

} // namespace kelvara
