#pragma once

#include "Platform/Chip/access/AccessProtocol.h"
#include "Platform/Chip/access/MrzKey.h"
#include "Platform/Chip/crypto/RandomSource.h"

namespace kelvara::chip {

/// Basic access control (ICAO Doc 9303-11 §4.3), the terminal's side. The application of the document is selected
/// before.
class Bac final : public AccessProtocol
{
public:
    explicit Bac(const MrzKey& key, RandomSource random = secureRandom());

private:
    void advance(const ResponseApdu& response) override;
    void authenticate(const ResponseApdu& response);
    void finish(const ResponseApdu& response);

    SessionKeys m_documentKeys;
    RandomSource m_random;
    Bytes m_ownChallenge; ///< RND.IFD; empty until the chip's challenge came.
    Bytes m_chipChallenge; ///< RND.IC
    Bytes m_ownKey; ///< K.IFD
};

/// Parts that both sides have in common.
namespace bac {
inline constexpr std::size_t challengeSize = 8;
inline constexpr std::size_t keyMaterialSize = 16;
inline constexpr std::size_t cryptogramSize = 2 * challengeSize + keyMaterialSize;

/// The text encrypted and closed with its checksum.
[[nodiscard]] Bytes sealed(const SessionKeys& documentKeys, ByteView text);
/// The text of such a cryptogram; absent when it has another size or the checksum is wrong.
[[nodiscard]] std::optional<Bytes> opened(const SessionKeys& documentKeys, ByteView cryptogram);
/// The session of both sides' key material and challenges.
[[nodiscard]] SessionKeys session(
    ByteView terminalKey, ByteView chipKey, ByteView terminalChallenge, ByteView chipChallenge);
} // namespace bac

} // namespace kelvara::chip
