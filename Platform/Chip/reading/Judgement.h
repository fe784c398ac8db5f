#pragma once

#include "Platform/Chip/NFCPassportModel.h"
#include "Platform/Chip/reading/ReadState.h"
#include "Platform/Chip/trust/MasterList.h"

#include <memory>

namespace kelvara::chip {

/// What is asked of a read.
struct ReadWish
{
    std::vector<DataGroupId> tags; ///< Empty: everything.
    bool skipsSecureElements = true;
    std::optional<MasterList> authorities; ///< Absent: signers are not checked.

    /// Whether the data group is to be delivered.
    [[nodiscard]] bool wants(DataGroupId id) const;
};

/// Decides, file by file and at the end, whether the data are what their issuer signed. Nothing is delivered that was
/// not judged. The reader's thread only.
class Judgement
{
public:
    /// Both are borrowed.
    Judgement(ReadState& state, const ReadWish& wish) : m_state(state), m_wish(wish) { }

    /// Reads EF.SOD from the shelf and judges who signed it.
    [[nodiscard]] std::optional<NFCPassportReaderError> takeSecurityObject();
    /// Compares a file that has come in with its signed hash.
    [[nodiscard]] std::optional<NFCPassportReaderError> judge(DataGroupId id);
    /// Reads DG14 from the shelf and compares with it what the chip has offered.
    [[nodiscard]] std::optional<ReadStop> takeDataGroup14();
    /// Whether DG1 belongs to the key.
    [[nodiscard]] std::optional<NFCPassportReaderError> judgeZone();
    /// After the last file. The passport, or why there is none.
    [[nodiscard]] std::variant<std::shared_ptr<NFCPassportModel>, NFCPassportReaderError> conclude();

private:
    [[nodiscard]] std::optional<NFCPassportReaderError> judgeSigner() const;
    [[nodiscard]] std::optional<NFCPassportReaderError> judgeCardSecurity() const;
    [[nodiscard]] std::optional<NFCPassportReaderError> judgeAbsences();
    [[nodiscard]] PassiveAuthentication passiveAuthentication() const;

    ReadState& m_state;
    const ReadWish& m_wish;
};

} // namespace kelvara::chip
