#pragma once

#include "Platform/Chip/Bytes.h"
#include "Platform/Foundation/Export.h"

#include <optional>
#include <vector>

namespace kelvara::chip {

/// Tags as their bytes read as a number: 0x5F1F, 0x7F49.
using Tag = std::uint32_t;

/// One data object of BER-TLV (ISO/IEC 7816-4 §5.2.2, ITU-T X.690): tags of up to three bytes, definite lengths of up
/// to four. Views into the bytes it was read from.
struct KELVARA_EXPORT Tlv
{
    Tag tag = 0;
    ByteView value;
    ByteView whole; ///< With tag and length.

    [[nodiscard]] bool isConstructed() const;
};

/// Reads data objects one after the other. Trusts no length: what does not fit ends the reading.
class KELVARA_EXPORT TlvReader
{
public:
    explicit TlvReader(ByteView bytes) : m_rest(bytes) { }

    /// The next object; absent at the end and at anything that is none (then `failed` is true). Zero bytes between
    /// objects are padding and passed over.
    [[nodiscard]] std::optional<Tlv> next();
    [[nodiscard]] bool failed() const { return m_failed; }
    /// What was not read yet.
    [[nodiscard]] ByteView rest() const { return m_rest; }

private:
    ByteView m_rest;
    bool m_failed = false;
};

/// The first object of the tag among those that stand one after the other in `bytes`.
[[nodiscard]] KELVARA_EXPORT std::optional<Tlv> findTlv(ByteView bytes, Tag tag);
/// The same through nested objects: `findTlv(file, { 0x7F61, 0x7F60, 0x5F2E })`.
[[nodiscard]] KELVARA_EXPORT std::optional<Tlv> findTlv(ByteView bytes, std::initializer_list<Tag> path);
/// All objects of the level; absent when something there is no object.
[[nodiscard]] KELVARA_EXPORT std::optional<std::vector<Tlv>> allTlvs(ByteView bytes);

/// How long the object is that begins with these bytes (tag and length included), from the first few of them; absent
/// while they are too few or when they begin no object.
[[nodiscard]] KELVARA_EXPORT std::optional<std::size_t> tlvSize(ByteView beginning);

/// An object of this tag with the shortest form of length.
[[nodiscard]] KELVARA_EXPORT Bytes makeTlv(Tag tag, ByteView value);

} // namespace kelvara::chip
