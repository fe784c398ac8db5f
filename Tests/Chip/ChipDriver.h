#pragma once

#include "Platform/Chip/access/ActiveAuthentication.h"
#include "Platform/Chip/access/Bac.h"
#include "Platform/Chip/access/ChipAuthentication.h"
#include "Platform/Chip/access/Pace.h"
#include "Platform/Chip/lds/DataGroup15.h"
#include "Platform/Chip/reading/FileReading.h"
#include "Platform/Chip/software/SoftwareChip.h"

#include <functional>
#include <gtest/gtest.h>

namespace kelvara::chip {

/// Talks to a chip as a reader would, with the terminal's side of every protocol.
class ChipDriver
{
public:
    using Transmit = std::function<Bytes(ByteView command)>;

    explicit ChipDriver(const std::shared_ptr<software::SoftwareChip>& chip, bool extended = true)
        : ChipDriver([chip](ByteView command) { return chip->transmit(command); }, chip->mrzKey(), extended)
    {
        m_chip = chip;
        restart();
    }
    /// Through whatever lies between.
    ChipDriver(Transmit transmit, const QString& key, bool extended)
        : m_transmit(std::move(transmit)), m_keyText(key.toStdString()), m_blockSize(BlockSize::widest(extended))
    { }

    /// Whatever was agreed is forgotten on both sides.
    void restart()
    {
        m_chip->powerUp();
        m_session.reset();
    }

    /// In the session where there is one. A session that the chip ended gives the status word and is over.
    ResponseApdu send(const CommandApdu& command)
    {
        if (!m_session)
            return sendPlain(command);
        const auto answer = ResponseApdu::decoded(m_transmit(m_session->protect(command)->encoded()));
        if (!answer) {
            m_session.reset();
            return {};
        }
        auto plain = m_session->unprotect(*answer);
        if (auto* inner = std::get_if<ResponseApdu>(&plain))
            return *inner;
        m_session.reset();
        m_failure = std::get<MessagingFailure>(plain);
        return { {}, m_failure->sw };
    }
    /// Past the session.
    ResponseApdu sendPlain(const CommandApdu& command)
    {
        return ResponseApdu::decoded(m_transmit(command.encoded())).value_or(ResponseApdu {});
    }

    bool run(AccessProtocol& protocol)
    {
        while (protocol.command())
            protocol.receive(send(*protocol.command()));
        if (auto session = protocol.takeSession())
            m_session.emplace(std::move(*session));
        return protocol.succeeded();
    }

    std::uint16_t selectApplication()
    {
        return send({ 0x00, 0xA4, 0x04, 0x0C, *fromHex("A0000002471001"), std::nullopt }).sw;
    }
    std::uint16_t selectMasterFile() { return send({ 0x00, 0xA4, 0x00, 0x0C, {}, std::nullopt }).sw; }
    std::uint16_t select(DataGroupId id)
    {
        const std::uint16_t file = entryOf(id).fileId;
        return send({ 0x00, 0xA4, 0x02, 0x0C, { static_cast<std::uint8_t>(file >> 8), static_cast<std::uint8_t>(file) },
                        std::nullopt })
            .sw;
    }

    bool openByBac()
    {
        Bac bac(key());
        return selectApplication() == 0x9000 && run(bac);
    }
    /// By the best way that EF.CardAccess offers.
    bool openByPace(std::optional<PacePassword> password = {})
    {
        selectMasterFile();
        const auto file = read(DataGroupId::CardAccess);
        const auto infos = file ? SecurityInfos::parsed(*file) : std::nullopt;
        const auto way = infos ? choosePace(*infos) : std::nullopt;
        if (!way)
            return false;
        Pace pace(*way, password.value_or(PacePassword::fromMrz(key())));
        const bool opened = run(pace);
        m_mapped = pace.chipAuthentication();
        return opened;
    }

    /// Absent where the chip refuses; `refusal` tells why.
    std::optional<Bytes> read(DataGroupId id)
    {
        FileReading reading(entryOf(id).fileId, m_blockSize);
        while (reading.state() == FileReading::State::Reading)
            reading.feed(send(reading.next()));
        m_refusal = reading.failure();
        return reading.state() == FileReading::State::Done ? std::optional(reading.content()) : std::nullopt;
    }

    /// With the key of the file that the chip gives; the session must carry a command afterwards.
    bool authenticateChip()
    {
        const auto file = read(DataGroupId::DG14);
        const auto infos = file ? SecurityInfos::parsed(*file) : std::nullopt;
        const auto key = infos ? chooseChipAuthentication(*infos) : std::nullopt;
        if (!key)
            return false;
        ChipAuthentication authentication(*key);
        return run(authentication) && select(DataGroupId::DG1) == 0x9000;
    }
    std::optional<AccessFailure> authenticateActively()
    {
        const auto file = read(DataGroupId::DG15);
        const auto dataGroup14 = read(DataGroupId::DG14);
        const auto infos = dataGroup14 ? SecurityInfos::parsed(*dataGroup14) : std::nullopt;
        if (!file)
            return AccessFailure { AccessError::Unsupported, m_refusal };
        ActiveAuthentication authentication(
            DataGroup15::parse(*file)->publicKey, infos ? infos->activeAuthentication : std::nullopt);
        run(authentication);
        return authentication.failure();
    }

    MrzKey key() const { return *MrzKey::fromText(m_keyText); }
    bool hasSession() const { return m_session.has_value(); }
    std::uint16_t refusal() const { return m_refusal; }
    const std::optional<MessagingFailure>& failure() const { return m_failure; }
    const std::optional<MappedChipAuthentication>& mapped() const { return m_mapped; }

private:
    Transmit m_transmit;
    std::string m_keyText;
    std::shared_ptr<software::SoftwareChip> m_chip;
    BlockSize m_blockSize;
    std::optional<SecureMessaging> m_session;
    std::optional<MessagingFailure> m_failure;
    std::optional<MappedChipAuthentication> m_mapped;
    std::uint16_t m_refusal = 0;
};

/// The chip of a profile; a failed test where there is none.
inline std::shared_ptr<software::SoftwareChip> chipOf(const software::ChipProfile& profile)
{
    auto made = software::SoftwareChip::make(profile);
    if (const auto* problem = std::get_if<QString>(&made)) {
        ADD_FAILURE() << problem->toStdString();
        return nullptr;
    }
    return std::get<std::shared_ptr<software::SoftwareChip>>(made);
}

/// Small and quick to make: a tiny portrait, and one authority for all.
inline software::ChipProfile quickProfile()
{
    static const auto authority = software::TestAuthority::make();
    static const QImage picture = [] {
        QImage drawn(48, 64, QImage::Format_RGB32);
        drawn.fill(0xFF8899AA);
        return drawn;
    }();
    software::ChipProfile profile;
    profile.portrait = software::PortraitOptions { picture, ImageKind::Jpeg, 80, {} };
    profile.authority = authority;
    return profile;
}

} // namespace kelvara::chip
