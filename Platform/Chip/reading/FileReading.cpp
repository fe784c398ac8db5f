#include "Platform/Chip/reading/FileReading.h"

#include "Platform/Chip/Tlv.h"

#include <algorithm>
#include <array>

namespace kelvara::chip {

namespace {

/// Blocks that chips in the field take, the widest first. 4,096 is worth most of the way; the short ones leave room for
/// secure messaging in an answer of 256 bytes.
constexpr std::array<std::uint32_t, 7> kBlocks { 4096, 2048, 1024, 224, 208, 160, 96 };
constexpr std::uint32_t kWidestShortBlock = 224;
constexpr std::uint32_t kHead = 6; ///< Tag and length of any file of the LDS.
constexpr std::size_t kLargestFile = std::size_t { 4 } << 20; ///< No chip holds as much.
constexpr std::size_t kEvenReach = 0x8000; ///< The even instruction has fifteen bits for the offset.

} // namespace

BlockSize BlockSize::widest(bool extendedLength)
{
    return { extendedLength ? kBlocks.front() : kWidestShortBlock, false };
}

bool BlockSize::shrink()
{
    const auto smaller
        = std::find_if(kBlocks.begin(), kBlocks.end(), [this](std::uint32_t size) { return size < bytes; });
    if (smaller == kBlocks.end())
        return false;
    bytes = *smaller;
    return true;
}

FileReading::FileReading(std::uint16_t fileId, BlockSize& blockSize) : m_fileId(fileId), m_blockSize(blockSize) { }

std::uint32_t FileReading::wanted() const
{
    if (!m_size)
        return m_blockSize.headFirst ? kHead : m_blockSize.bytes;
    return static_cast<std::uint32_t>(std::min<std::size_t>(*m_size - m_content.size(), m_blockSize.bytes));
}

CommandApdu FileReading::next() const
{
    if (!m_selected) { // without Le: some chips answer an expectation with an error
        return { 0x00, 0xA4, 0x02, 0x0C,
            { static_cast<std::uint8_t>(m_fileId >> 8), static_cast<std::uint8_t>(m_fileId) }, std::nullopt };
    }
    const std::size_t offset = m_content.size();
    if (offset < kEvenReach) {
        return { 0x00, 0xB0, static_cast<std::uint8_t>(offset >> 8), static_cast<std::uint8_t>(offset), {}, wanted() };
    }
    // The answer's data object counts towards what is expected.
    const std::uint32_t head = wanted() > 0xFF ? 4 : wanted() > 0x7F ? 3 : 2;
    return { 0x00, 0xB1, 0x00, 0x00, makeTlv(0x54, bigEndian(offset)), std::min(wanted() + head, m_blockSize.bytes) };
}

void FileReading::feed(const ResponseApdu& response)
{
    if (!m_selected) {
        if (!response.isSuccess())
            return fail(response.sw);
        m_selected = true;
        return;
    }
    const bool ended = response.sw == 0x6282;
    if ((!response.isSuccess() && !ended) || response.data.empty())
        return afterRefusal(response.sw);
    if (m_content.size() < kEvenReach)
        return take(response.data);
    const auto data = findTlv(response.data, 0x53);
    if (!data || data->value.empty())
        return fail(0);
    take(data->value);
}

void FileReading::take(ByteView data)
{
    if (data.size() > wanted())
        return fail(0);
    m_content.insert(m_content.end(), data.begin(), data.end());
    if (!m_size) {
        const auto size = tlvSize(m_content);
        if (!size || *size > kLargestFile)
            return fail(0);
        m_size = size;
        m_content.resize(std::min(m_content.size(), *size));
    }
    if (m_content.size() == *m_size)
        m_state = State::Done;
}

void FileReading::afterRefusal(std::uint16_t sw)
{
    const std::uint8_t right = sw & 0xFF;
    const bool namesTheLength = (sw & 0xFF00) == 0x6C00 && right > 0;
    if (!namesTheLength && sw != 0x6700 && sw != 0x6B00 && sw != 0x6282 && sw != 0x6F00 && sw != 0x9000)
        return fail(sw);
    if (!m_size && !m_blockSize.headFirst) {
        m_blockSize.headFirst = true;
        return;
    }
    const std::uint32_t refused = wanted();
    if (namesTheLength && right < refused) {
        m_blockSize.bytes = right;
        return;
    }
    while (m_blockSize.shrink()) {
        if (wanted() < refused)
            return;
    }
    fail(sw == 0x9000 ? 0 : sw);
}

void FileReading::fail(std::uint16_t sw)
{
    m_failure = sw;
    m_state = State::Failed;
}

void FileReading::resume()
{
    m_selected = false;
}

} // namespace kelvara::chip
