#include "Platform/Chip/trust/SignedData.h"

#include "Platform/Chip/trust/OpenSsl_p.h"

#include <string>

namespace kelvara::chip {

namespace {

using namespace openssl;

/// Whether the signed attributes name the content's type, as they must: without that a message of another kind could be
/// passed off as this one.
bool namesContentType(const CMS_SignerInfo* signer, const ASN1_OBJECT* type)
{
    const auto* named = static_cast<const ASN1_OBJECT*>(
        CMS_signed_get0_data_by_OBJ(signer, OBJ_nid2obj(NID_pkcs9_contentType), -3, V_ASN1_OBJECT)); // -3: exactly one
    return named != nullptr && OBJ_cmp(named, type) == 0;
}

SignatureOutcome judge(CMS_ContentInfo* cms, CMS_SignerInfo* signer, const ASN1_OBJECT* type)
{
    EVP_PKEY* key = nullptr;
    X509* certificate = nullptr;
    X509_ALGOR* digestAlgorithm = nullptr;
    X509_ALGOR* signatureAlgorithm = nullptr;
    CMS_SignerInfo_get0_algs(signer, &key, &certificate, &digestAlgorithm, &signatureAlgorithm);
    const ASN1_OBJECT* digest = nullptr;
    const ASN1_OBJECT* signature = nullptr;
    X509_ALGOR_get0(&digest, nullptr, nullptr, digestAlgorithm);
    X509_ALGOR_get0(&signature, nullptr, nullptr, signatureAlgorithm);
    if (certificate == nullptr || key == nullptr || !digestOf(digest) || OBJ_obj2nid(signature) == NID_undef)
        return SignatureOutcome::Unsupported;
    if (!namesContentType(signer, type))
        return SignatureOutcome::Invalid;
    const unsigned flags = CMS_BINARY | CMS_NO_SIGNER_CERT_VERIFY;
    return CMS_verify(cms, nullptr, nullptr, nullptr, nullptr, flags) == 1 ? SignatureOutcome::Valid
                                                                           : SignatureOutcome::Invalid;
}

std::optional<QDateTime> signingTimeOf(const CMS_SignerInfo* signer)
{
    const int at = CMS_signed_get_attr_by_NID(signer, NID_pkcs9_signingTime, -1);
    X509_ATTRIBUTE* attribute = at < 0 ? nullptr : CMS_signed_get_attr(signer, at);
    const ASN1_TYPE* value = attribute == nullptr ? nullptr : X509_ATTRIBUTE_get0_type(attribute, 0);
    if (value == nullptr || (value->type != V_ASN1_UTCTIME && value->type != V_ASN1_GENERALIZEDTIME))
        return std::nullopt;
    return dateTimeOf(value->value.asn1_string);
}

} // namespace

std::optional<SignedData> SignedData::parse(ByteView der, std::string_view contentType)
{
    if (der.empty() || der.size() > LONG_MAX)
        return std::nullopt;
    const QuietErrors quiet;
    const unsigned char* at = der.data();
    const Cms cms(d2i_CMS_ContentInfo(nullptr, &at, static_cast<long>(der.size())));
    const Object type(OBJ_txt2obj(std::string(contentType).c_str(), 1));
    if (!cms || !type || OBJ_obj2nid(CMS_get0_type(cms.get())) != NID_pkcs7_signed
        || OBJ_cmp(CMS_get0_eContentType(cms.get()), type.get()) != 0)
        return std::nullopt;
    ASN1_OCTET_STRING** content = CMS_get0_content(cms.get());
    STACK_OF(CMS_SignerInfo)* signers = CMS_get0_SignerInfos(cms.get());
    if (content == nullptr || *content == nullptr || sk_CMS_SignerInfo_num(signers) < 1)
        return std::nullopt;

    CMS_set1_signers_certs(cms.get(), nullptr, 0);
    CMS_SignerInfo* signer = sk_CMS_SignerInfo_value(signers, 0);
    X509* certificate = nullptr;
    CMS_SignerInfo_get0_algs(signer, nullptr, &certificate, nullptr, nullptr);
    SignedData result;
    result.content
        = bytes(ByteView(ASN1_STRING_get0_data(*content), static_cast<std::size_t>(ASN1_STRING_length(*content))));
    result.signature = judge(cms.get(), signer, type.get());
    if (certificate != nullptr)
        result.signer = derOf(certificate);
    result.signingTime = signingTimeOf(signer);
    return result;
}

} // namespace kelvara::chip
