#include "Platform/Chip/crypto/SignatureKey.h"

#include "Platform/Chip/crypto/BigNumber_p.h"
#include "Platform/Chip/crypto/DomainParameters.h"

#include <algorithm>
#include <array>
#include <openssl/core_names.h>
#include <openssl/ecdsa.h>
#include <openssl/evp.h>
#include <openssl/obj_mac.h>
#include <openssl/objects.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

namespace kelvara::chip {

namespace {

struct KeyDeleter
{
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
    void operator()(ECDSA_SIG* signature) const { ECDSA_SIG_free(signature); }
};
using KeyPointer = std::unique_ptr<EVP_PKEY, KeyDeleter>;
using DigestContext = std::unique_ptr<EVP_MD_CTX, KeyDeleter>;
using EcdsaSignature = std::unique_ptr<ECDSA_SIG, KeyDeleter>;

constexpr int smallestModulus = 1024;
constexpr int greatestModulus = 4096;

BigNumber parameter(const EVP_PKEY* key, const char* name)
{
    BIGNUM* number = nullptr;
    return EVP_PKEY_get_bn_param(key, name, &number) == 1 ? BigNumber(number) : nullptr;
}

const EVP_MD* method(DigestAlgorithm algorithm)
{
    constexpr std::array names { SN_sha1, SN_sha224, SN_sha256, SN_sha384, SN_sha512 };
    return EVP_get_digestbyname(names[static_cast<std::size_t>(algorithm)]);
}

/// The digest and the length that a message representative's last bytes name (ISO/IEC 10118-3 identifiers).
struct Trailer
{
    DigestAlgorithm algorithm;
    std::size_t size;
};

constexpr std::uint8_t impliedTrailer = 0xBC, explicitTrailer = 0xCC;
constexpr std::array identifiers { // by the digest's number
    std::uint8_t { 0x33 }, std::uint8_t { 0x38 }, std::uint8_t { 0x34 }, std::uint8_t { 0x36 }, std::uint8_t { 0x35 }
};

std::optional<Trailer> trailerOf(ByteView representative)
{
    const std::uint8_t last = representative.back();
    if (last == impliedTrailer)
        return Trailer { DigestAlgorithm::SHA1, 1 };
    const auto* found = std::find(identifiers.begin(), identifiers.end(), representative[representative.size() - 2]);
    if (last != explicitTrailer || found == identifiers.end())
        return std::nullopt;
    return Trailer { static_cast<DigestAlgorithm>(found - identifiers.begin()), 2 };
}

/// How many bytes the header takes: 6A, or 6B and padding nibbles B up to an A; 0 for anything else. The 6 says that
/// a part of the message is not within the signature, which the challenge never is.
std::size_t headerSize(ByteView representative)
{
    if (representative[0] == 0x6A)
        return 1;
    if (representative[0] != 0x6B)
        return 0;
    std::size_t at = 1;
    while (at < representative.size() && representative[at] == 0xBB)
        ++at;
    return at < representative.size() && representative[at] == 0xBA ? at + 1 : 0;
}

bool recovers(ByteView representative, ByteView known)
{
    const auto trailer = trailerOf(representative);
    const std::size_t header = headerSize(representative);
    if (!trailer || header == 0)
        return false;
    const std::size_t tail = digestSize(trailer->algorithm) + trailer->size;
    if (header + tail > representative.size())
        return false;
    const ByteView recovered = representative.subspan(header, representative.size() - header - tail);
    const ByteView hash = representative.last(tail).first(digestSize(trailer->algorithm));
    return equalInConstantTime(hash, digest(trailer->algorithm, joined({ recovered, known })));
}

} // namespace

struct SignatureKey::Key
{
    KeyPointer pkey;
    bool isRsa = false;
    BigNumber modulus; ///< Null for curves.
    BigNumber exponent;
    std::size_t orderSize = 0; ///< Of curves.

