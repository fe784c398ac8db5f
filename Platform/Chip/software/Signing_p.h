#pragma once

// For .cpp files only: keys, certificates and signed messages made with OpenSSL.

#include "Platform/Chip/software/TestAuthority.h"
#include "Platform/Chip/trust/OpenSsl_p.h"

#include <string_view>

namespace kelvara::chip::software {

/// A key with its certificate and how it signs.
struct Party
{
    openssl::Key key;
    openssl::Certificate certificate;
    SigningOptions options;
};

/// What a certificate is for.
enum class Role { Authority, DocumentSigner, MasterListSigner };

struct CertificateWish
{
    Role role = Role::Authority;
    QString country;
    QString name;
    QDateTime from;
    QDateTime to;
};

/// A new key with a certificate that `issuer` signed, or its own key where that is null. Without certificate where one
/// of both cannot be made.
[[nodiscard]] Party makeParty(const SigningOptions& options, const CertificateWish& wish, const Party* issuer);

/// A signed message of CMS around the content. Empty where signing fails.
[[nodiscard]] Bytes makeSignedData(const Party& signer, std::string_view contentType, ByteView content,
    const QDateTime& signingTime, bool withCertificate);

/// DER of an algorithm's identifier, with null parameters.
[[nodiscard]] Bytes digestIdentifier(DigestAlgorithm algorithm);

} // namespace kelvara::chip::software
