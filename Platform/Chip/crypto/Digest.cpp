#include "Platform/Chip/crypto/Digest.h"

#include "Platform/Foundation/FatalError.h"

#include <openssl/evp.h>

namespace kelvara::chip {

namespace {

const EVP_MD* method(DigestAlgorithm algorithm)
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
    fatalError("A digest algorithm that does not exist was asked for.");
}

} // namespace

Bytes digest(DigestAlgorithm algorithm, ByteView message)
{
    Bytes result(digestSize(algorithm));
    if (EVP_Digest(message.data(), message.size(), result.data(), nullptr, method(algorithm), nullptr) != 1)
        fatalError("OpenSSL has no SHA digests."); // a build without them is no build of OpenSSL 3
    return result;
}

std::size_t digestSize(DigestAlgorithm algorithm)
{
    return static_cast<std::size_t>(EVP_MD_get_size(method(algorithm)));
}

} // namespace kelvara::chip
