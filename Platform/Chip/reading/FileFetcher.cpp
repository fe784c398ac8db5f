#include "Platform/Chip/reading/FileFetcher.h"

#include <algorithm>

namespace kelvara::chip {

namespace {

/// Of all files together. No chip holds a tenth of it, and nobody holds a card for as long as it takes.
constexpr std::size_t kLargestDocument = std::size_t { 4 } << 20;

/// Whether the chip has minded the length of a block rather than anything else.
bool isAboutLength(std::uint16_t sw)
{
    return sw == 0x6700 || sw == 0x6B00 || sw == 0x6282 || sw >> 8 == 0x6C;
}

} // namespace

std::optional<ReadStop> FileFetcher::fetch(ChipLine& line, DataGroupId id)
{
    FileShelf& shelf = m_state.shelf;
    if (shelf.has(id) || shelf.isGivenUp(id))
        return std::nullopt;
    FileReading& reading = shelf.reading(id, m_state.blockSize);
    while (reading.state() == FileReading::State::Reading) {
        if (!line.passesExtendedLength() && line.session()) {
            const auto most = static_cast<std::uint32_t>(line.session()->greatestShortResponse());
            m_state.blockSize.bytes = std::min(m_state.blockSize.bytes, most);
        }
        const ChipLine::Answer answer = line.exchange(reading.next());
        if (const auto* broken = std::get_if<LineFailure>(&answer))
            return afterBreak(*broken, id);
        reading.feed(std::get<ResponseApdu>(answer));
        m_onPiece(id);
        if (shelf.bytesRead() - reading.read() + reading.size().value_or(0) > kLargestDocument) {
            shelf.drop(id);
            return LineFailure { LineFailure::Kind::Nonsense, {}, 0 };
        }
    }
    if (reading.state() == FileReading::State::Done) {
        shelf.finish();
    } else if (reading.failure() == 0) {
        shelf.drop(id);
        return LineFailure { LineFailure::Kind::Nonsense, {}, 0 };
    } else {
        shelf.giveUp(id);
    }
    return std::nullopt;
}

ReadStop FileFetcher::afterBreak(const LineFailure& broken, DataGroupId id)
{
    if (broken.kind != LineFailure::Kind::SessionEnded)
        return broken;
    // Some chips end the session over a block that is too long: the next one asks for less.
    FileReading& reading = m_state.shelf.reading(id, m_state.blockSize);
    if (isAboutLength(broken.sw))
        reading.feed({ {}, broken.sw });
    if (reading.state() == FileReading::State::Failed)
        m_state.shelf.drop(id);
    // Others over a file that they do not hand out.
    constexpr int kTries = 3;
    if (!isAboutLength(broken.sw) && ++m_endings[id] == kTries)
        m_state.shelf.giveUp(id);
    return broken;
}

} // namespace kelvara::chip
