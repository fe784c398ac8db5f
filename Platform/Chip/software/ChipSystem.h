#pragma once

#include "Platform/Chip/software/ChipBac.h"
#include "Platform/Chip/software/ChipContent.h"
#include "Platform/Chip/software/ChipMessaging.h"
#include "Platform/Chip/software/ChipPace.h"
#include "Platform/Chip/software/TraceEntry.h"

namespace kelvara::chip::software {

/// The operating system of a chip in software: sessions and access rights around its files and protocols. Faults are
/// not its business. One thread at a time.
class ChipSystem
{
public:
    /// `content` absent: a card without the document's application.
    ChipSystem(const ChipProfile& profile, std::optional<ChipContent> content);

    /// Answers whatever bytes come; `trace` gets the command and the answer in plain.
    [[nodiscard]] ResponseApdu answer(ByteView bytes, TraceEntry& trace);
    void powerUp();
    /// As when a command was wrongly protected: keys and rights are gone.
    void endSession();

    void setRefusedReadEndsSession(bool ends) { m_refusedReadEndsSession = ends; }

    [[nodiscard]] const std::optional<ChipContent>& content() const { return m_content; }

private:
    /// What opened the chip.
    enum class Access { None, Bac, Pace };

    [[nodiscard]] ResponseApdu answerProtected(const CommandApdu& command, bool isExtended, TraceEntry& trace);
    [[nodiscard]] ResponseApdu carryOut(const CommandApdu& command, std::uint32_t room);
    [[nodiscard]] ResponseApdu answerPace(const CommandApdu& command);
    [[nodiscard]] ResponseApdu answerBac(const CommandApdu& command);
    [[nodiscard]] ResponseApdu answerAgreement(const CommandApdu& command);
    [[nodiscard]] ResponseApdu answerSigner(const CommandApdu& command);
    [[nodiscard]] ResponseApdu answerFiles(const CommandApdu& command, std::uint32_t room);
    [[nodiscard]] bool isOpen() const { return !m_hasAccessControl || m_access != Access::None; }
    [[nodiscard]] bool isLocked(std::uint16_t fileId) const;
    void beginAgreedSession();

    bool m_isPassport;
    bool m_hasAccessControl;
    bool m_hasBac;
    bool m_acceptsExtendedLength;
    Forgeries m_forgeries;
    bool m_refusedReadEndsSession;
    std::optional<ChipContent> m_content;
    ChipFiles m_files;
    std::optional<ChipPace> m_pace;
    std::optional<ChipBac> m_bac;
    ChipKeyAgreement m_agreement;
    std::optional<ChipMessaging> m_session;
    std::optional<SessionKeys> m_agreed; ///< Of the command in hand: they count from the next one on.
    Access m_access = Access::None;
};

} // namespace kelvara::chip::software
