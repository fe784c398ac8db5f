#include "Platform/Chip/reading/PassportReading.h"
#include "Platform/Chip/software/SoftwareChip.h"

#include <cstdlib>

using namespace kelvara;
using namespace kelvara::chip;
using software::ChipProfile;
using software::Forgery;
using software::SoftwareChip;

namespace {

/// The input, byte by byte; zeros once it has ended.
class Bits
{
public:
    explicit Bits(ByteView input) : m_rest(input) { }

    [[nodiscard]] bool isOver() const { return m_rest.empty(); }
    std::uint8_t next()
    {
        if (m_rest.empty())
            return 0;
        const std::uint8_t byte = m_rest[0];
        m_rest = m_rest.subspan(1);
        return byte;
    }
    /// A byte tells how many.
    Bytes several()
    {
        const std::size_t count = next();
        const ByteView part = first(m_rest, count);
        m_rest = m_rest.subspan(part.size());
        return bytes(part);
    }

private:
    ByteView m_rest;
};

constexpr std::size_t kMostCommands = 10'000; ///< No read may cost more.

/// A card whose answers the input spoils, or makes up; null chip: all of them are made up.
class SpoiltTerminal final : public CardTerminal
{
public:
    SpoiltTerminal(std::shared_ptr<SoftwareChip> chip, Bits bits) : m_chip(std::move(chip)), m_bits(bits) { plan(); }

    [[nodiscard]] bool isAvailable() const override { return true; }
    [[nodiscard]] std::variant<std::unique_ptr<CardChannel>, TransportError> waitForCard(
        std::chrono::milliseconds, const CancelToken&) override
    {
        if (m_chip)
            m_chip->powerUp();
        return std::unique_ptr<CardChannel>(std::make_unique<Channel>(*this));
    }

private:
    using Answer = std::variant<Bytes, TransportError>;

    class Channel final : public CardChannel
    {
    public:
        explicit Channel(SpoiltTerminal& terminal) : m_terminal(terminal) { }
        [[nodiscard]] Answer transmit(ByteView command) override { return m_terminal.answer(command); }
        [[nodiscard]] bool passesExtendedLength() const override { return true; }

    private:
        SpoiltTerminal& m_terminal;
    };

    /// How many answers stay as they are before the next one is spoilt.
    void plan() { m_untouched = m_bits.isOver() ? kMostCommands : m_bits.next(); }

    Answer answer(ByteView command)
    {
        if (++m_commands > kMostCommands)
            std::abort();
        const TransportError lost { TransportError::Kind::CardLost, "the card left" };
        if (!m_chip)
            return m_bits.isOver() ? Answer(lost) : Answer(m_bits.several());
        Bytes answer = m_chip->transmit(command);
        Bytes before = std::exchange(m_last, answer);
        if (m_untouched-- > 0)
            return answer;
        const std::uint8_t how = m_bits.next();
        switch (how % 8) {
        case 0:
            if (!answer.empty())
                answer[m_bits.next() % answer.size()] ^= static_cast<std::uint8_t>(1U << how / 8 % 8);
            break;
        case 1:
            answer.resize(std::min<std::size_t>(answer.size(), m_bits.next()));
            break;
        case 2:
            answer = m_bits.several();
            break;
        case 3:
            answer.resize(std::max<std::size_t>(answer.size(), 2));
            answer[answer.size() - 2] = m_bits.next();
            answer.back() = m_bits.next();
            break;
        case 4:
            answer = std::move(before);
            break;
        case 5:
            plan();
            return lost;
        case 6:
            answer = { m_bits.next(), m_bits.next() };
            break;
        default: { // beside what the chip says
            const Bytes more = m_bits.several();
            answer.insert(answer.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(answer.size(), how / 8)),
                more.begin(), more.end());
        }
        }
        plan();
        return answer;
    }

    std::shared_ptr<SoftwareChip> m_chip;
    Bits m_bits;
    Bytes m_last;
    std::size_t m_untouched = 0;
    std::size_t m_commands = 0;
};

ChipProfile smallProfile()
{
    ChipProfile profile;
    profile.portrait->picture = QImage(16, 20, QImage::Format_RGB32);
    profile.portrait->picture.fill(Qt::gray);
    profile.portrait->kind = ImageKind::Jpeg;
    profile.pace.clear();
    return profile;
}

/// Genuine ones of several makes; the last two are copies, which nothing must turn into passports.
constexpr std::size_t kGenuine = 4;
const std::vector<std::shared_ptr<SoftwareChip>>& chips()
{
    static const auto made = [] {
        std::vector<ChipProfile> profiles(kGenuine + 2, smallProfile());
        profiles[0].hasAccessControl = false;
        profiles[0].activeAuthentication.emplace().curve = "prime256v1";
        profiles[2].pace = { {} };
        profiles[3].pace = { { PaceMapping::ChipAuthentication, 13, CipherAlgorithm::AES128 } };
        profiles[4].forgeries = { Forgery::ChipAuthenticationClone };
        profiles[5].hasAccessControl = false;
        profiles[5].forgeries = { Forgery::ChangedDG1 };
        std::vector<std::shared_ptr<SoftwareChip>> all;
        for (const ChipProfile& profile : profiles)
            all.push_back(std::get<std::shared_ptr<SoftwareChip>>(SoftwareChip::make(profile)));
        return all;
    }();
    return made;
}

/// What is delivered is what is on the chip, byte by byte. Nothing signs EF.COM.
void expectTrue(const NFCPassportModel& passport, const SoftwareChip& chip)
{
    const auto files = chip.files();
    for (const auto& [id, group] : passport.dataGroupsRead) {
        if (id != DataGroupId::COM && id != DataGroupId::SOD && rawOf(group) != files.at(id))
            std::abort();
    }
    if (!passport.verification.passiveAuthentication || !passport.verification.passiveAuthentication->areHashesRight()
        || passport.faceImage.isNull())
        std::abort();
}

} // namespace

/// The first byte chooses the chip; the rest spoils its answers, or is all that there is to hear.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::size_t which = data[0] % (chips().size() + 1);
    const auto chip = which < chips().size() ? chips()[which] : nullptr;
    SpoiltTerminal terminal(chip, Bits({ data + 1, size - 1 }));
    const CancelToken cancel;
    PassportReading reading(
        *MrzKey::fromFields("D23145890", "740812", "320415"), {}, terminal, cancel, {}, [](const auto&) {});
    auto outcome = reading.run();
    const auto* const passport = std::get_if<std::shared_ptr<NFCPassportModel>>(&outcome);
    if (!passport)
        return 0;
    if (!chip || which >= kGenuine)
        std::abort();
    expectTrue(**passport, *chip);
    return 0;
}
