#include "Platform/Chip/software/SoftwareChip.h"

#include "Platform/Chip/software/ChipSystem.h"

#include <algorithm>
#include <mutex>
#include <random>
#include <thread>

namespace kelvara::chip::software {

namespace {

using namespace std::chrono_literals;
using Kind = ChipFault::Kind;

constexpr std::chrono::milliseconds kLongestDelay = 60s;
constexpr std::size_t kLongestAnswer = 65'538;

} // namespace

struct SoftwareChip::State
{
    State(const ChipProfile& profile, std::optional<ChipContent> content)
        : system(profile, std::move(content)), announcesExtendedLength(profile.announcesExtendedLength),
          faults(profile.faults), random(profile.faults.seed)
    { }

    [[nodiscard]] const ChipFault* fault(Kind kind) const
    {
        const auto found = std::find_if(faults.list.begin(), faults.list.end(), [&](const ChipFault& one) {
            const bool isLife = one.counting == ChipFault::Counting::ChipLife;
            return one.kind == kind && one.command == (isLife ? commandsOfLife : commandsOfPresentation);
        });
        return found == faults.list.end() ? nullptr : &*found;
    }

    [[nodiscard]] Bytes answer(ByteView command, TraceEntry& entry)
    {
        if (const ChipFault* end = fault(Kind::SessionEnd)) {
            system.endSession();
            entry.command = CommandApdu::decoded(command).value_or(CommandApdu {});
            entry.name = commandName(entry.command);
            entry.response = { {}, end->sw };
            return entry.response.encoded();
        }
        return system.answer(command, entry).encoded();
    }

    void spoil(Bytes& answer)
    {
        if (const ChipFault* flip = fault(Kind::BitFlip); flip != nullptr && !answer.empty()) {
            const std::size_t byte = flip->byte ? *flip->byte : std::size_t { random() };
            const unsigned bit = flip->byte ? flip->bit : static_cast<unsigned>(random());
            answer[byte % answer.size()] ^= static_cast<std::uint8_t>(1U << bit % 8);
        }
        if (const ChipFault* status = fault(Kind::StatusWord))
            answer = ResponseApdu { {}, status->sw }.encoded();
        if (const ChipFault* garbage = fault(Kind::Garbage)) {
            answer.resize(std::min(garbage->size, kLongestAnswer));
            std::generate(answer.begin(), answer.end(), [this] { return static_cast<std::uint8_t>(random()); });
        }
        if (fault(Kind::EmptyAnswer) != nullptr)
            answer.clear();
    }

    [[nodiscard]] std::chrono::milliseconds delay() const
    {
        const ChipFault* own = fault(Kind::Delay);
        return std::clamp(faults.delay, 0ms, kLongestDelay)
            + (own == nullptr ? 0ms : std::clamp(own->delay, 0ms, kLongestDelay));
    }

    std::mutex mutex; ///< Of everything below.
    ChipSystem system;
    const bool announcesExtendedLength;
    ChipFaults faults;
    std::mt19937 random;
    unsigned commandsOfLife = 0;
    unsigned commandsOfPresentation = 0;
    bool isLost = false;
    Trace trace;
};

std::variant<std::shared_ptr<SoftwareChip>, QString> SoftwareChip::make(const ChipProfile& profile)
{
    std::optional<ChipContent> content;
    if (profile.isPassport) {
        auto made = ChipContent::of(profile);
        if (auto* problem = std::get_if<QString>(&made))
            return std::move(*problem);
        content = std::get<ChipContent>(std::move(made));
    }
    return std::shared_ptr<SoftwareChip>(new SoftwareChip(std::make_unique<State>(profile, std::move(content))));
}

SoftwareChip::SoftwareChip(std::unique_ptr<State> state) : d(std::move(state)) { }

SoftwareChip::~SoftwareChip() = default;

SoftwareChip::Reaction SoftwareChip::react(ByteView command)
{
    Reaction reaction;
    TraceEntry entry;
    Trace trace;
    {
        const std::lock_guard lock(d->mutex);
        reaction.isLost = d->isLost;
        if (d->isLost)
            return reaction;
        ++d->commandsOfPresentation;
        entry.number = ++d->commandsOfLife;
        if (d->fault(Kind::TagLost) != nullptr) {
            d->isLost = true;
            d->system.powerUp();
            reaction.isLost = true;
            return reaction;
        }
        reaction.answer = d->answer(command, entry);
        d->spoil(reaction.answer);
        reaction.delay = d->delay();
        trace = d->trace;
    }
    if (trace)
        trace(entry);
    return reaction;
}

Bytes SoftwareChip::transmit(ByteView command)
{
    Reaction reaction = react(command);
    std::this_thread::sleep_for(reaction.delay);
    return std::move(reaction.answer);
}

void SoftwareChip::powerUp()
{
    const std::lock_guard lock(d->mutex);
    d->system.powerUp();
    d->commandsOfPresentation = 0;
    d->isLost = false;
}

Bytes SoftwareChip::answerToReset() const
{
    // Contactless cards as PC/SC presents them: the historical bytes hold the card's capabilities; a check byte ends.
    Bytes atr { 0x3B, 0x85, 0x80, 0x01, 0x80, 0x73, 0x80, 0x01,
        static_cast<std::uint8_t>(d->announcesExtendedLength ? 0x40 : 0x00) };
    std::uint8_t check = 0;
    for (std::size_t i = 1; i < atr.size(); ++i)
        check ^= atr[i];
    atr.push_back(check);
    return atr;
}

void SoftwareChip::setFaults(ChipFaults faults)
{
    const std::lock_guard lock(d->mutex);
    d->random.seed(faults.seed);
    d->system.setRefusedReadEndsSession(faults.refusedReadEndsSession);
    d->faults = std::move(faults);
}

void SoftwareChip::setTrace(Trace trace)
{
    const std::lock_guard lock(d->mutex);
    d->trace = std::move(trace);
}

QString SoftwareChip::mrzKey() const
{
    const std::lock_guard lock(d->mutex);
    const auto& content = d->system.content();
    return content ? QString::fromStdString(content->zone.keyText()) : QString();
}

std::optional<TestAuthority> SoftwareChip::authority() const
{
    const std::lock_guard lock(d->mutex);
    const auto& content = d->system.content();
    return content ? std::optional(content->authority) : std::nullopt;
}

std::map<DataGroupId, Bytes> SoftwareChip::files() const
{
    const std::lock_guard lock(d->mutex);
    const auto& content = d->system.content();
    return content ? content->files : std::map<DataGroupId, Bytes> {};
}

VirtualReaderCard::Card virtualReaderCard(std::shared_ptr<SoftwareChip> chip)
{
    Bytes atr = chip->answerToReset();
    return { [chip](ByteView command) { return chip->transmit(command); },
        [chip = std::move(chip)] { chip->powerUp(); }, std::move(atr) };
}

} // namespace kelvara::chip::software
