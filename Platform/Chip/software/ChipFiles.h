#pragma once

#include "Platform/Chip/messaging/Apdu.h"
#include "Platform/Foundation/Export.h"

#include <cstdint>
#include <map>
#include <optional>
#include <utility>

namespace kelvara::chip::software {

/// How a chip answers reads, as the differences between real ones go.
struct ReadingManners
{
    std::uint32_t longestAnswer = 65536; ///< More is never sent at once; asking for more is answered as below.
    /// What is said to a read of more than `longestAnswer`: 0x9000 sends what fits, 0x6C00 adds the right length,
    /// 0x6700 (or 0x6282, 0x6B00 …) refuses.
    std::uint16_t tooLongAnswer = 0x9000;
    /// 0x6282 or 0x9000 with fewer bytes at a file's end, 0x6B00 refuses to read over it.
    std::uint16_t endOfFileAnswer = 0x6282;
    bool knowsShortFileIds = true;
    bool knowsOddInstruction = true; ///< READ BINARY of INS B1 for offsets over 32,767.
};

/// The files of a chip and the commands that read them (SELECT, READ BINARY; ISO/IEC 7816-4 §7.2), without protection:
/// whether a file may be read is for the chip around this to say. One thread at a time.
class KELVARA_EXPORT ChipFiles
{
public:
    explicit ChipFiles(ReadingManners manners = {}) : m_manners(manners) { }

    /// A file of the master file (EF.CardAccess …) or of the LDS application. The same identifier may name one of each.
    void add(std::uint16_t fileId, Bytes content, bool inApplication);

    /// The file that a command would read: by its short identifier or the selected one. It lies where
    /// `isApplicationSelected` says.
    [[nodiscard]] std::optional<std::uint16_t> fileMeantBy(const CommandApdu& command) const;
    [[nodiscard]] bool isApplicationSelected() const { return m_applicationSelected; }

    /// Answers SELECT and READ BINARY; absent for other commands. `room`: the most data that fit into the answer.
    [[nodiscard]] std::optional<ResponseApdu> answer(const CommandApdu& command, std::uint32_t room = 65536);

    /// As after power-on: the master file is selected.
    void reset();

private:
    /// Whether it lies in the application, and its identifier there.
    using Place = std::pair<bool, std::uint16_t>;

    [[nodiscard]] ResponseApdu select(const CommandApdu& command);
    [[nodiscard]] ResponseApdu read(const CommandApdu& command, std::uint32_t room);
    [[nodiscard]] ResponseApdu part(
        std::uint16_t fileId, std::size_t offset, std::uint32_t wanted, std::uint32_t room, bool wrapped) const;

    ReadingManners m_manners;
    std::map<Place, Bytes> m_files;
    bool m_applicationSelected = false;
    std::optional<std::uint16_t> m_selected; ///< Where the selected directory is.
};

} // namespace kelvara::chip::software
