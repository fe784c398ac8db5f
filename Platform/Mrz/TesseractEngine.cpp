#include "Platform/Mrz/TesseractEngine.h"

#include "Platform/Mrz/OcrBitmap.h"
#include "Platform/Mrz/OcrJudgement.h"
#include "Platform/Mrz/TesseractSheetReader.h"

#include <QFile>

#include <exception>
#include <optional>

namespace kelvara {

namespace {

constexpr qint64 kMostPixels = qint64 { 1 } << 25;

std::variant<QByteArray, TesseractError> modelOf(const QString& language, const TesseractDataSource& source)
{
    if (const auto* bytes = std::get_if<QByteArray>(&source)) {
        if (bytes->isEmpty())
            return TesseractError { TesseractError::Kind::MissingModel,
                QStringLiteral("The OCR model \"%1\" is missing: its data are empty.").arg(language) };
        return *bytes;
    }
    QFile file(std::get<QString>(source) + QStringLiteral("/%1.traineddata").arg(language));
    if (!file.open(QIODevice::ReadOnly))
        return TesseractError { TesseractError::Kind::MissingModel,
            QStringLiteral("The OCR model \"%1\" is missing: %2 cannot be opened.").arg(language, file.fileName()) };
    return file.readAll();
}

/// Tesseract's own reader of models throws at some damaged contents.
std::variant<std::unique_ptr<ocr::TesseractSheetReader>, TesseractError> makeReader(
    const QString& language, const QByteArray& model, TesseractEngineMode mode)
{
    try {
        return ocr::TesseractSheetReader::make(language, model, mode);
    } catch (const std::exception&) {
        return TesseractError { TesseractError::Kind::UnusableModel,
            QStringLiteral("The OCR model \"%1\" is damaged.").arg(language) };
    }
}

} // namespace

struct TesseractEngine::Private
{
    QString language;
    TesseractDataSource source;
    TesseractEngineMode mode;
    std::unique_ptr<ocr::TesseractSheetReader> reader;
    std::optional<TesseractError> error; ///< Why there is no reader; it is not tried again.

    void load()
    {
        if (reader || error)
            return;
        auto model = modelOf(language, source);
        if (auto* missing = std::get_if<TesseractError>(&model)) {
            error = std::move(*missing);
            return;
        }
        auto made = makeReader(language, std::get<QByteArray>(model), mode);
        if (auto* refused = std::get_if<TesseractError>(&made))
            error = std::move(*refused);
        else
            reader = std::move(std::get<std::unique_ptr<ocr::TesseractSheetReader>>(made));
    }
};

TesseractEngine::TesseractEngine(QString language, TesseractDataSource dataSource, TesseractEngineMode mode)
    : d(new Private { std::move(language), std::move(dataSource), mode, nullptr, std::nullopt })
{ }

TesseractEngine::~TesseractEngine() = default;
TesseractEngine::TesseractEngine(TesseractEngine&&) noexcept = default;
TesseractEngine& TesseractEngine::operator=(TesseractEngine&&) noexcept = default;

TesseractResult TesseractEngine::performOCR(const UIImage& on)
{
    d->load();
    if (d->error)
        return *d->error;
    const QImage image = on;
    if (image.isNull() || qint64 { image.width() } * image.height() > kMostPixels)
        return TesseractError { TesseractError::Kind::NoImage,
            image.isNull() ? QStringLiteral("There is no image to read.")
                           : QStringLiteral("The image is too large to be read.") };
    const auto failed = [] {
        return TesseractError { TesseractError::Kind::Failed, QStringLiteral("Tesseract gave up on the image.") };
    };
    try {
        const cv::Mat ink = ocr::inkOf(image);
        const ocr::Layout layout = ocr::findLayout(ink);
        TesseractText text;
        if (layout.lines.empty())
            return text;
        const auto found = d->reader->read(layout, ocr::layOut(layout));
        if (!found)
            return failed();
        const ocr::GlyphPatches patches(ink);
        for (std::size_t l = 0; l < layout.lines.size(); ++l) {
            text.lines.push_back(ocr::judged(layout.lines[l], (*found)[l], patches));
            text.string += text.lines.back().text + u'\n';
        }
        return text;
    } catch (const std::exception&) {
        return failed();
    }
}

} // namespace kelvara
