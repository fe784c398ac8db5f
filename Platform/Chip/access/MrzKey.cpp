#include "Platform/Chip/access/MrzKey.h"

#include "Platform/Chip/crypto/Digest.h"

namespace kelvara::chip {

namespace {

constexpr std::size_t dateSize = 6;
constexpr std::size_t leastNumberSize = 9;
constexpr std::size_t greatestNumberSize = 22; ///< What a document of format TD1 can spill over to.

/// -1 for a character that does not occur in the zone.
int valueOf(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'A' && character <= 'Z')
        return character - 'A' + 10;
    return character == '<' ? 0 : -1;
}

std::optional<char> checkDigit(std::string_view field)
{
    constexpr int weights[] = { 7, 3, 1 };
    int sum = 0;
    for (std::size_t i = 0; i < field.size(); ++i) {
        const int value = valueOf(field[i]);
        if (value < 0)
            return std::nullopt;
        sum += value * weights[i % 3];
    }
    return static_cast<char>('0' + sum % 10);
}

/// Whether the field's last character is the check digit of the others.
bool isChecked(std::string_view field)
{
    return checkDigit(field.substr(0, field.size() - 1)) == field.back();
}

} // namespace

std::optional<MrzKey> MrzKey::fromText(std::string_view text)
{
    constexpr std::size_t dates = 2 * (dateSize + 1);
    if (text.size() < 2 + dates || text.size() > greatestNumberSize + 1 + dates)
        return std::nullopt;
    const std::size_t number = text.size() - dates;
    if (!isChecked(text.substr(0, number)) || !isChecked(text.substr(number, dateSize + 1))
        || !isChecked(text.substr(number + dateSize + 1)))
        return std::nullopt;
    // Fillers weigh nothing, so that the check digit of a number that was not filled up is the right one.
    const std::size_t fillers = number - 1 < leastNumberSize ? leastNumberSize - (number - 1) : 0;
    const Bytes whole = bytes(text);
    const ByteView view(whole);
    return MrzKey(digest(
        DigestAlgorithm::SHA1, joined({ view.first(number - 1), Bytes(fillers, '<'), view.subspan(number - 1) })));
}

std::optional<MrzKey> MrzKey::fromFields(
    std::string_view documentNumber, std::string_view birthDate, std::string_view expiryDate)
{
    if (birthDate.size() != dateSize || expiryDate.size() != dateSize || documentNumber.empty()
        || documentNumber.size() > greatestNumberSize)
        return std::nullopt;
    Bytes text = bytes(documentNumber);
    const auto view = [](const Bytes& characters) {
        return std::string_view(reinterpret_cast<const char*>(characters.data()), characters.size());
    };
    const auto numberCheck = checkDigit(view(text));
    const auto birthCheck = checkDigit(birthDate);
    const auto expiryCheck = checkDigit(expiryDate);
    if (!numberCheck || !birthCheck || !expiryCheck)
        return std::nullopt;
    text.push_back(static_cast<std::uint8_t>(*numberCheck));
    text = joined({ text, bytes(birthDate), bytes(std::string_view(&*birthCheck, 1)), bytes(expiryDate),
        bytes(std::string_view(&*expiryCheck, 1)) });
    return fromText(view(text));
}

} // namespace kelvara::chip
