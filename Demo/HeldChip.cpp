#include "Demo/HeldChip.h"

#include <algorithm>

namespace kelvara::demo {

namespace {

using namespace chip::software;

/// How long a read takes, that its progress be seen; real cards take one to five seconds.
constexpr std::chrono::milliseconds kReading { 1500 };
constexpr std::chrono::milliseconds kSlowestAnswer { 40 };

// A read's commands: those that open the chip and prove it genuine, and one for every piece of its files. Readers ask
// for so much at once of a chip that takes short commands only.
constexpr unsigned kOpeningCommands = 24;
constexpr std::size_t kPiece = 224;

// Portraits of some 16 kilobytes, as on real chips.
constexpr int kThousandthsOfPixels = 25;
constexpr int kJpegQuality = 70;

unsigned commandsToRead(const SoftwareChip& chip)
{
    unsigned commands = kOpeningCommands;
    for (const auto& [id, file] : chip.files())
        commands += static_cast<unsigned>((file.size() + kPiece - 1) / kPiece);
    return commands;
}

PortraitOptions portraitOf(const CardContents& contents)
{
    // The encoder of JPEG 2000 works through a file: no place for a real face.
    PortraitOptions portrait;
    portrait.picture = contents.portrait;
    const bool isInvented = contents.portrait.isNull() || contents.isPortraitInvented;
    portrait.kind = isInvented ? chip::ImageKind::Jpeg2000 : chip::ImageKind::Jpeg;
    portrait.quality = isInvented ? kThousandthsOfPixels : kJpegQuality;
    return portrait;
}

} // namespace

HeldChip::HeldChip(std::shared_ptr<SoftwareChip> chip)
    : m_chip(std::move(chip)), m_terminal(std::make_shared<SoftwareTerminal>())
{ }

std::variant<std::unique_ptr<HeldChip>, QString> HeldChip::make(const CardContents& contents, bool getsLost)
{
    AuthorityOptions options;
    options.country = QStringLiteral("TR"); // of the cards that the flow is about
    options.name = QStringLiteral("Kelvara Demo Authority");
    const auto authority = TestAuthority::make(options);
    if (!authority)
        return QStringLiteral("no issuing authority can be made");

    ChipProfile profile;
    profile.zone = contents.zone;
    profile.portrait = portraitOf(contents);
    profile.details = contents.holder;
    profile.document = contents.document;
    profile.authority = authority;
    profile.announcesExtendedLength = false; // read in many pieces, whose progress is seen
    auto made = SoftwareChip::make(profile);
    if (auto* problem = std::get_if<QString>(&made))
        return std::move(*problem);
    auto chip = std::get<std::shared_ptr<SoftwareChip>>(std::move(made));

    const unsigned commands = commandsToRead(*chip);
    ChipFaults faults;
    faults.delay = std::min(kReading / commands, kSlowestAnswer);
    if (getsLost)
        faults.list.push_back(ChipFault::tagLost(commands * 3 / 5));
    chip->setFaults(std::move(faults));

    std::unique_ptr<HeldChip> held(new HeldChip(std::move(chip)));
    const chip::Bytes certificate = authority->certificatePem();
    const auto size = static_cast<qint64>(certificate.size());
    QTemporaryFile& file = held->m_certificate;
    if (!file.open() || file.write(reinterpret_cast<const char*>(certificate.data()), size) != size || !file.flush())
        return QStringLiteral("the issuing authority's certificate cannot be written: %1").arg(file.errorString());
    return held;
}

} // namespace kelvara::demo
