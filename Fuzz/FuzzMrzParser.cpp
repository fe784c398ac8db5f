#include "Platform/Mrz/QKMRZParser.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace kelvara;

namespace {

/// What holds of every result, whatever the text was.
void check(const std::optional<QKMRZResult>& result)
{
    if (!result || !result->allCheckDigitsValid)
        return;
    const bool isTrue = result->birthDate && result->expiryDate && result->isDocumentNumberValid
        && result->isBirthDateValid && result->isExpiryDateValid && result->isPersonalNumberValid.value_or(true)
        && result->isFinalCheckDigitValid.value_or(true) && !result->documentNumber.isEmpty();
    if (!isTrue)
        std::abort();
}

} // namespace

/// The first byte says how the rest is read: as UTF-8 or Latin-1 or UTF-16, with correction or without, with doubts or
/// without.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const unsigned mode = data[0];
    const auto* bytes = reinterpret_cast<const char*>(data + 1);
    const auto length = static_cast<qsizetype>(size - 1);
    QString text;
    if (mode & 1U) {
        text.resize(length / 2);
        for (qsizetype i = 0; i < text.size(); ++i)
            text[i] = QChar(static_cast<char16_t>(data[1 + 2 * i] | data[2 + 2 * i] << 8));
    } else {
        text = mode & 2U ? QString::fromLatin1(bytes, length) : QString::fromUtf8(bytes, length);
    }
    QKMRZParser parser((mode & 4U) == 0);
    parser.setToday([] { return QDate(2026, 6, 1); });
    const QStringList lines = text.split(u'\n');
    if ((mode & 8U) == 0) {
        check(parser.parse(lines));
        return 0;
    }
    std::vector<MrzLineReading> readings;
    std::size_t at = 0;
    for (const QString& line : lines) {
        MrzLineReading reading { line, {}, {} };
        // One list shorter than the text and one longer, now and then.
        const auto doubts = static_cast<std::size_t>(line.size() + (mode >> 4U)) % 100;
        for (std::size_t i = 0; i < doubts; ++i) {
            const std::uint8_t byte = data[at++ % size];
            reading.certainties.push_back(static_cast<float>(byte) / 200.0F);
            reading.alternatives.emplace_back(byte & 1U ? QString() : QString(QChar(byte)));
        }
        readings.push_back(std::move(reading));
    }
    check(parser.parse(readings));
    return 0;
}
