#pragma once

// For .cpp files only: OpenSSL never shows in a header that others include.

#include "Platform/Chip/crypto/Digest.h"

#include <QDateTime>

#include <openssl/bio.h>
#include <openssl/cms.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/x509.h>

#include <climits>
#include <memory>
#include <optional>

namespace kelvara::chip::openssl {

/// Frees with the function that belongs to the type.
template<auto free> struct Deleter
{
    template<typename T> void operator()(T* object) const { free(object); }
};

using Bio = std::unique_ptr<BIO, Deleter<BIO_free>>;
using Cms = std::unique_ptr<CMS_ContentInfo, Deleter<CMS_ContentInfo_free>>;
using Certificate = std::unique_ptr<X509, Deleter<X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY_free>>;
using KeyContext = std::unique_ptr<EVP_PKEY_CTX, Deleter<EVP_PKEY_CTX_free>>;
using Object = std::unique_ptr<ASN1_OBJECT, Deleter<ASN1_OBJECT_free>>;
using Time = std::unique_ptr<ASN1_TIME, Deleter<ASN1_TIME_free>>;

/// Leaves the thread's queue of errors as it was: a failure here is an outcome and no error of the host.
class QuietErrors
{
public:
    QuietErrors() { ERR_set_mark(); }
    ~QuietErrors() { ERR_pop_to_mark(); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
};

[[nodiscard]] inline Certificate certificateOf(ByteView der)
{
    const unsigned char* at = der.data();
    return der.size() > LONG_MAX ? nullptr : Certificate(d2i_X509(nullptr, &at, static_cast<long>(der.size())));
}

/// The DER of any structure, by its i2d function.
template<typename T> [[nodiscard]] Bytes derOf(T* object, int (*encode)(T*, unsigned char**))
{
    const int size = encode(object, nullptr);
    if (size <= 0)
        return {};
    Bytes der(static_cast<std::size_t>(size));
    unsigned char* at = der.data();
    encode(object, &at);
    return der;
}

[[nodiscard]] inline Bytes derOf(const X509* certificate)
{
    return derOf<const X509>(certificate, i2d_X509);
}

[[nodiscard]] inline std::optional<QDateTime> dateTimeOf(const ASN1_TIME* time)
{
    std::tm parts {};
    if (time == nullptr || ASN1_TIME_to_tm(time, &parts) != 1)
        return std::nullopt;
    const QDateTime moment(QDate(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday),
        QTime(parts.tm_hour, parts.tm_min, parts.tm_sec), Qt::UTC);
    return moment.isValid() ? std::optional(moment) : std::nullopt;
}

[[nodiscard]] inline const EVP_MD* methodOf(DigestAlgorithm algorithm)
{
    switch (algorithm) {
    case DigestAlgorithm::SHA1:
        return EVP_sha1();
    case DigestAlgorithm::SHA224:
        return EVP_sha224();
    case DigestAlgorithm::SHA256:
        return EVP_sha256();
    case DigestAlgorithm::SHA384:
        return EVP_sha384();
    case DigestAlgorithm::SHA512:
        return EVP_sha512();
    }
    return nullptr;
}

/// The algorithm of an identifier among those that documents may use.
[[nodiscard]] inline std::optional<DigestAlgorithm> digestOf(const ASN1_OBJECT* identifier)
{
    switch (OBJ_obj2nid(identifier)) {
    case NID_sha1:
        return DigestAlgorithm::SHA1;
    case NID_sha224:
        return DigestAlgorithm::SHA224;
    case NID_sha256:
        return DigestAlgorithm::SHA256;
    case NID_sha384:
        return DigestAlgorithm::SHA384;
    case NID_sha512:
        return DigestAlgorithm::SHA512;
    default:
        return std::nullopt;
    }
}

} // namespace kelvara::chip::openssl
