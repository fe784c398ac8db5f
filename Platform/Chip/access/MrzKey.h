#pragma once

#include "Platform/Chip/Bytes.h"

#include <optional>
#include <string_view>

namespace kelvara::chip {

/// The secret that the machine-readable zone holds (ICAO Doc 9303-11 §4.3.2 and §9.7.2).
class MrzKey
{
public:
    /// From the key text: document number and its check digit, birth date and its check digit, expiry date and its
    /// check digit. Numbers of fewer than nine characters are filled up. Absent when a character or a check digit
    /// cannot be: such a key opens nothing, and asking a chip would only cost the person time.
    [[nodiscard]] static std::optional<MrzKey> fromText(std::string_view text);
    /// From the fields without check digits; shorter document numbers are filled up.
    [[nodiscard]] static std::optional<MrzKey> fromFields(
        std::string_view documentNumber, std::string_view birthDate, std::string_view expiryDate);

    /// K: what PACE derives its key from.
    [[nodiscard]] const Bytes& secret() const { return m_secret; }
    /// K_seed: what BAC derives its keys from.
    [[nodiscard]] ByteView seed() const { return ByteView(m_secret).first(16); }

private:
    explicit MrzKey(Bytes secret) : m_secret(std::move(secret)) { }

    Bytes m_secret;
};

} // namespace kelvara::chip