    /// Null for keys that are too short, too long or of another kind.
    static std::shared_ptr<const Key> make(KeyPointer pkey)
    {
        if (!pkey)
            return nullptr;
        auto key = std::make_shared<Key>();
        key->isRsa = EVP_PKEY_is_a(pkey.get(), "RSA") == 1;
        if (key->isRsa) {
            key->modulus = parameter(pkey.get(), OSSL_PKEY_PARAM_RSA_N);
            key->exponent = parameter(pkey.get(), OSSL_PKEY_PARAM_RSA_E);
            if (!key->modulus || !key->exponent)
                return nullptr;
            const int bits = BN_num_bits(key->modulus.get());
            // Other lengths than whole bytes put the header across bytes; no chip has such a key.
            if (bits < smallestModulus || bits > greatestModulus || bits % 8 != 0 || !BN_is_odd(key->modulus.get())
                || !BN_is_odd(key->exponent.get()) || BN_is_one(key->exponent.get())
                || BN_cmp(key->exponent.get(), key->modulus.get()) >= 0)
                return nullptr;
        } else {
            const BigNumber order
                = EVP_PKEY_is_a(pkey.get(), "EC") == 1 ? parameter(pkey.get(), OSSL_PKEY_PARAM_EC_ORDER) : nullptr;
            if (!order)
                return nullptr;
            key->orderSize = static_cast<std::size_t>(BN_num_bytes(order.get()));
        }
        key->pkey = std::move(pkey);
        return key;
    }

