#include "Platform/Mrz/TesseractSheetReader.h"

#include <leptonica/allheaders.h>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

namespace kelvara::ocr {

namespace {

using tesseract::ChoiceIterator;
using tesseract::OcrEngineMode;
using tesseract::ResultIterator;
using tesseract::TessBaseAPI;

/// The same as the model's own configuration, so that models without one serve too.
constexpr std::pair<const char*, const char*> kSettings[] = {
    { "debug_file", "/dev/null" }, { "load_system_dawg", "0" }, { "load_freq_dawg", "0" }, { "load_unambig_dawg", "0" },
    { "load_punc_dawg", "0" }, { "load_number_dawg", "0" }, { "load_bigram_dawg", "0" },
    { "tessedit_char_whitelist", "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789<" }, { "textord_single_height_mode", "1" },
    { "chop_enable", "0" },
    { "classify_enable_learning", "0" }, // or what was read before would change what is read now
};

// Which parts of a model are there is told by its table of contents: how many, then where each begins, or -1.
constexpr int kClassicPart = 3;
constexpr int kNetworkPart = 17;

bool hasPart(const QByteArray& model, int part)
{
    const auto number = [&](qsizetype at, auto zero) {
        if (at + qsizetype(sizeof zero) <= model.size())
            std::memcpy(&zero, model.constData() + at, sizeof zero);
        return zero;
    };
    const auto parts = number(0, std::int32_t { 0 });
    const auto begin = number(4 + 8 * qsizetype { part }, std::int64_t { 0 });
    return part < parts && begin > 0 && begin < model.size();
}

std::vector<std::pair<QChar, float>> choicesAt(const ResultIterator& symbol)
{
    std::vector<std::pair<QChar, float>> ranked;
    ChoiceIterator choice(symbol);
    do {
        const QString text = QString::fromUtf8(choice.GetUTF8Text());
        // Of a smudge the library may make a space.
        if (text.size() == 1 && (text.front().isLetterOrNumber() || text.front() == u'<'))
            ranked.emplace_back(text.front(), choice.Confidence());
    } while (choice.Next());
    return ranked;
}

} // namespace

TesseractSheetReader::TesseractSheetReader(std::unique_ptr<TessBaseAPI> api) : m_api(std::move(api)) { }

TesseractSheetReader::~TesseractSheetReader() = default;

std::variant<std::unique_ptr<TesseractSheetReader>, TesseractError> TesseractSheetReader::make(
    const QString& language, const QByteArray& model, TesseractEngineMode mode)
{
    setMsgSeverity(L_SEVERITY_NONE);
    const auto refused = [&](const QString& why) {
        return TesseractError { TesseractError::Kind::UnusableModel,
            QStringLiteral("The OCR model \"%1\" cannot be used: %2.").arg(language, why) };
    };
    if (model.size() < 64)
        return refused(QStringLiteral("it is not trained data"));
    // Rather than refuse, the library would change to a recogniser that the model has data for.
    const bool needsClassic = mode == TesseractEngineMode::TesseractOnly || mode == TesseractEngineMode::Combined;
    const bool needsNetwork = mode == TesseractEngineMode::LstmOnly || mode == TesseractEngineMode::Combined;
    if ((needsClassic && !hasPart(model, kClassicPart)) || (needsNetwork && !hasPart(model, kNetworkPart)))
        return refused(QStringLiteral("it has no data for this engine mode"));
    auto api = std::make_unique<TessBaseAPI>();
    api->SetVariable("debug_file", "/dev/null");
    std::vector<std::string> names;
    std::vector<std::string> values;
    for (const auto& [name, value] : kSettings) {
        names.emplace_back(name);
        values.emplace_back(value);
    }
    if (api->Init(model.constData(), int(model.size()), language.toUtf8().constData(), OcrEngineMode(int(mode)),
            nullptr, 0, &names, &values, false, nullptr)
        != 0)
        return refused(QStringLiteral("Tesseract does not accept it for this engine mode"));
    return std::unique_ptr<TesseractSheetReader>(new TesseractSheetReader(std::move(api)));
}

std::optional<std::vector<std::vector<Candidates>>> TesseractSheetReader::read(const Layout& layout, const Sheet& sheet)
{
    std::vector<std::vector<Candidates>> found;
    for (const Line& line : layout.lines)
        found.emplace_back(line.cells.size());
    m_api->SetPageSegMode(tesseract::PSM_SINGLE_BLOCK);
    m_api->SetImage(sheet.image.data, sheet.image.cols, sheet.image.rows, 1, int(sheet.image.step));
    m_api->SetSourceResolution(300);
    if (m_api->Recognize(nullptr) != 0) {
        m_api->Clear();
        return std::nullopt;
    }
    collect(found);
    for (std::size_t l = 0; l < found.size(); ++l) {
        for (std::size_t c = 0; c < found[l].size(); ++c) {
            if (found[l][c].ranked.empty() && !layout.lines[l].cells[c].ink.empty())
                readAlone(l, c, found[l][c]);
        }
    }
    m_api->Clear();
    return found;
}

void TesseractSheetReader::collect(std::vector<std::vector<Candidates>>& found) const
{
    const std::unique_ptr<ResultIterator> symbol(m_api->GetIterator());
    if (!symbol || symbol->Empty(tesseract::RIL_SYMBOL))
        return;
    do {
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        if (!symbol->BoundingBox(tesseract::RIL_SYMBOL, &left, &top, &right, &bottom))
            continue;
        const int x = (left + right) / 2 - Sheet::kMargin;
        const int y = (top + bottom) / 2 - Sheet::kMargin;
        if (x < 0 || y < 0 || right - left > Sheet::kPitch)
            continue;
        const auto line = std::size_t(y / Sheet::kLinePitch);
        const auto cell = std::size_t(x / Sheet::kPitch);
        if (line >= found.size() || cell >= found[line].size())
            continue;
        Candidates& place = found[line][cell];
        // Two symbols in one place are pieces of one glyph: it is read again as a whole.
        if (place.ranked.empty() && !place.split)
            place.ranked = choicesAt(*symbol);
        else
            place = { {}, true };
    } while (symbol->Next(tesseract::RIL_SYMBOL));
}

void TesseractSheetReader::readAlone(std::size_t line, std::size_t cell, Candidates& to)
{
    const cv::Rect place = Sheet::place(line, cell);
    m_api->SetPageSegMode(tesseract::PSM_SINGLE_CHAR);
    m_api->SetRectangle(place.x, place.y, place.width, place.height);
    if (m_api->Recognize(nullptr) != 0)
        return;
    const std::unique_ptr<ResultIterator> symbol(m_api->GetIterator());
    if (symbol && !symbol->Empty(tesseract::RIL_SYMBOL))
        to.ranked = choicesAt(*symbol);
}

} // namespace kelvara::ocr
