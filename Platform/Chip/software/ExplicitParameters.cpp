#include "Platform/Chip/software/ExplicitParameters.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/trust/OpenSsl_p.h"

#include <array>
#include <openssl/core_names.h>
#include <openssl/ec.h>

namespace kelvara::chip::software {

namespace {

using namespace openssl;

constexpr std::array<std::uint8_t, 7> kEcPublicKey { 0x2A, 0x86, 0x48, 0xCE, 0x3D, 0x02, 0x01 };
constexpr std::array<std::uint8_t, 7> kX942 { 0x2A, 0x86, 0x48, 0xCE, 0x3E, 0x02, 0x01 };

Bytes algorithm(ByteView identifier, ByteView parameters)
{
    return makeTlv(0x30, joined({ makeTlv(0x06, identifier), parameters }));
}

std::optional<Bytes> explicitCurve(int curve)
{
    using Group = std::unique_ptr<EC_GROUP, Deleter<EC_GROUP_free>>;
    const Group group(EC_GROUP_new_by_curve_name(curve));
    if (!group)
        return std::nullopt;
    EC_GROUP_set_asn1_flag(group.get(), OPENSSL_EC_EXPLICIT_CURVE);
    return algorithm(kEcPublicKey, derOf<const EC_GROUP>(group.get(), i2d_ECPKParameters));
}

std::optional<Bytes> explicitPrimeField(const char* name)
{
    const KeyContext context(EVP_PKEY_CTX_new_from_name(nullptr, "DHX", nullptr));
    OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_PKEY_PARAM_GROUP_NAME, const_cast<char*>(name), 0),
        OSSL_PARAM_construct_end(),
    };
    EVP_PKEY* made = nullptr;
    if (!context || EVP_PKEY_fromdata_init(context.get()) != 1
        || EVP_PKEY_fromdata(context.get(), &made, EVP_PKEY_KEY_PARAMETERS, parameters) != 1)
        return std::nullopt;
    const Key key(made);
    Bytes numbers; // prime, generator, order
    for (const char* part : { OSSL_PKEY_PARAM_FFC_P, OSSL_PKEY_PARAM_FFC_G, OSSL_PKEY_PARAM_FFC_Q }) {
        BIGNUM* value = nullptr;
        if (EVP_PKEY_get_bn_param(key.get(), part, &value) != 1)
            return std::nullopt;
        Bytes digits(static_cast<std::size_t>(BN_num_bytes(value)) + 1); // a zero before what would be negative
        BN_bn2bin(value, digits.data() + 1);
        BN_free(value);
        numbers = joined(
            { numbers, makeTlv(0x02, (digits[1] & 0x80) != 0 ? ByteView(digits) : ByteView(digits).subspan(1)) });
    }
    return algorithm(kX942, makeTlv(0x30, numbers));
}

} // namespace

std::optional<Bytes> explicitAlgorithm(unsigned parameterId)
{
    const QuietErrors quiet;
    constexpr std::array primeFields { "dh_1024_160", "dh_2048_224", "dh_2048_256" };
    constexpr std::array curves { NID_X9_62_prime192v1, NID_brainpoolP192r1, NID_secp224r1, NID_brainpoolP224r1,
        NID_X9_62_prime256v1, NID_brainpoolP256r1, NID_brainpoolP320r1, NID_secp384r1, NID_brainpoolP384r1,
        NID_brainpoolP512r1, NID_secp521r1 };
    constexpr unsigned firstCurve = 8;
    if (parameterId < primeFields.size())
        return explicitPrimeField(primeFields[parameterId]);
    if (parameterId >= firstCurve && parameterId - firstCurve < curves.size())
        return explicitCurve(curves[parameterId - firstCurve]);
    return std::nullopt;
}

} // namespace kelvara::chip::software
