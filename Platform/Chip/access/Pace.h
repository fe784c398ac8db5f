#pragma once

#include "Platform/Chip/access/AccessProtocol.h"
#include "Platform/Chip/access/PacePassword.h"
#include "Platform/Chip/access/PaceSelection.h"

namespace kelvara::chip {

/// What the chip authentication mapping leaves behind: the chip has bound itself to its static key, and whoever has
/// read the signed EF.CardSecurity can tell whether it holds that key.
struct MappedChipAuthentication
{
    GroupPointer group;
    Bytes mappingKey; ///< PK_Map,IC
    Bytes data; ///< CA_IC

    /// Whether one of the keys is the chip's own: only then is the chip the one that the keys were signed for. The keys
    /// must come from a file that passive authentication has found genuine.
    [[nodiscard]] bool isProvenBy(const SecurityInfos& cardSecurity) const;
};

/// Password authenticated connection establishment (ICAO Doc 9303-11 §4.4), the terminal's side. Done on the master
/// file, before the application is selected.
class Pace final : public AccessProtocol
{
public:
    Pace(PaceSelection selection, const PacePassword& password, RandomSource random = secureRandom());

    /// After success with that mapping; absent else.
    [[nodiscard]] const std::optional<MappedChipAuthentication>& chipAuthentication() const
    {
        return m_chipAuthentication;
    }

private:
    enum class Step { Select, Nonce, Map, Agree, Confirm };

    void advance(const ResponseApdu& response) override;
    void requestNonce(const ResponseApdu& response);
    void startMapping(const ResponseApdu& response);
    void finishMapping(const ResponseApdu& response);
    void agree(const ResponseApdu& response);
    void confirm(const ResponseApdu& response);
    void authenticate(Bytes data, Step step);
    bool readChipAuthentication(const ResponseApdu& response);

    PaceSelection m_selection;
    Bytes m_passwordKey;
    RandomSource m_random;
    Step m_step = Step::Select;
    Bytes m_nonce;
    Bytes m_terminalNonce; ///< Of the integrated mapping.
    KeyPair m_pair; ///< For mapping, then for agreement.
    Bytes m_chipMappingKey;
    Bytes m_chipKey;
    SessionKeys m_keys;
    std::optional<MappedChipAuthentication> m_chipAuthentication;
};

} // namespace kelvara::chip
