#include "Tools/Cli/MrzLook.h"

#include "Kelvara/FilterVendor.h"

#include <algorithm>
#include <cmath>

namespace kelvara::cli {

namespace {

QString nameOf(MrzDocumentFormat format)
{
    switch (format) {
    case MrzDocumentFormat::TD1:
        return QStringLiteral("TD1");
    case MrzDocumentFormat::TD2:
        return QStringLiteral("TD2");
    case MrzDocumentFormat::TD3:
        return QStringLiteral("TD3");
    case MrzDocumentFormat::MRVA:
        return QStringLiteral("MRVA");
    case MrzDocumentFormat::MRVB:
        return QStringLiteral("MRVB");
    }
    return {};
}

QString nameOf(MrzMark::Kind kind)
{
    switch (kind) {
    case MrzMark::Kind::CorrectedByGrammar:
        return QStringLiteral("correctedByGrammar");
    case MrzMark::Kind::CorrectedByCheckDigit:
        return QStringLiteral("correctedByCheckDigit");
    case MrzMark::Kind::Ambiguous:
        return QStringLiteral("ambiguous");
    case MrzMark::Kind::LengthMended:
        return QStringLiteral("lengthMended");
    }
    return {};
}

QJsonValue jsonOf(const std::optional<QString>& text)
{
    return text ? QJsonValue(*text) : QJsonValue();
}

QJsonValue jsonOf(const std::optional<QDate>& date)
{
    return date ? QJsonValue(date->toString(Qt::ISODate)) : QJsonValue();
}

QJsonValue jsonOf(QChar character)
{
    return character.isNull() ? QJsonValue() : QJsonValue(QString(character));
}

QJsonValue checkOf(const std::optional<QString>& digit, std::optional<bool> isValid)
{
    if (!digit && !isValid)
        return {}; // The format has none.
    return QJsonObject { { QStringLiteral("digit"), jsonOf(digit) },
        { QStringLiteral("valid"), isValid ? QJsonValue(*isValid) : QJsonValue() } };
}

void insertResult(QJsonObject& facts, const QKMRZResult& result)
{
    facts.insert(QStringLiteral("format"), nameOf(result.format));
    facts.insert(QStringLiteral("documentType"), result.documentType);
    facts.insert(QStringLiteral("countryCode"), result.countryCode);
    facts.insert(QStringLiteral("surnames"), result.surnames);
    facts.insert(QStringLiteral("givenNames"), result.givenNames);
    facts.insert(QStringLiteral("documentNumber"), result.documentNumber);
    facts.insert(QStringLiteral("nationality"), result.nationality);
    facts.insert(QStringLiteral("birthDate"), jsonOf(result.birthDate));
    facts.insert(QStringLiteral("sex"), jsonOf(result.sex));
    facts.insert(QStringLiteral("expiryDate"), jsonOf(result.expiryDate));
    facts.insert(QStringLiteral("personalNumber"), result.personalNumber);
    facts.insert(QStringLiteral("personalNumber2"), jsonOf(result.personalNumber2));
    facts.insert(QStringLiteral("checkDigits"),
        QJsonObject { { QStringLiteral("documentNumber"),
                          checkOf(result.documentNumberCheckDigit, result.isDocumentNumberValid) },
            { QStringLiteral("birthDate"), checkOf(result.birthDateCheckDigit, result.isBirthDateValid) },
            { QStringLiteral("expiryDate"), checkOf(result.expiryDateCheckDigit, result.isExpiryDateValid) },
            { QStringLiteral("personalNumber"),
                checkOf(result.personalNumberCheckDigit, result.isPersonalNumberValid) },
            { QStringLiteral("final"), checkOf(result.finalCheckDigit, result.isFinalCheckDigitValid) } });
    facts.insert(QStringLiteral("allCheckDigitsValid"), result.allCheckDigitsValid);
    QJsonArray marks;
    for (const MrzMark& mark : result.marks)
        marks << QJsonObject { { QStringLiteral("line"), mark.line }, { QStringLiteral("column"), mark.column },
            { QStringLiteral("read"), jsonOf(mark.read) }, { QStringLiteral("taken"), jsonOf(mark.taken) },
            { QStringLiteral("kind"), nameOf(mark.kind) } };
    facts.insert(QStringLiteral("marks"), marks);
}

/// The band's corners moved apart, so that no line between them crosses a glyph.
QPolygonF around(const MrzBand& band)
{
    const double away = 0.6 * band.pitch;
    const QPointF along = band.corners[1] - band.corners[0];
    const QPointF down = band.corners[3] - band.corners[0];
    const QPointF right = along * (away / std::max(1.0, std::hypot(along.x(), along.y())));
    const QPointF below = down * (away / std::max(1.0, std::hypot(down.x(), down.y())));
    return { { band.corners[0] - right - below, band.corners[1] + right - below, band.corners[2] + right + below,
        band.corners[3] - right + below } };
}

} // namespace

MrzLook::MrzLook(const QString& modelFolder)
    : m_engine(QStringLiteral("ocrb"), modelFolder, TesseractEngineMode::TesseractOnly), m_parser(true),
      m_reader(m_engine, m_parser)
{
    FilterVendor::registerFilters();
}

std::optional<QString> MrzLook::problem()
{
    QImage blank(1, 1, QImage::Format_RGB32);
    blank.fill(Qt::white);
    const TesseractResult result = m_engine.performOCR(blank);
    const auto* error = std::get_if<TesseractError>(&result);
    return error ? std::optional(error->sentence) : std::nullopt;
}

Finding MrzLook::at(const QImage& picture)
{
    const MrzPageReading reading = m_reader.read(picture);
    Finding finding;
    finding.milliseconds = { { QStringLiteral("search"), rounded(reading.stages.search) },
        { QStringLiteral("preprocess"), rounded(reading.stages.preprocess) },
        { QStringLiteral("ocr"), rounded(reading.stages.ocr) },
        { QStringLiteral("parse"), rounded(reading.stages.parse) } };
    if (reading.band) {
        QPolygonF corners;
        for (const QPointF& corner : reading.band->corners)
            corners << corner;
        finding.facts.insert(QStringLiteral("corners"), cli::jsonOf(corners));
        finding.outlines.push_back(around(*reading.band));
    }
    QStringList text;
    for (const MrzLineReading& line : reading.text)
        text << line.text;
    finding.facts.insert(QStringLiteral("text"), QJsonArray::fromStringList(text));
    finding.facts.insert(QStringLiteral("attempts"), reading.attempts);
    if (reading.error) {
        finding.reason = reading.error->sentence;
        finding.isBroken = true;
        return finding;
    }
    if (!reading.band) {
        finding.reason = QStringLiteral("Nothing in the picture looks like a machine-readable zone.");
        return finding;
    }
    if (!reading.result) {
        finding.reason
            = QStringLiteral("There are lines like those of a machine-readable zone, but they do not read as one.");
        return finding;
    }
    finding.found = true;
    finding.facts.insert(QStringLiteral("lines"), QJsonArray::fromStringList(reading.lines));
    insertResult(finding.facts, *reading.result);
    return finding;
}

} // namespace kelvara::cli
