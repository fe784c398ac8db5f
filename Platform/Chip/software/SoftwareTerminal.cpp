#include "Platform/Chip/software/SoftwareTerminal.h"

#include "Platform/Chip/messaging/Apdu.h"
#include "Platform/Chip/transport/AnswerToReset.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>

namespace kelvara::chip::software {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Failure = TransportError::Kind;

/// How often a cancel token, which wakes nobody, is looked at.
constexpr auto kLook = 20ms;

/// Commands of the short form have at most so many bytes.
constexpr std::size_t kLongestShortCommand = 4 + 1 + 255 + 1;

bool isExtended(ByteView command)
{
    return command.size() > kLongestShortCommand || (command.size() >= 7 && command[4] == 0);
}

/// So far away that it never comes, and near enough to be added to.
Clock::time_point deadlineAfter(std::chrono::milliseconds delay)
{
    constexpr std::chrono::milliseconds longest = 24h * 365;
    return Clock::now() + std::clamp(delay, std::chrono::milliseconds(0), longest);
}

} // namespace

/// What terminal and channels share.
struct SoftwareTerminal::Field
{
    mutable std::mutex mutex; ///< Of everything here. Never held while a chip works.
    std::condition_variable changed;
    std::shared_ptr<SoftwareChip> chip; ///< In the field.
    std::shared_ptr<SoftwareChip> lostChip; ///< On its way back.
    Clock::time_point returnsAt;
    std::optional<std::chrono::milliseconds> returnDelay;
    std::uint64_t presentation = 0; ///< Goes up whenever a chip comes or goes.
    bool isUnplugged = false;
    bool passesExtendedLength = true;
    Counts counts;

    // All of these want the lock to be held.

    void put(std::shared_ptr<SoftwareChip> other)
    {
        ++presentation;
        if (other)
            ++counts.presentations;
        chip = std::move(other);
        lostChip.reset();
        changed.notify_all();
    }
    void loseChip()
    {
        auto gone = std::move(chip);
        put(nullptr);
        if (!returnDelay)
            return;
        lostChip = std::move(gone);
        returnsAt = deadlineAfter(*returnDelay);
    }
    void returnChipWhenDue()
    {
        if (lostChip && Clock::now() >= returnsAt)
            put(std::move(lostChip));
    }
};

class SoftwareTerminal::Channel final : public CardChannel
{
public:
    Channel(std::shared_ptr<Field> field, std::shared_ptr<SoftwareChip> chip, std::uint64_t presentation,
        bool passesExtendedLength, const CancelToken& cancel)
        : m_field(std::move(field)), m_chip(std::move(chip)), m_presentation(presentation),
          m_passesExtendedLength(passesExtendedLength), m_cancel(cancel)
    { }

    [[nodiscard]] std::variant<Bytes, TransportError> transmit(ByteView command) override
    {
        {
            const std::lock_guard lock(m_field->mutex);
            if (auto problem = interruption())
                return *problem;
            if (isExtended(command) && !m_field->passesExtendedLength)
                return TransportError { Failure::Failed, "The reader passes no commands of extended length." };
            ++m_field->counts.commands;
        }
        SoftwareChip::Reaction reaction = m_chip->react(command);
        const auto due = deadlineAfter(reaction.delay);
        std::unique_lock lock(m_field->mutex);
        while (!interruption() && Clock::now() < due)
            m_field->changed.wait_until(lock, std::min(due, Clock::now() + kLook));
        if (auto problem = interruption())
            return *problem;
        if (!reaction.isLost)
            return std::move(reaction.answer);
        m_field->loseChip();
        return *interruption();
    }

    [[nodiscard]] bool passesExtendedLength() const override { return m_passesExtendedLength; }

private:
    /// Why no command gets through any more; wants the lock to be held.
    [[nodiscard]] std::optional<TransportError> interruption() const
    {
        if (m_field->isUnplugged)
            return TransportError { Failure::NoReader, "The reader was unplugged." };
        if (m_cancel.isCancelled())
            return TransportError { Failure::Cancelled, {} };
        if (m_field->presentation != m_presentation)
            return TransportError { Failure::CardLost, "The card left the field." };
        return std::nullopt;
    }

    std::shared_ptr<Field> m_field;
    std::shared_ptr<SoftwareChip> m_chip;
    std::uint64_t m_presentation;
    bool m_passesExtendedLength;
    const CancelToken& m_cancel;
};

SoftwareTerminal::SoftwareTerminal() : d(std::make_shared<Field>()) { }

SoftwareTerminal::SoftwareTerminal(std::shared_ptr<SoftwareChip> chip) : SoftwareTerminal()
{
    place(std::move(chip));
}

SoftwareTerminal::~SoftwareTerminal() = default;

void SoftwareTerminal::place(std::shared_ptr<SoftwareChip> chip)
{
    const std::lock_guard lock(d->mutex);
    if (!d->isUnplugged)
        d->put(std::move(chip));
}

void SoftwareTerminal::remove()
{
    place(nullptr);
}

void SoftwareTerminal::setReturnAfterLoss(std::optional<std::chrono::milliseconds> delay)
{
    const std::lock_guard lock(d->mutex);
    d->returnDelay = delay;
}

void SoftwareTerminal::unplug()
{
    const std::lock_guard lock(d->mutex);
    d->put(nullptr);
    d->isUnplugged = true;
}

void SoftwareTerminal::plugIn()
{
    const std::lock_guard lock(d->mutex);
    d->isUnplugged = false;
}

void SoftwareTerminal::setPassesExtendedLength(bool passes)
{
    const std::lock_guard lock(d->mutex);
    d->passesExtendedLength = passes;
}

SoftwareTerminal::Counts SoftwareTerminal::counts() const
{
    const std::lock_guard lock(d->mutex);
    return d->counts;
}

bool SoftwareTerminal::isAvailable() const
{
    const std::lock_guard lock(d->mutex);
    return !d->isUnplugged;
}

std::variant<std::unique_ptr<CardChannel>, TransportError> SoftwareTerminal::waitForCard(
    std::chrono::milliseconds timeout, const CancelToken& cancel)
{
    const auto deadline = deadlineAfter(timeout);
    std::unique_lock lock(d->mutex);
    while (true) {
        if (d->isUnplugged)
            return TransportError { Failure::NoReader, "The reader was unplugged." };
        if (cancel.isCancelled())
            return TransportError { Failure::Cancelled, {} };
        d->returnChipWhenDue();
        if (d->chip)
            break;
        const auto now = Clock::now();
        if (now >= deadline)
            return TransportError { Failure::NoCard, "No card was presented in time." };
        auto until = std::min(deadline, now + kLook);
        if (d->lostChip)
            until = std::min(until, d->returnsAt);
        d->changed.wait_until(lock, until);
    }
    ++d->counts.connections;
    const std::shared_ptr<SoftwareChip> chip = d->chip;
    const std::uint64_t presentation = d->presentation;
    const bool passesExtendedLength = d->passesExtendedLength;
    lock.unlock();
    chip->powerUp();
    return std::make_unique<Channel>(
        d, chip, presentation, passesExtendedLength && announcesExtendedLength(chip->answerToReset()), cancel);
}

} // namespace kelvara::chip::software
