#pragma once

#include "Platform/Chip/lds/DataGroupId.h"
#include "Platform/Chip/reading/FileReading.h"

#include <map>
#include <optional>
#include <set>
#include <vector>

namespace kelvara::chip {

/// The files of one document as they come in: whole ones, the one being read, and how many bytes are still to come. It
/// outlives the presentations of the card, so that a read goes on where the card was lost. The reader's thread only.
class FileShelf
{
public:
    /// Which files will be read, as far as it is known by now: what progress is reckoned by.
    void expect(std::vector<DataGroupId> ids) { m_expected = std::move(ids); }

    [[nodiscard]] bool has(DataGroupId id) const { return m_files.contains(id); }
    /// The chip does not have it, or does not hand it out.
    [[nodiscard]] bool isGivenUp(DataGroupId id) const { return m_givenUp.contains(id); }
    /// The whole file; null when it is not here.
    [[nodiscard]] const Bytes* file(DataGroupId id) const;
    [[nodiscard]] const std::map<DataGroupId, Bytes>& files() const { return m_files; }

    /// The reading of the file, begun now or before the card was lost. One at a time.
    [[nodiscard]] FileReading& reading(DataGroupId id, BlockSize& blockSize);
    /// That reading is done: the file is put on the shelf.
    void finish();
    void giveUp(DataGroupId id);
    /// Forgets what was read of the file, or that it was given up, to begin anew.
    void drop(DataGroupId id);
    /// The card is another presentation's.
    void resume();

    [[nodiscard]] std::size_t bytesRead() const;
    /// Bytes read and to come; files that were not begun yet count as much as such files usually have.
    [[nodiscard]] std::size_t bytesInAll() const;

private:
    std::vector<DataGroupId> m_expected;
    std::map<DataGroupId, Bytes> m_files;
    std::set<DataGroupId> m_givenUp;
    std::optional<DataGroupId> m_current;
    std::optional<FileReading> m_reading;
};

} // namespace kelvara::chip
