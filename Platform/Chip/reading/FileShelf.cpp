#include "Platform/Chip/reading/FileShelf.h"

namespace kelvara::chip {

namespace {

/// What such files have on most documents, in bytes.
std::size_t usualSize(DataGroupId id)
{
    switch (id) {
    case DataGroupId::DG2:
        return 17'000;
    case DataGroupId::DG3:
    case DataGroupId::DG4:
        return 20'000;
    case DataGroupId::DG7:
        return 5'000;
    case DataGroupId::SOD:
    case DataGroupId::CardSecurity:
        return 2'000;
    case DataGroupId::COM:
    case DataGroupId::DG1:
        return 100;
    default:
        return 300;
    }
}

} // namespace

const Bytes* FileShelf::file(DataGroupId id) const
{
    const auto found = m_files.find(id);
    return found == m_files.end() ? nullptr : &found->second;
}

FileReading& FileShelf::reading(DataGroupId id, BlockSize& blockSize)
{
    if (m_current != id) {
        m_current = id;
        m_reading.emplace(entryOf(id).fileId, blockSize);
    }
    return *m_reading;
}

void FileShelf::finish()
{
    m_files[*m_current] = m_reading->content();
    m_current.reset();
    m_reading.reset();
}

void FileShelf::giveUp(DataGroupId id)
{
    drop(id);
    m_givenUp.insert(id);
}

void FileShelf::drop(DataGroupId id)
{
    m_files.erase(id);
    m_givenUp.erase(id);
    if (m_current != id)
        return;
    m_current.reset();
    m_reading.reset();
}

void FileShelf::resume()
{
    if (m_reading)
        m_reading->resume();
}

std::size_t FileShelf::bytesRead() const
{
    std::size_t count = m_reading ? m_reading->read() : 0;
    for (const auto& [id, file] : m_files)
        count += file.size();
    return count;
}

std::size_t FileShelf::bytesInAll() const
{
    std::size_t count = 0;
    for (const auto& [id, file] : m_files)
        count += file.size();
    for (const DataGroupId id : m_expected) {
        if (!has(id) && !m_givenUp.contains(id))
            count += m_current == id && m_reading->size() ? *m_reading->size() : usualSize(id);
    }
    return count;
}

} // namespace kelvara::chip
