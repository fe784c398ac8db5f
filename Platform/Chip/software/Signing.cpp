#include "Platform/Chip/software/Signing_p.h"

#include "Platform/Chip/Tlv.h"

#include <openssl/ec.h>
#include <openssl/rand.h>
#include <openssl/rsa.h>
#include <openssl/x509v3.h>

#include <string>

namespace kelvara::chip::software {

using namespace openssl;

namespace {

int curveOf(SigningCurve curve)
{
    switch (curve) {
    case SigningCurve::P224:
        return NID_secp224r1;
    case SigningCurve::P256:
        return NID_X9_62_prime256v1;
    case SigningCurve::P384:
        return NID_secp384r1;
    case SigningCurve::P521:
        return NID_secp521r1;
    case SigningCurve::BrainpoolP224r1:
        return NID_brainpoolP224r1;
    case SigningCurve::BrainpoolP256r1:
        return NID_brainpoolP256r1;
    case SigningCurve::BrainpoolP320r1:
        return NID_brainpoolP320r1;
    case SigningCurve::BrainpoolP384r1:
        return NID_brainpoolP384r1;
    case SigningCurve::BrainpoolP512r1:
        return NID_brainpoolP512r1;
    }
    return NID_undef;
}

Key makeKey(const SigningOptions& options)
{
    const bool isRsa = options.key != SigningKey::NamedCurve && options.key != SigningKey::ExplicitCurve;
    const int type = !isRsa ? EVP_PKEY_EC : options.key == SigningKey::RsaPssOnly ? EVP_PKEY_RSA_PSS : EVP_PKEY_RSA;
    const KeyContext context(EVP_PKEY_CTX_new_id(type, nullptr));
    if (!context || EVP_PKEY_keygen_init(context.get()) != 1)
        return nullptr;
    if (isRsa) {
        if (EVP_PKEY_CTX_set_rsa_keygen_bits(context.get(), options.rsaBits) != 1)
            return nullptr;
    } else {
        const int form = options.key == SigningKey::ExplicitCurve ? OPENSSL_EC_EXPLICIT_CURVE : OPENSSL_EC_NAMED_CURVE;
        if (EVP_PKEY_CTX_set_ec_paramgen_curve_nid(context.get(), curveOf(options.curve)) != 1
            || EVP_PKEY_CTX_set_ec_param_enc(context.get(), form) != 1)
            return nullptr;
    }
    EVP_PKEY* key = nullptr;
    EVP_PKEY_keygen(context.get(), &key);
    return Key(key);
}

bool choosePadding(EVP_PKEY_CTX* context, const SigningOptions& options)
{
    return (options.key != SigningKey::RsaPss && options.key != SigningKey::RsaPssOnly)
        || (EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PSS_PADDING) == 1
            && EVP_PKEY_CTX_set_rsa_pss_saltlen(context, RSA_PSS_SALTLEN_DIGEST) == 1);
}

Time timeOf(const QDateTime& moment)
{
    return Time(ASN1_TIME_set(nullptr, static_cast<time_t>(moment.toSecsSinceEpoch())));
}

bool addExtension(X509* certificate, X509* issuer, int what, const char* value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509V3_set_ctx_nodb(&context);
    using Extension = std::unique_ptr<X509_EXTENSION, Deleter<X509_EXTENSION_free>>;
    const Extension extension(X509V3_EXT_conf_nid(nullptr, &context, what, value));
    return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

bool addExtensions(X509* certificate, X509* issuer, Role role)
{
    bool fine = addExtension(certificate, issuer, NID_subject_key_identifier, "hash")
        && addExtension(certificate, issuer, NID_authority_key_identifier, "keyid:always");
    if (role == Role::Authority) {
        return fine && addExtension(certificate, issuer, NID_basic_constraints, "critical,CA:TRUE,pathlen:0")
            && addExtension(certificate, issuer, NID_key_usage, "critical,keyCertSign,cRLSign");
    }
    fine = fine && addExtension(certificate, issuer, NID_key_usage, "critical,digitalSignature");
    if (role == Role::MasterListSigner)
        fine = fine && addExtension(certificate, issuer, NID_ext_key_usage, "critical,2.23.136.1.1.3");
    return fine;
}

bool nameSubject(X509* certificate, const CertificateWish& wish)
{
    X509_NAME* name = X509_get_subject_name(certificate);
    const auto add = [&](const char* field, const QString& text) {
        const QByteArray utf8 = text.toUtf8();
        return X509_NAME_add_entry_by_txt(name, field, MBSTRING_UTF8,
                   reinterpret_cast<const unsigned char*>(utf8.constData()), static_cast<int>(utf8.size()), -1, 0)
            == 1;
    };
    return add("C", wish.country) && add("CN", wish.name);
}

bool giveSerial(X509* certificate)
{
    std::uint64_t number = 0;
    return RAND_bytes(reinterpret_cast<unsigned char*>(&number), sizeof number) == 1
        && ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate), number >> 1) == 1;
}

