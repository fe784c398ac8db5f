#pragma once

#include "Platform/Chip/crypto/Digest.h"
#include "Platform/Chip/lds/DataGroupId.h"
#include "Platform/Chip/trust/SignedData.h"
#include "Platform/Foundation/Export.h"

#include <map>
#include <string>

namespace kelvara::chip {

/// EF.SOD: the hashes of all data groups, signed by the document's issuer (ICAO Doc 9303-10 §4.6.2). A value.
struct KELVARA_EXPORT SecurityObject
{
    int version = 0; ///< Of its structure: 0 or 1.
    DigestAlgorithm digestAlgorithm = DigestAlgorithm::SHA256; ///< Of the data groups' hashes.
    std::map<DataGroupId, Bytes> hashes; ///< Each of the digest's length; at least one.
    std::string ldsVersion; ///< Version 1 only, as written: "0108".
    std::string unicodeVersion; ///< Version 1 only, as written: "040000".
    SignedData signedData;
    Bytes raw;

    /// Absent for anything but a signed list of one hash a data group, each as long as its digest.
    [[nodiscard]] static std::optional<SecurityObject> parse(ByteView file);
};

} // namespace kelvara::chip
