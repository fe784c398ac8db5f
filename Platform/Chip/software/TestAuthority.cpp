#include "Platform/Chip/software/TestAuthority.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/software/Signing_p.h"
#include "Platform/Chip/trust/SignedData.h"

#include <openssl/pem.h>

namespace kelvara::chip::software {

struct TestAuthority::Secrets
{
    AuthorityOptions options;
    Party authority;
    Party signer;
    Party listSigner;
};

namespace {

Bytes integer(int value)
{
    return makeTlv(0x02, Bytes { static_cast<std::uint8_t>(value) });
}

/// What the document signer signs.
Bytes hashList(const std::map<DataGroupId, Bytes>& hashes, const SecurityObjectOptions& options)
{
    Bytes list;
    for (const auto& [id, hash] : hashes) {
        if (const auto number = numberOf(id))
            list = joined({ list, makeTlv(0x30, joined({ integer(*number), makeTlv(0x04, hash) })) });
    }
    if (list.empty())
        return {};
    const Bytes versions = options.version == 0
        ? Bytes()
        : makeTlv(0x30, joined({ makeTlv(0x13, bytes("0108")), makeTlv(0x13, bytes("040000")) }));
    return makeTlv(
        0x30, joined({ integer(options.version), digestIdentifier(options.digest), makeTlv(0x30, list), versions }));
}

} // namespace

TestAuthority::TestAuthority(std::shared_ptr<const Secrets> secrets) : m_secrets(std::move(secrets)) { }

std::optional<TestAuthority> TestAuthority::make(const AuthorityOptions& options)
{
    auto secrets = std::make_shared<Secrets>();
    secrets->options = options;
    const auto wish = [&](Role role, const QString& suffix, const QDateTime& from, const QDateTime& to) {
        return CertificateWish { role, options.country, options.name + suffix, from, to };
    };
    secrets->authority
        = makeParty(options.authority, wish(Role::Authority, {}, options.authorityFrom, options.authorityTo), nullptr);
    secrets->signer = makeParty(options.signer,
        wish(Role::DocumentSigner, QStringLiteral(" Document Signer"), options.signerFrom, options.signerTo),
        &secrets->authority);
    SigningOptions forLists;
    forLists.key = SigningKey::NamedCurve;
    secrets->listSigner = makeParty(forLists,
        wish(Role::MasterListSigner, QStringLiteral(" Master List Signer"), options.authorityFrom, options.authorityTo),
        &secrets->authority);
    if (!secrets->authority.certificate || !secrets->signer.certificate || !secrets->listSigner.certificate)
        return std::nullopt;
    return TestAuthority(std::move(secrets));
}

Bytes TestAuthority::certificate() const
{
    return openssl::derOf(m_secrets->authority.certificate.get());
}

Bytes TestAuthority::certificatePem() const
{
    const openssl::Bio bio(BIO_new(BIO_s_mem()));
    if (!bio || PEM_write_bio_X509(bio.get(), m_secrets->authority.certificate.get()) != 1)
        return {};
    char* text = nullptr;
    const long size = BIO_get_mem_data(bio.get(), &text);
    return bytes(ByteView(reinterpret_cast<const std::uint8_t*>(text), static_cast<std::size_t>(size)));
}

Bytes TestAuthority::masterList() const
{
    const Bytes content = makeTlv(0x30, joined({ integer(0), makeTlv(0x31, certificate()) }));
    return makeSignedData(
        m_secrets->listSigner, SignedData::kMasterList, content, QDateTime::currentDateTimeUtc(), true);
}

Bytes TestAuthority::signerCertificate() const
{
    return openssl::derOf(m_secrets->signer.certificate.get());
}

std::optional<Bytes> TestAuthority::securityObject(
    const std::map<DataGroupId, Bytes>& files, const SecurityObjectOptions& options) const
{
    std::map<DataGroupId, Bytes> hashes;
    for (const auto& [id, file] : files) {
        if (isDataGroup(id))
            hashes[id] = digest(options.digest, file);
    }
    return securityObjectOfHashes(hashes, options);
}

std::optional<Bytes> TestAuthority::securityObjectOfHashes(
    const std::map<DataGroupId, Bytes>& hashes, const SecurityObjectOptions& options) const
{
    const Bytes content = hashList(hashes, options);
    if (content.empty())
        return std::nullopt;
    const Bytes message = makeSignedData(
        m_secrets->signer, SignedData::kLdsSecurityObject, content, options.signingTime, options.withCertificate);
    return message.empty() ? std::nullopt : std::optional(makeTlv(0x77, message));
}

std::optional<Bytes> TestAuthority::cardSecurity(ByteView securityInfos) const
{
    Bytes message = makeSignedData(
        m_secrets->signer, SignedData::kCardSecurity, securityInfos, QDateTime::currentDateTimeUtc(), true);
    return message.empty() ? std::nullopt : std::optional(std::move(message));
}

} // namespace kelvara::chip::software
