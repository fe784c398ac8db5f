#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Imaging/UIImage.h"
#include "Platform/Mrz/MrzLineReading.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <variant>
#include <vector>

namespace kelvara {

/// Which of Tesseract's recognisers reads. Raw values are the library's.
enum class TesseractEngineMode { TesseractOnly = 0, LstmOnly = 1, Combined = 2, Default = 3 };

/// Where an engine finds its trained data: the bytes of the model themselves, or a folder (of files or of Qt's
/// resources) with a file LANGUAGE.traineddata.
using TesseractDataSource = std::variant<QString, QByteArray>;

/// What was read: the lines from top to bottom, and the same as one text with a line feed after each.
struct TesseractText
{
    QString string;
    std::vector<MrzLineReading> lines;
};

/// Why nothing could be read.
struct TesseractError
{
    enum class Kind {
        MissingModel, ///< No readable trained data. Remedy: ship the file, name the right folder.
        UnusableModel, ///< Tesseract refuses it, or it has nothing for this mode. Remedy: train it for this mode.
        NoImage, ///< The image has no bitmap content, or is unreasonably large.
        Failed ///< The library gave up on this image.
    };

    Kind kind;
    QString sentence;
};

using TesseractResult = std::variant<TesseractText, TesseractError>;

/// Reads lines of OCR-B capitals, digits and fillers at a fixed pitch, as machine-readable zones have them, with
/// Tesseract. It finds the places of the glyphs itself (lines may be turned by up to 4°), frees them of speckle, and
/// tells O from 0 by their heights. A place of a line without ink is read as a filler of no certainty. An image without
/// such lines gives an empty text.
///
/// Made without cost: the model is loaded by the first reading, in a few dozen milliseconds. One thread at a time
/// ("videoQueue"). The first engine of a process silences the messages of Leptonica, which it uses.
class KELVARA_EXPORT TesseractEngine
{
public:
    TesseractEngine(QString language, TesseractDataSource dataSource, TesseractEngineMode mode);
    ~TesseractEngine();
    TesseractEngine(TesseractEngine&&) noexcept;
    TesseractEngine& operator=(TesseractEngine&&) noexcept;

    /// The text of one image of dark glyphs on light ground, capitals at least 10 pixels high (best about 40).
    [[nodiscard]] TesseractResult performOCR(const UIImage& on);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace kelvara
