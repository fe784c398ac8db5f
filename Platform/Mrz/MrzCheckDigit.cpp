#include "Platform/Mrz/MrzCheckDigit.h"

#include <array>

namespace kelvara {

int mrzCharacterValue(char16_t character)
{
    if (character >= u'0' && character <= u'9')
        return character - u'0';
    if (character >= u'A' && character <= u'Z')
        return character - u'A' + 10;
    return character == u'<' ? 0 : -1;
}

std::optional<int> mrzCheckDigit(QStringView text)
{
    constexpr std::array weights { 7, 3, 1 };
    int sum = 0;
    std::size_t at = 0;
    for (const QChar character : text) {
        const int value = mrzCharacterValue(character.unicode());
        if (value < 0)
            return std::nullopt;
        sum = (sum + value * weights[at]) % 10;
        at = (at + 1) % weights.size();
    }
    return sum;
}

bool hasMrzCheckDigit(QStringView text, char16_t digit)
{
    const std::optional<int> right = mrzCheckDigit(text);
    return right && digit == u'0' + *right;
}

bool isTurkishIdentityNumber(QStringView text)
{
    if (text.size() != 11 || text.front() == u'0')
        return false;
    std::array<int, 11> digits {};
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const char16_t character = text[static_cast<qsizetype>(i)].unicode();
        if (character < u'0' || character > u'9')
            return false;
        digits[i] = character - u'0';
    }
    const int odd = digits[0] + digits[2] + digits[4] + digits[6] + digits[8];
    const int even = digits[1] + digits[3] + digits[5] + digits[7];
    return digits[9] == (70 + odd * 7 - even) % 10 && digits[10] == (odd + even + digits[9]) % 10;
}

} // namespace kelvara
