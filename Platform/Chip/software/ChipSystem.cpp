#include "Platform/Chip/software/ChipSystem.h"

#include "Platform/Chip/messaging/ProtectedObjects.h"

#include <algorithm>
#include <utility>

namespace kelvara::chip::software {

namespace {

constexpr std::uint32_t kAnyLength = 65536;
constexpr std::uint8_t kChaining = 0x10;

enum Instruction : std::uint8_t {
    ManageSecurityEnvironment = 0x22,
    GeneralAuthenticate = 0x86,
    Select = 0xA4,
    ReadBinary = 0xB0,
    ReadBinaryOdd = 0xB1,
};

enum Status : std::uint16_t {
    WrongLength = 0x6700,
    SecurityNotSatisfied = 0x6982,
    ConditionsNotSatisfied = 0x6985,
    ProtectionMissing = 0x6987,
    ProtectionWrong = 0x6988,
    FileNotFound = 0x6A82,
    ReferenceNotFound = 0x6A88,
    InstructionUnknown = 0x6D00,
    ClassUnknown = 0x6E00,
};

ResponseApdu status(std::uint16_t sw)
{
    return { {}, sw };
}

bool isProtected(const CommandApdu& command)
{
    return (command.cla & protection::classBits) == protection::classBits;
}

/// Whether the bytes of a command have the extended form, whatever the lengths are.
bool hasExtendedForm(ByteView bytes)
{
    return bytes.size() >= 7 && bytes[4] == 0;
}

bool isRead(const CommandApdu& command)
{
    return command.ins == ReadBinary || command.ins == ReadBinaryOdd;
}

bool selectsApplication(const CommandApdu& command)
{
    return command.ins == Select && command.p1 == 0x04;
}

} // namespace

ChipSystem::ChipSystem(const ChipProfile& profile, std::optional<ChipContent> content)
    : m_isPassport(profile.isPassport && content), m_hasAccessControl(profile.hasAccessControl),
      m_hasBac(profile.hasBac), m_acceptsExtendedLength(profile.acceptsExtendedLength), m_forgeries(profile.forgeries),
      m_refusedReadEndsSession(profile.faults.refusedReadEndsSession), m_content(std::move(content)),
      m_files(profile.reading), m_agreement({})
{
    if (m_content) {
        for (const auto& [id, file] : m_content->files)
            m_files.add(entryOf(id).fileId, file, entryOf(id).inApplication);
    }
    powerUp();
}

void ChipSystem::powerUp()
{
    endSession();
    m_files.reset();
    if (!m_content)
        return;
    const ChipSecrets& secrets = m_content->secrets;
    m_pace.reset();
    if (m_hasAccessControl && !secrets.paceOffers.empty())
        m_pace.emplace(secrets.paceOffers, m_content->passwords, secrets.staticKey);
    m_bac.reset();
    if (m_hasAccessControl && m_hasBac)
        m_bac.emplace(m_content->zone.key());
    m_agreement = ChipKeyAgreement(secrets.agreementKeys);
}

void ChipSystem::endSession()
{
    m_session.reset();
    m_agreed.reset();
    m_access = Access::None;
}

ResponseApdu ChipSystem::answer(ByteView bytes, TraceEntry& trace)
{
    const auto command = CommandApdu::decoded(bytes);
    const bool isExtended = hasExtendedForm(bytes);
    if (!command || (isExtended && !m_acceptsExtendedLength)) {
        endSession();
        return trace.response = status(WrongLength);
    }
    trace.command = *command;
    trace.name = commandName(*command);
    if (m_session && isProtected(*command))
        return answerProtected(*command, isExtended, trace);
    if (m_session)
        endSession();
    trace.response
        = isProtected(*command) ? status(SecurityNotSatisfied) : carryOut(*command, isExtended ? kAnyLength : 256);
    beginAgreedSession();
    return trace.response;
}

ResponseApdu ChipSystem::answerProtected(const CommandApdu& command, bool isExtended, TraceEntry& trace)
{
    constexpr std::size_t checksumObject = 10;
    const bool hasChecksum = command.data.size() >= checksumObject
        && command.data[command.data.size() - checksumObject] == protection::checksum;
    auto plain = hasChecksum ? m_session->unprotect(command) : std::nullopt;
    if (!plain) {
        endSession();
        return trace.response = status(hasChecksum ? ProtectionWrong : ProtectionMissing);
    }
    trace.isProtected = true;
    trace.command = std::move(*plain);
    const std::size_t room = isExtended ? kAnyLength - 64 : m_session->greatestShortResponse();
    trace.response = carryOut(trace.command, static_cast<std::uint32_t>(room));
    if (trace.response.data.size() > room)
        trace.response = status(WrongLength);
    if (m_refusedReadEndsSession && isRead(trace.command) && trace.response.data.empty()
        && trace.response.sw != 0x9000) {
        endSession();
        return trace.response;
    }
    ResponseApdu answer = m_session->protect(trace.response);
    beginAgreedSession();
    return answer;
}

void ChipSystem::beginAgreedSession()
{
    if (auto keys = std::exchange(m_agreed, std::nullopt))
        m_session.emplace(std::move(*keys));
}

ResponseApdu ChipSystem::carryOut(const CommandApdu& command, std::uint32_t room)
{
    const bool isChained = command.cla == kChaining && command.ins == GeneralAuthenticate;
    if (command.cla != 0x00 && !isChained)
        return status(ClassUnknown);
    if (m_pace && m_pace->isFor(command))
        return answerPace(command);
    if (m_bac && ChipBac::isFor(command))
        return answerBac(command);
    if (m_isPassport && m_agreement.isFor(command))
        return answerAgreement(command);
    if (m_isPassport && ChipSigner::isFor(command))
        return answerSigner(command);
    if (m_isPassport && command.ins == ManageSecurityEnvironment)
        return status(ReferenceNotFound);
    if (m_isPassport && command.ins == GeneralAuthenticate)
        return status(ConditionsNotSatisfied);
    if (command.ins == Select || isRead(command))
        return answerFiles(command, room);
    return status(InstructionUnknown);
}

ResponseApdu ChipSystem::answerPace(const CommandApdu& command)
{
    if (m_session)
        return status(ConditionsNotSatisfied);
    ResponseApdu response = m_pace->answer(command);
    m_agreed = m_pace->takeSession();
    if (m_agreed)
        m_access = Access::Pace;
    return response;
}

ResponseApdu ChipSystem::answerBac(const CommandApdu& command)
{
    if (m_session || !m_files.isApplicationSelected())
        return status(ConditionsNotSatisfied);
    ResponseApdu response = m_bac->answer(command);
    m_agreed = m_bac->takeSession();
    if (m_agreed)
        m_access = Access::Bac;
    return response;
}

ResponseApdu ChipSystem::answerAgreement(const CommandApdu& command)
{
    if (!isOpen())
        return status(SecurityNotSatisfied);
    if (m_forgeries.contains(Forgery::RefusesChipAuthentication))
        return status(ReferenceNotFound);
    ResponseApdu response = m_agreement.answer(command);
    m_agreed = m_agreement.takeSession();
    return response;
}

ResponseApdu ChipSystem::answerSigner(const CommandApdu& command)
{
    const auto& signer = m_content->secrets.signer;
    if (!signer || m_forgeries.contains(Forgery::RefusesActiveAuthentication))
        return status(InstructionUnknown);
    return isOpen() ? signer->answer(command) : status(SecurityNotSatisfied);
}

bool ChipSystem::isLocked(std::uint16_t fileId) const
{
    const auto id = dataGroupOfFileId(fileId, m_files.isApplicationSelected());
    if (id == DataGroupId::DG3 || id == DataGroupId::DG4) // terminal authentication, which only issuers' readers can
        return true;
    if (id == DataGroupId::CardSecurity)
        return m_hasAccessControl && m_access != Access::Pace;
    return m_files.isApplicationSelected() && !isOpen();
}

ResponseApdu ChipSystem::answerFiles(const CommandApdu& command, std::uint32_t room)
{
    if (!m_isPassport && selectsApplication(command))
        return status(FileNotFound);
    std::optional<std::uint16_t> meant;
    if (isRead(command))
        meant = m_files.fileMeantBy(command);
    else if (!selectsApplication(command) && command.data.size() == 2)
        meant = static_cast<std::uint16_t>(command.data[0] << 8 | command.data[1]);
    constexpr std::uint16_t masterFile = 0x3F00;
    if (meant && meant != masterFile && isLocked(*meant))
        return status(SecurityNotSatisfied);
    return *m_files.answer(command, room);
}

} // namespace kelvara::chip::software