    std::size_t modulusSize() const { return static_cast<std::size_t>(BN_num_bytes(modulus.get())); }
};

std::optional<SignatureKey> SignatureKey::fromInfo(ByteView subjectPublicKeyInfo)
{
    constexpr std::size_t longest = 2048;
    if (subjectPublicKeyInfo.empty() || subjectPublicKeyInfo.size() > longest)
        return std::nullopt;
    const unsigned char* at = subjectPublicKeyInfo.data();
    KeyPointer pkey(d2i_PUBKEY(nullptr, &at, static_cast<long>(subjectPublicKeyInfo.size())));
    if (!pkey || at != subjectPublicKeyInfo.data() + subjectPublicKeyInfo.size())
        return std::nullopt;
    auto key = Key::make(std::move(pkey));
    // A curve that was spelled out is tried like all others.
    if (!key || (!key->isRsa && !publicKeyFromInfo(subjectPublicKeyInfo)))
        return std::nullopt;
    return SignatureKey(std::move(key));
}

std::optional<SignatureKey> SignatureKey::generateRsa(unsigned bits)
{
    auto key = Key::make(KeyPointer(EVP_RSA_gen(bits)));
    return key ? std::optional(SignatureKey(std::move(key))) : std::nullopt;
}

std::optional<SignatureKey> SignatureKey::generateEc(const char* curve)
{
    auto key = Key::make(KeyPointer(EVP_EC_gen(curve)));
    return key ? std::optional(SignatureKey(std::move(key))) : std::nullopt;
}

bool SignatureKey::isRsa() const
{
    return m_key->isRsa;
}

Bytes SignatureKey::subjectPublicKeyInfo() const
{
    unsigned char* encoded = nullptr;
    const int size = i2d_PUBKEY(m_key->pkey.get(), &encoded);
    require(size > 0);
    Bytes result = bytes(ByteView(encoded, static_cast<std::size_t>(size)));
    OPENSSL_free(encoded);
    return result;
}

bool SignatureKey::verifiesRecovery(ByteView known, ByteView signature) const
{
    if (!m_key->isRsa || signature.size() != m_key->modulusSize())
        return false;
    const BigNumber number = bigNumber(signature);
    if (BN_cmp(number.get(), m_key->modulus.get()) >= 0)
        return false;
    const BigNumber opened = newBigNumber();
    require(
        BN_mod_exp(opened.get(), number.get(), m_key->exponent.get(), m_key->modulus.get(), newBigNumberContext().get())
        == 1);
    // Signers may give the smaller of s and n - s: a representative always ends with the nibble C.
    if (BN_mod_word(opened.get(), 16) != 0xC)
        require(BN_sub(opened.get(), m_key->modulus.get(), opened.get()) == 1);
    return recovers(fixedBytes(opened.get(), m_key->modulusSize()), known);
}

std::optional<Bytes> SignatureKey::signRecovery(
    DigestAlgorithm algorithm, ByteView known, ByteView random, bool hasShortTrailer) const
{
    const BigNumber exponent = m_key->isRsa ? parameter(m_key->pkey.get(), OSSL_PKEY_PARAM_RSA_D) : nullptr;
    if (!exponent || (hasShortTrailer && algorithm != DigestAlgorithm::SHA1))
        return std::nullopt;
    const std::uint8_t header[] = { 0x6A };
    const std::uint8_t shortTrailer[] = { impliedTrailer };
    const std::uint8_t longTrailer[] = { identifiers[static_cast<std::size_t>(algorithm)], explicitTrailer };
    const ByteView trailer = hasShortTrailer ? ByteView(shortTrailer) : ByteView(longTrailer);
    const std::size_t around = 1 + digestSize(algorithm) + trailer.size();
    if (m_key->modulusSize() < around || random.size() < m_key->modulusSize() - around)
        return std::nullopt;
    random = random.first(m_key->modulusSize() - around);
    const Bytes representative
        = joined({ ByteView(header), random, digest(algorithm, joined({ random, known })), trailer });
    const BigNumber result = newBigNumber();
    require(BN_mod_exp_mont_consttime(result.get(), bigNumber(representative).get(), exponent.get(),
                m_key->modulus.get(), newBigNumberContext().get(), nullptr)
        == 1);
    return fixedBytes(result.get(), m_key->modulusSize());
}

bool SignatureKey::verifiesPlain(DigestAlgorithm algorithm, ByteView message, ByteView signature) const
{
    if (m_key->isRsa || signature.size() != 2 * m_key->orderSize)
        return false;
    const EcdsaSignature parts(ECDSA_SIG_new());
    require(parts
        && ECDSA_SIG_set0(parts.get(), bigNumber(signature.first(m_key->orderSize)).release(),
               bigNumber(signature.last(m_key->orderSize)).release())
            == 1);
    unsigned char* encoded = nullptr;
    const int size = i2d_ECDSA_SIG(parts.get(), &encoded);
    require(size > 0);
    const DigestContext context(EVP_MD_CTX_new());
    const bool verifies = context
        && EVP_DigestVerifyInit(context.get(), nullptr, method(algorithm), nullptr, m_key->pkey.get()) == 1
        && EVP_DigestVerify(context.get(), encoded, static_cast<std::size_t>(size), message.data(), message.size())
            == 1;
    OPENSSL_free(encoded);
    return verifies;
}

std::optional<Bytes> SignatureKey::signPlain(DigestAlgorithm algorithm, ByteView message) const
{
    const DigestContext context(EVP_MD_CTX_new());
    std::size_t size = 0;
    if (m_key->isRsa || !context
        || EVP_DigestSignInit(context.get(), nullptr, method(algorithm), nullptr, m_key->pkey.get()) != 1
        || EVP_DigestSign(context.get(), nullptr, &size, message.data(), message.size()) != 1)
        return std::nullopt;
    Bytes encoded(size);
    if (EVP_DigestSign(context.get(), encoded.data(), &size, message.data(), message.size()) != 1)
        return std::nullopt;
    const unsigned char* at = encoded.data();
    const EcdsaSignature parts(d2i_ECDSA_SIG(nullptr, &at, static_cast<long>(size)));
    require(parts != nullptr);
    return joined({ fixedBytes(ECDSA_SIG_get0_r(parts.get()), m_key->orderSize),
        fixedBytes(ECDSA_SIG_get0_s(parts.get()), m_key->orderSize) });
}

} // namespace kelvara::chip
