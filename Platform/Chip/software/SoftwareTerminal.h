#pragma once

#include "Platform/Chip/software/SoftwareChip.h"
#include "Platform/Chip/transport/CardTerminal.h"
#include "Platform/Foundation/Export.h"

namespace kelvara::chip::software {

/// A contactless reader in software, to which a host's test holds chips in software as a person would hold cards. Give
/// it to the app in place of the device's own (`NFCReaderSession::of`).
///
/// Any thread for everything but `waitForCard` and channels, which are the reader's own. A channel may outlive its
/// terminal.
class KELVARA_EXPORT SoftwareTerminal final : public CardTerminal
{
public:
    SoftwareTerminal();
    /// With a chip in the field from the beginning.
    explicit SoftwareTerminal(std::shared_ptr<SoftwareChip> chip);
    ~SoftwareTerminal() override;

    /// Holds a chip to the reader; one that is there is taken away. Wakes who waits for it.
    void place(std::shared_ptr<SoftwareChip> chip);
    /// Takes the chip away, in the middle of a command too.
    void remove();
    /// A chip that was lost by fault comes back after this time, as a person would hold it there again. Absent, as it
    /// is at first: it stays away until it is placed again.
    void setReturnAfterLoss(std::optional<std::chrono::milliseconds> delay);

    /// Pulls the reader out: from now on there is none, for a command under way too. A chip lies there no more.
    void unplug();
    void plugIn();

    /// Whether this reader passes commands of extended length; true at first. Others fail, and are not asked for when
    /// the channel tells so. Counts for channels that are opened from now on.
    void setPassesExtendedLength(bool passes);

    struct Counts
    {
        unsigned commands = 0; ///< Sent to chips.
        unsigned presentations = 0; ///< Times that a chip came into the field.
        unsigned connections = 0; ///< Channels that were opened.
    };
    [[nodiscard]] Counts counts() const;

    /// True until the reader is unplugged.
    [[nodiscard]] bool isAvailable() const override;
    /// A chip that is in the field is powered up. The token stops delayed answers as well.
    [[nodiscard]] std::variant<std::unique_ptr<CardChannel>, TransportError> waitForCard(
        std::chrono::milliseconds timeout, const CancelToken& cancel) override;

private:
    struct Field;
    class Channel;

    std::shared_ptr<Field> d; ///< Shared with the channels.
};

} // namespace kelvara::chip::software
