#include "Platform/Chip/trust/MasterList.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/trust/OpenSsl_p.h"
#include "Platform/Chip/trust/SignedData.h"

#include <openssl/pem.h>
#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace kelvara::chip {

using namespace openssl;

struct MasterList::Authorities
{
    std::vector<std::shared_ptr<X509>> certificates;
};

namespace {

using Store = std::unique_ptr<X509_STORE, Deleter<X509_STORE_free>>;
using StoreContext = std::unique_ptr<X509_STORE_CTX, Deleter<X509_STORE_CTX_free>>;
using Certificates = std::vector<std::shared_ptr<X509>>;

/// States must spell out their curves' parameters, which is an error elsewhere; only that one is forgiven.
int forgiveExplicitParameters(int fine, X509_STORE_CTX* context)
{
    return fine == 1 || X509_STORE_CTX_get_error(context) == X509_V_ERR_EC_KEY_EXPLICIT_PARAMS;
}

/// Authorities sign no documents themselves, and they also issue certificates for other purposes, such as signing
/// master lists, and say so critically.
bool maySignDocuments(X509* certificate)
{
    if (X509_check_ca(certificate) != 0)
        return false;
    const int at = X509_get_ext_by_NID(certificate, NID_ext_key_usage, -1);
    if (at >= 0 && X509_EXTENSION_get_critical(X509_get_ext(certificate, at)) != 0)
        return false;
    return (X509_get_key_usage(certificate) & KU_DIGITAL_SIGNATURE) != 0;
}

/// Each authority is tried alone: several of one state share a name, and which of them signed shows only by the key.
bool isIssuedBy(X509* signer, X509* authority)
{
    if (X509_NAME_cmp(X509_get_issuer_name(signer), X509_get_subject_name(authority)) != 0)
        return false;
    const auto issued = dateTimeOf(X509_get0_notBefore(signer));
    const Store store(X509_STORE_new());
    const StoreContext context(X509_STORE_CTX_new());
    if (!issued || !store || !context || X509_STORE_add_cert(store.get(), authority) != 1
        || X509_STORE_CTX_init(context.get(), store.get(), signer, nullptr) != 1)
        return false;
    X509_STORE_CTX_set_flags(context.get(), X509_V_FLAG_PARTIAL_CHAIN); // an authority's link certificate will do
    X509_STORE_CTX_set_time(context.get(), 0, static_cast<time_t>(issued->toSecsSinceEpoch()));
    X509_STORE_CTX_set_verify_cb(context.get(), forgiveExplicitParameters);
    return X509_verify_cert(context.get()) == 1;
}

void take(Certificate certificate, Certificates& into)
{
    if (!certificate || X509_check_ca(certificate.get()) == 0)
        return;
    const bool isThere = std::any_of(into.begin(), into.end(),
        [&](const std::shared_ptr<X509>& one) { return X509_cmp(one.get(), certificate.get()) == 0; });
    if (!isThere)
        into.emplace_back(std::move(certificate));
}

/// Certificates one after the other.
void takeCertificates(ByteView der, Certificates& into)
{
    TlvReader reader(der);
    while (const auto object = reader.next())
        take(certificateOf(object->whole), into);
}

void takeDer(ByteView der, Certificates& into)
{
    const auto list = SignedData::parse(der, SignedData::kMasterList);
    if (!list)
        return takeCertificates(der, into);
    if (list->signature != SignatureOutcome::Valid)
        return;
    // A sequence of the version and the set of certificates.
    if (const auto certificates = findTlv(list->content, { 0x30, 0x31 }))
        takeCertificates(certificates->value, into);
}

void takePem(ByteView text, Certificates& into)
{
    const Bio bio(BIO_new_mem_buf(text.data(), static_cast<int>(text.size())));
    char* name = nullptr;
    char* header = nullptr;
    unsigned char* data = nullptr;
    long size = 0;
    while (bio && PEM_read_bio(bio.get(), &name, &header, &data, &size) == 1) {
        takeDer({ data, static_cast<std::size_t>(size) }, into);
        OPENSSL_free(name);
        OPENSSL_free(header);
        OPENSSL_free(data);
    }
}

} // namespace

MasterList::MasterList() : m_authorities(std::make_shared<Authorities>()) { }

MasterList::MasterList(std::shared_ptr<const Authorities> authorities) : m_authorities(std::move(authorities)) { }

std::optional<MasterList> MasterList::parse(ByteView bytes)
{
    constexpr std::string_view kPem = "-----BEGIN ";
    if (bytes.empty() || bytes.size() > INT_MAX)
        return std::nullopt;
    const QuietErrors quiet;
    auto authorities = std::make_shared<Authorities>();
    if (std::search(bytes.begin(), bytes.end(), kPem.begin(), kPem.end()) != bytes.end())
        takePem(bytes, authorities->certificates);
    else
        takeDer(bytes, authorities->certificates);
    if (authorities->certificates.empty())
        return std::nullopt;
    return MasterList(std::move(authorities));
}

void MasterList::add(const MasterList& other)
{
    auto both = std::make_shared<Authorities>(*m_authorities);
    both->certificates.insert(
        both->certificates.end(), other.m_authorities->certificates.begin(), other.m_authorities->certificates.end());
    m_authorities = std::move(both);
}

std::size_t MasterList::count() const
{
    return m_authorities->certificates.size();
}

bool MasterList::hasIssued(ByteView signer) const
{
    const QuietErrors quiet;
    const Certificate certificate = certificateOf(signer);
    if (!certificate || !maySignDocuments(certificate.get()))
        return false;
    const Certificates& all = m_authorities->certificates;
    return std::any_of(all.begin(), all.end(),
        [&](const std::shared_ptr<X509>& authority) { return isIssuedBy(certificate.get(), authority.get()); });
}

} // namespace kelvara::chip
