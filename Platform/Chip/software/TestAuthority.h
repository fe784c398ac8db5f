#pragma once

#include "Platform/Chip/crypto/Digest.h"
#include "Platform/Chip/lds/DataGroupId.h"
#include "Platform/Foundation/Export.h"

#include <QDateTime>
#include <QString>

#include <map>
#include <memory>
#include <optional>

namespace kelvara::chip::software {

enum class SigningKey {
    NamedCurve, ///< ECDSA, the curve by its name.
    ExplicitCurve, ///< ECDSA, the curve's parameters spelled out, as states have to.
    Rsa, ///< PKCS #1 version 1.5.
    RsaPss, ///< With a key for RSA of any kind, as most states have it.
    RsaPssOnly, ///< With a key that says it serves this only.
};

enum class SigningCurve {
    P224,
    P256,
    P384,
    P521,
    BrainpoolP224r1,
    BrainpoolP256r1,
    BrainpoolP320r1,
    BrainpoolP384r1,
    BrainpoolP512r1,
};

/// How somebody signs. A value.
struct SigningOptions
{
    SigningKey key = SigningKey::ExplicitCurve;
    SigningCurve curve = SigningCurve::BrainpoolP256r1; ///< For ECDSA.
    int rsaBits = 2048; ///< For RSA.
    DigestAlgorithm digest = DigestAlgorithm::SHA256;
};

/// What an authority is made of. A value.
struct AuthorityOptions
{
    SigningOptions authority; ///< Signs the certificates.
    SigningOptions signer; ///< Signs the documents.
    QString country = QStringLiteral("UT"); ///< Two letters.
    QString name = QStringLiteral("Test Authority");
    QDateTime authorityFrom = QDateTime::currentDateTimeUtc().addYears(-3);
    QDateTime authorityTo = QDateTime::currentDateTimeUtc().addYears(12);
    QDateTime signerFrom = QDateTime::currentDateTimeUtc().addYears(-1);
    QDateTime signerTo = QDateTime::currentDateTimeUtc().addYears(10);
};

/// How a security object is signed. A value.
struct SecurityObjectOptions
{
    DigestAlgorithm digest = DigestAlgorithm::SHA256; ///< Of the data groups.
    int version = 0; ///< 1 adds the versions of LDS and Unicode.
    QDateTime signingTime = QDateTime::currentDateTimeUtc();
    bool withCertificate = true; ///< Whether the document signer's certificate comes along.
};

/// A state of one's own that issues documents: a country signing authority and a document signer, with keys made on the
/// spot that live as long as the object. For chips that software plays and for a host's own tests; a host that trusts
/// its certificate trusts everything it signs. A value that shares its keys; any thread.
class KELVARA_EXPORT TestAuthority
{
public:
    /// Absent where a key or certificate cannot be made as asked for (such as RSA of too few bits for the digest).
    /// ECDSA takes milliseconds, RSA about a tenth of a second a key.
    [[nodiscard]] static std::optional<TestAuthority> make(const AuthorityOptions& options = {});

    /// The authority's certificate, for a `MasterList`: DER, PEM, and a master list signed as states publish theirs.
    [[nodiscard]] Bytes certificate() const;
    [[nodiscard]] Bytes certificatePem() const;
    [[nodiscard]] Bytes masterList() const;
    /// The document signer's certificate in DER.
    [[nodiscard]] Bytes signerCertificate() const;

    /// EF.SOD for the data groups among the files. Absent where there is none or signing fails.
    [[nodiscard]] std::optional<Bytes> securityObject(
        const std::map<DataGroupId, Bytes>& files, const SecurityObjectOptions& options = {}) const;
    /// EF.SOD of hashes that are given, right or wrong.
    [[nodiscard]] std::optional<Bytes> securityObjectOfHashes(
        const std::map<DataGroupId, Bytes>& hashes, const SecurityObjectOptions& options = {}) const;
    /// EF.CardSecurity around a DER set of SecurityInfo.
    [[nodiscard]] std::optional<Bytes> cardSecurity(ByteView securityInfos) const;

private:
    struct Secrets;
    explicit TestAuthority(std::shared_ptr<const Secrets> secrets);

    std::shared_ptr<const Secrets> m_secrets; ///< Never null, never changed.
};

} // namespace kelvara::chip::software
