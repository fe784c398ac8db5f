#pragma once

#include "Demo/CardContents.h"
#include "Platform/Chip/software/SoftwareTerminal.h"

#include <QString>
#include <QTemporaryFile>
#include <QUrl>

#include <memory>
#include <variant>

namespace kelvara::demo {

/// The chip of the card before the camera, played by software, and the reader that it is held to. Issued by an
/// authority made for this run, which vouches for nothing else. Main thread.
class HeldChip
{
public:
    /// With `getsLost` the card slips away once in the middle of the read. A sentence if there can be no such chip.
    [[nodiscard]] static std::variant<std::unique_ptr<HeldChip>, QString> make(
        const CardContents& contents, bool getsLost);

    [[nodiscard]] const std::shared_ptr<chip::software::SoftwareTerminal>& terminal() const { return m_terminal; }
    /// The authority's public certificate, in a file that goes with this object.
    [[nodiscard]] QUrl masterListURL() const { return QUrl::fromLocalFile(m_certificate.fileName()); }

    /// Holds the card to the reader, again if it is there.
    void hold() { m_terminal->place(m_chip); }
    void takeAway() { m_terminal->remove(); }

private:
    explicit HeldChip(std::shared_ptr<chip::software::SoftwareChip> chip);

    std::shared_ptr<chip::software::SoftwareChip> m_chip;
    std::shared_ptr<chip::software::SoftwareTerminal> m_terminal;
    QTemporaryFile m_certificate;
};

} // namespace kelvara::demo
