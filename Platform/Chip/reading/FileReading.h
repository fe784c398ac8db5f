#pragma once

#include "Platform/Chip/messaging/Apdu.h"

#include <cstdint>
#include <optional>

namespace kelvara::chip {

/// How much of a file a chip gives at once. Learned by the first reads of a session and remembered for all others, the
/// ones after the card was lost included. A value.
struct BlockSize
{
    std::uint32_t bytes = 224; ///< What is asked for now.
    /// A file's first read asks for a whole block, which spares a command for most files; chips that refuse to read
    /// over a file's end are asked for the file's head first.
    bool headFirst = false;

    /// The widest that is worth trying: several kilobytes where extended length passes, else what a short command can
    /// ask for with secure messaging around it.
    [[nodiscard]] static BlockSize widest(bool extendedLength);
    /// The next smaller one that real chips are known to take; false when there is none.
    [[nodiscard]] bool shrink();
};

/// Reads one transparent file as an I/O-free state machine (ISO/IEC 7816-4 §7.2.3): select it, read its beginning,
/// which tells its length, read the rest in blocks, past 32,767 bytes with the odd instruction. A chip that refuses a
/// block is asked for a smaller one. Commands are plain: secure messaging is the caller's. What was read is kept, so
/// that a reading that was cut off goes on after `resume`.
class FileReading
{
public:
    enum class State { Reading, Done, Failed };

    FileReading(std::uint16_t fileId, BlockSize& blockSize);

    [[nodiscard]] State state() const { return m_state; }
    /// The next command; only while reading.
    [[nodiscard]] CommandApdu next() const;
    void feed(const ResponseApdu& response);
    /// The card is there again, with nothing selected.
    void resume();

    /// The status word that ended a failed reading; 0 for an answer that cannot be.
    [[nodiscard]] std::uint16_t failure() const { return m_failure; }
    /// The file is not on the chip.
    [[nodiscard]] bool isMissing() const { return m_failure == 0x6A82 || m_failure == 0x6A88; }
    /// Bytes read and, once the head is known, of the whole file.
    [[nodiscard]] std::size_t read() const { return m_content.size(); }
    [[nodiscard]] std::optional<std::size_t> size() const { return m_size; }
    /// The file, once done.
    [[nodiscard]] const Bytes& content() const { return m_content; }

private:
    void fail(std::uint16_t sw);
    void take(ByteView data);
    void afterRefusal(std::uint16_t sw);
    [[nodiscard]] std::uint32_t wanted() const;

    std::uint16_t m_fileId;
    BlockSize& m_blockSize;
    State m_state = State::Reading;
    bool m_selected = false;
    std::optional<std::size_t> m_size;
    Bytes m_content;
    std::uint16_t m_failure = 0;
};

} // namespace kelvara::chip
