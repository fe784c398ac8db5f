#pragma once

#include "Platform/Chip/Bytes.h"
#include "Platform/Foundation/Export.h"

#include <QDateTime>

#include <optional>
#include <string_view>

namespace kelvara::chip {

enum class SignatureOutcome {
    Valid, ///< Made with the key of the certificate that came along.
    Invalid, ///< Content, attributes or signature were changed.
    Unsupported, ///< By an algorithm or key that is not known, or no certificate came along: not judged.
};

/// What a signed message of CMS says (RFC 5652), its signature judged already. Whose certificate it is, is not judged
/// here. A value.
struct KELVARA_EXPORT SignedData
{
    Bytes content;
    SignatureOutcome signature = SignatureOutcome::Unsupported;
    Bytes signer; ///< Certificate in DER; empty where none came along.
    std::optional<QDateTime> signingTime; ///< UTC, as the signer says; absent where it does not.

    /// The content types that documents use.
    static constexpr std::string_view kLdsSecurityObject = "2.23.136.1.1.1";
    static constexpr std::string_view kMasterList = "2.23.136.1.1.2";
    static constexpr std::string_view kCardSecurity = "0.4.0.127.0.7.3.2.1";

    /// Absent for anything but a signed message with content of this type and at least one signer. Takes about as long
    /// as a signature's check, milliseconds. Any thread.
    [[nodiscard]] static std::optional<SignedData> parse(ByteView der, std::string_view contentType);
};

} // namespace kelvara::chip
