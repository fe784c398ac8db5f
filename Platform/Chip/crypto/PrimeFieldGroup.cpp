#include "Platform/Chip/crypto/PrimeFieldGroup.h"

#include "Platform/Chip/crypto/BigNumber_p.h"

#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/params.h>

namespace kelvara::chip {

namespace {

constexpr int smallestPrime = 1024;
constexpr int greatestPrime = 4096;

class PrimeFieldGroup final : public KeyAgreementGroup
{
public:
    PrimeFieldGroup(BigNumber prime, BigNumber order, BigNumber generator)
        : m_prime(std::move(prime)), m_order(std::move(order)), m_generator(std::move(generator))
    { }

    Kind kind() const override { return Kind::DH; }
    std::size_t fieldBits() const override { return static_cast<std::size_t>(BN_num_bits(m_prime.get())); }
    Bytes generator() const override { return shortestBytes(m_generator.get()); }

    /// Odd and big enough, with a generator that is an element.
    bool isSound() const
    {
        const int bits = BN_num_bits(m_prime.get());
        if (bits < smallestPrime || bits > greatestPrime || !BN_is_odd(m_prime.get()))
            return false;
        if (m_order && (BN_num_bits(m_order.get()) < 160 || BN_cmp(m_order.get(), m_prime.get()) >= 0))
            return false;
        return isElement(m_generator.get());
    }

    std::optional<Bytes> element(ByteView encoded) const override
    {
        const BigNumber number = parsed(encoded);
        if (!number)
            return std::nullopt;
        return shortestBytes(number.get());
    }

    Bytes randomScalar(const RandomSource& random) const override
    {
        const BigNumber half = newBigNumber();
        require(BN_rshift1(half.get(), m_prime.get()) == 1);
        return shortestBytes(randomBelow(m_order ? m_order.get() : half.get(), random).get());
    }

    std::optional<Bytes> power(ByteView element, ByteView scalar) const override
    {
        const BigNumber base = parsed(element);
        if (!base)
            return std::nullopt;
        return unlessNeutral(raised(base.get(), bigNumber(scalar).get()).get());
    }

    std::optional<Bytes> combined(ByteView one, ByteView other) const override
    {
        const BigNumber a = parsed(one);
        const BigNumber b = parsed(other);
        if (!a || !b)
            return std::nullopt;
        const BigNumber product = newBigNumber();
        require(BN_mod_mul(product.get(), a.get(), b.get(), m_prime.get(), newBigNumberContext().get()) == 1);
        return unlessNeutral(product.get());
    }

    std::optional<Bytes> quotient(ByteView, ByteView) const override { return std::nullopt; } // no mapping asks for it

    std::optional<Bytes> secret(ByteView element) const override
    {
        const BigNumber number = parsed(element);
        if (!number)
            return std::nullopt;
        return fixedBytes(number.get(), (fieldBits() + 7) / 8);
    }

    std::optional<Bytes> mapped(ByteView pseudoRandom) const override
    {
        if (!m_order)
            return std::nullopt;
        const BigNumberContext context = newBigNumberContext();
        const BigNumber number = bigNumber(pseudoRandom), exponent = newBigNumber();
        require(BN_nnmod(number.get(), number.get(), m_prime.get(), context.get()) == 1
            && BN_sub(exponent.get(), m_prime.get(), BN_value_one()) == 1
            && BN_div(exponent.get(), nullptr, exponent.get(), m_order.get(), context.get()) == 1);
        const BigNumber result = raised(number.get(), exponent.get());
        return isElement(result.get()) ? std::optional(shortestBytes(result.get())) : std::nullopt;
    }

private:
    BigNumber raised(const BIGNUM* base, const BIGNUM* exponent) const
    {
        BigNumber result = newBigNumber();
        require(
            BN_mod_exp_mont_consttime(result.get(), base, exponent, m_prime.get(), newBigNumberContext().get(), nullptr)
            == 1);
        return result;
    }

    bool isElement(const BIGNUM* number) const
    {
        const BigNumber last = newBigNumber();
        require(BN_sub(last.get(), m_prime.get(), BN_value_one()) == 1);
        // 0, 1 and p - 1 would fix the secret.
        if (BN_is_zero(number) || BN_is_one(number) || BN_cmp(number, last.get()) >= 0)
            return false;
        return !m_order || BN_is_one(raised(number, m_order.get()).get());
    }

    BigNumber parsed(ByteView encoded) const
    {
        if (encoded.size() > (fieldBits() + 7) / 8)
            return nullptr;
        BigNumber number = bigNumber(encoded);
        return isElement(number.get()) ? std::move(number) : nullptr;
    }

    std::optional<Bytes> unlessNeutral(const BIGNUM* number) const
    {
        if (BN_is_zero(number) || BN_is_one(number))
            return std::nullopt;
        return shortestBytes(number);
    }

    BigNumber m_prime;
    BigNumber m_order; ///< Null where it was not told.
    BigNumber m_generator;
};

GroupPointer group(BigNumber prime, BigNumber order, BigNumber generator)
{
    auto group = std::make_shared<PrimeFieldGroup>(std::move(prime), std::move(order), std::move(generator));
    return group->isSound() ? group : nullptr;
}

} // namespace

GroupPointer namedPrimeField(const char* name)
{
    const std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(
        EVP_PKEY_CTX_new_from_name(nullptr, "DHX", nullptr), EVP_PKEY_CTX_free);
    OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_PKEY_PARAM_GROUP_NAME, const_cast<char*>(name), 0),
        OSSL_PARAM_construct_end(),
    };
    EVP_PKEY* made = nullptr;
    if (!context || EVP_PKEY_fromdata_init(context.get()) != 1
        || EVP_PKEY_fromdata(context.get(), &made, EVP_PKEY_KEY_PARAMETERS, parameters) != 1)
        return nullptr;
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(made, EVP_PKEY_free);
    const auto number = [&key](const char* parameter) {
        BIGNUM* value = nullptr;
        require(EVP_PKEY_get_bn_param(key.get(), parameter, &value) == 1);
        return BigNumber(value);
    };
    return group(number(OSSL_PKEY_PARAM_FFC_P), number(OSSL_PKEY_PARAM_FFC_Q), number(OSSL_PKEY_PARAM_FFC_G));
}

GroupPointer primeField(ByteView prime, ByteView order, ByteView generator)
{
    constexpr std::size_t longest = greatestPrime / 8 + 1;
    if (prime.empty() || prime.size() > longest || order.size() > longest || generator.size() > longest)
        return nullptr;
    return group(bigNumber(prime), order.empty() ? nullptr : bigNumber(order), bigNumber(generator));
}

} // namespace kelvara::chip