bool sign(X509* certificate, const Party& by)
{
    using DigestContext = std::unique_ptr<EVP_MD_CTX, Deleter<EVP_MD_CTX_free>>;
    const DigestContext context(EVP_MD_CTX_new());
    EVP_PKEY_CTX* key = nullptr; // the digest's
    return context && EVP_DigestSignInit(context.get(), &key, methodOf(by.options.digest), nullptr, by.key.get()) == 1
        && choosePadding(key, by.options) && X509_sign_ctx(certificate, context.get()) > 0;
}

} // namespace

Party makeParty(const SigningOptions& options, const CertificateWish& wish, const Party* issuer)
{
    const QuietErrors quiet;
    Party party { makeKey(options), nullptr, options };
    Certificate certificate(X509_new());
    if (!party.key || !certificate || (issuer != nullptr && !issuer->certificate))
        return party;
    X509* made = certificate.get();
    const Time from = timeOf(wish.from);
    const Time to = timeOf(wish.to);
    if (!from || !to || X509_set_version(made, X509_VERSION_3) != 1 || !giveSerial(made) || !nameSubject(made, wish)
        || X509_set1_notBefore(made, from.get()) != 1 || X509_set1_notAfter(made, to.get()) != 1
        || X509_set_pubkey(made, party.key.get()) != 1)
        return party;
    X509* by = issuer == nullptr ? made : issuer->certificate.get();
    if (X509_set_issuer_name(made, X509_get_subject_name(by)) == 1 && addExtensions(made, by, wish.role)
        && sign(made, issuer == nullptr ? party : *issuer))
        party.certificate = std::move(certificate);
    return party;
}

Bytes makeSignedData(const Party& signer, std::string_view contentType, ByteView content, const QDateTime& signingTime,
    bool withCertificate)
{
    const QuietErrors quiet;
    const unsigned flags = CMS_BINARY | CMS_NOSMIMECAP | (withCertificate ? 0U : unsigned { CMS_NOCERTS });
    const Cms cms(CMS_sign(nullptr, nullptr, nullptr, nullptr, flags | CMS_PARTIAL));
    const Object type(OBJ_txt2obj(std::string(contentType).c_str(), 1));
    const Time time = timeOf(signingTime);
    if (!cms || !type || !time || CMS_set1_eContentType(cms.get(), type.get()) != 1)
        return {};
    CMS_SignerInfo* info = CMS_add1_signer(
        cms.get(), signer.certificate.get(), signer.key.get(), methodOf(signer.options.digest), flags | CMS_KEY_PARAM);
    const bool fine = info != nullptr && choosePadding(CMS_SignerInfo_get0_pkey_ctx(info), signer.options)
        && CMS_signed_add1_attr_by_NID(info, NID_pkcs9_signingTime, ASN1_STRING_type(time.get()),
               ASN1_STRING_get0_data(time.get()), ASN1_STRING_length(time.get()))
            == 1;
    const Bio data(BIO_new_mem_buf(content.data(), static_cast<int>(content.size())));
    if (!fine || !data || CMS_final(cms.get(), data.get(), nullptr, flags) != 1)
        return {};
    return derOf<const CMS_ContentInfo>(cms.get(), i2d_CMS_ContentInfo);
}

Bytes digestIdentifier(DigestAlgorithm algorithm)
{
    const Bytes identifier
        = derOf<const ASN1_OBJECT>(OBJ_nid2obj(EVP_MD_get_type(methodOf(algorithm))), i2d_ASN1_OBJECT);
    return makeTlv(0x30, joined({ identifier, makeTlv(0x05, {}) }));
}

} // namespace kelvara::chip::software
