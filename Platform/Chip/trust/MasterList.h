#pragma once

#include "Platform/Chip/Bytes.h"
#include "Platform/Foundation/Export.h"

#include <memory>
#include <optional>

namespace kelvara::chip {

/// The country signing authorities that a host trusts. What is in here comes from the host's own files, never from a
/// chip. A value whose certificates are shared; any thread.
class KELVARA_EXPORT MasterList
{
public:
    /// No authority at all: everybody is untrusted.
    MasterList();

    /// The authorities of
    /// - a master list as states publish it (CMS, ICAO Doc 9303-12), whose own signature must be right,
    /// - PEM text with any number of certificates or master lists,
    /// - one or several DER certificates one after the other.
    /// Certificates of no authority are passed over. Absent where nothing of the kind is found.
    [[nodiscard]] static std::optional<MasterList> parse(ByteView bytes);

    /// Takes over the other list's authorities too.
    void add(const MasterList& other);
    [[nodiscard]] std::size_t count() const;

    /// Whether one of the authorities issued the document signer (DER), at a time when the authority was valid itself.
    /// The signer's own period is not judged. False for anything that is no certificate or one for another purpose.
    [[nodiscard]] bool hasIssued(ByteView signer) const;

private:
    struct Authorities;
    explicit MasterList(std::shared_ptr<const Authorities> authorities);

    std::shared_ptr<const Authorities> m_authorities; ///< Never null, never changed.
};

} // namespace kelvara::chip
