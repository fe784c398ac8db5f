#include "Platform/Chip/crypto/EllipticCurveGroup.h"

#include "Platform/Chip/crypto/BigNumber_p.h"

#include <openssl/ec.h>
#include <openssl/obj_mac.h>
#include <openssl/objects.h>

namespace kelvara::chip {

namespace {

struct CurveDeleter
{
    void operator()(EC_GROUP* group) const { EC_GROUP_free(group); }
    void operator()(EC_POINT* point) const { EC_POINT_clear_free(point); }
};
using Curve = std::unique_ptr<EC_GROUP, CurveDeleter>;
using Point = std::unique_ptr<EC_POINT, CurveDeleter>;

constexpr int smallestField = 160;
constexpr int greatestField = 521;

class EllipticCurveGroup final : public KeyAgreementGroup
{
public:
    explicit EllipticCurveGroup(Curve curve)
        : m_curve(std::move(curve)), m_fieldBits(EC_GROUP_get_degree(m_curve.get()))
    { }

    Kind kind() const override { return Kind::ECDH; }
    std::size_t fieldBits() const override { return static_cast<std::size_t>(m_fieldBits); }
    Bytes generator() const override { return encoded(EC_GROUP_get0_generator(m_curve.get())); }

    std::optional<Bytes> element(ByteView encodedPoint) const override
    {
        if (!point(encodedPoint))
            return std::nullopt;
        return bytes(encodedPoint);
    }

    Bytes randomScalar(const RandomSource& random) const override
    {
        const BIGNUM* order = EC_GROUP_get0_order(m_curve.get());
        return fixedBytes(randomBelow(order, random).get(), static_cast<std::size_t>(BN_num_bytes(order)));
    }

    std::optional<Bytes> power(ByteView element, ByteView scalar) const override
    {
        const Point base = point(element);
        if (!base)
            return std::nullopt;
        return times(base.get(), bigNumber(scalar).get());
    }

    std::optional<Bytes> combined(ByteView one, ByteView other) const override
    {
        const Point a = point(one);
        const Point b = point(other);
        if (!a || !b)
            return std::nullopt;
        const Point sum = newPoint();
        require(EC_POINT_add(m_curve.get(), sum.get(), a.get(), b.get(), newBigNumberContext().get()) == 1);
        return unlessNeutral(sum.get());
    }

    std::optional<Bytes> quotient(ByteView numerator, ByteView denominator) const override
    {
        const BIGNUM* order = EC_GROUP_get0_order(m_curve.get());
        const BigNumberContext context = newBigNumberContext();
        const BigNumber divisor = bigNumber(denominator);
        BN_set_flags(divisor.get(), BN_FLG_CONSTTIME);
        const BigNumber inverse(BN_mod_inverse(nullptr, divisor.get(), order, context.get()));
        if (!inverse)
            return std::nullopt;
        const BigNumber result = newBigNumber();
        require(BN_mod_mul(result.get(), bigNumber(numerator).get(), inverse.get(), order, context.get()) == 1);
        return fixedBytes(result.get(), static_cast<std::size_t>(BN_num_bytes(order)));
    }

    std::optional<Bytes> secret(ByteView element) const override
    {
        if (!point(element))
            return std::nullopt;
        return bytes(element.subspan(1, fieldSize()));
    }

    std::optional<Bytes> mapped(ByteView pseudoRandom) const override;

private:
    std::size_t fieldSize() const { return static_cast<std::size_t>(m_fieldBits + 7) / 8; }

    Point newPoint() const
    {
        Point point(EC_POINT_new(m_curve.get()));
        require(point != nullptr);
        return point;
    }

    /// Null unless the bytes are an uncompressed point of the curve's own subgroup.
    Point point(ByteView encodedPoint) const
    {
        if (encodedPoint.size() != 1 + 2 * fieldSize() || encodedPoint[0] != 4)
            return nullptr;
        const BigNumberContext context = newBigNumberContext();
        Point point = newPoint();
        // Refuses coordinates out of range and points beside the curve.
        if (EC_POINT_oct2point(m_curve.get(), point.get(), encodedPoint.data(), encodedPoint.size(), context.get())
            != 1)
            return nullptr;
        if (!BN_is_one(EC_GROUP_get0_cofactor(m_curve.get()))) {
            const Point neutral = newPoint();
            const BIGNUM* order = EC_GROUP_get0_order(m_curve.get());
            require(EC_POINT_mul(m_curve.get(), neutral.get(), nullptr, point.get(), order, context.get()) == 1);
            if (EC_POINT_is_at_infinity(m_curve.get(), neutral.get()) != 1)
                return nullptr;
        }
        return point;
    }

    Bytes encoded(const EC_POINT* point) const
    {
        Bytes result(1 + 2 * fieldSize());
        require(EC_POINT_point2oct(m_curve.get(), point, POINT_CONVERSION_UNCOMPRESSED, result.data(), result.size(),
                    newBigNumberContext().get())
            == result.size());
        return result;
    }

    std::optional<Bytes> unlessNeutral(const EC_POINT* point) const
    {
        if (EC_POINT_is_at_infinity(m_curve.get(), point) == 1)
            return std::nullopt;
        return encoded(point);
    }

    std::optional<Bytes> times(const EC_POINT* base, const BIGNUM* scalar) const
    {
        const Point product = newPoint();
        require(EC_POINT_mul(m_curve.get(), product.get(), nullptr, base, scalar, newBigNumberContext().get()) == 1);
        return unlessNeutral(product.get());
    }

    Curve m_curve;
    int m_fieldBits;
};

// The point encoding of Brier, Coron, Icart, Madore, Randriam and Tibouchi for primes that leave 3 modulo 4, with the
// names of ICAO Doc 9303-11 appendix B: no branch depends on the number but the last, and no square root is searched
// for.
std::optional<Bytes> EllipticCurveGroup::mapped(ByteView pseudoRandom) const
{
    const BigNumberContext context = newBigNumberContext();
    BN_CTX* c = context.get();
    const BigNumber p = newBigNumber(), a = newBigNumber(), b = newBigNumber();
    require(EC_GROUP_get_curve(m_curve.get(), p.get(), a.get(), b.get(), c) == 1);
    if (BN_mod_word(p.get(), 4) != 3 || BN_is_zero(a.get()) || BN_is_zero(b.get()))
        return std::nullopt;

    const BigNumber t = bigNumber(pseudoRandom);
    const BigNumber alpha = newBigNumber(), x2 = newBigNumber(), x3 = newBigNumber(), h2 = newBigNumber(),
                    u = newBigNumber(), exponent = newBigNumber(), power = newBigNumber(), test = newBigNumber(),
                    one = newBigNumber();
    require(BN_one(one.get()) && BN_nnmod(t.get(), t.get(), p.get(), c) && BN_mod_sqr(alpha.get(), t.get(), p.get(), c)
        && BN_mod_sub(alpha.get(), p.get(), alpha.get(), p.get(), c));

    // x2 = -b/a (1 + 1/(alpha + alpha²))
    require(
        BN_mod_sqr(test.get(), alpha.get(), p.get(), c) && BN_mod_add(test.get(), test.get(), alpha.get(), p.get(), c));
    if (BN_is_zero(test.get()))
        return std::nullopt;
    require(BN_mod_inverse(test.get(), test.get(), p.get(), c) != nullptr
        && BN_mod_add(test.get(), test.get(), one.get(), p.get(), c)
        && BN_mod_inverse(x2.get(), a.get(), p.get(), c) != nullptr
        && BN_mod_mul(x2.get(), x2.get(), b.get(), p.get(), c) && BN_mod_sub(x2.get(), p.get(), x2.get(), p.get(), c)
        && BN_mod_mul(x2.get(), x2.get(), test.get(), p.get(), c)
        && BN_mod_mul(x3.get(), alpha.get(), x2.get(), p.get(), c));

    // h2 = x2³ + a x2 + b; u = t³ h2
    require(BN_mod_sqr(h2.get(), x2.get(), p.get(), c) && BN_mod_add(h2.get(), h2.get(), a.get(), p.get(), c)
        && BN_mod_mul(h2.get(), h2.get(), x2.get(), p.get(), c) && BN_mod_add(h2.get(), h2.get(), b.get(), p.get(), c)
        && BN_mod_sqr(u.get(), t.get(), p.get(), c) && BN_mod_mul(u.get(), u.get(), t.get(), p.get(), c)
        && BN_mod_mul(u.get(), u.get(), h2.get(), p.get(), c));

    // power = h2^(p - 1 - (p + 1)/4)
    require(BN_copy(exponent.get(), p.get()) && BN_add_word(exponent.get(), 1)
        && BN_rshift(exponent.get(), exponent.get(), 2) && BN_sub(exponent.get(), p.get(), exponent.get())
        && BN_sub_word(exponent.get(), 1)
        && BN_mod_exp_mont_consttime(power.get(), h2.get(), exponent.get(), p.get(), c, nullptr)
        && BN_mod_sqr(test.get(), power.get(), p.get(), c) && BN_mod_mul(test.get(), test.get(), h2.get(), p.get(), c));
    const bool second = BN_is_one(test.get());
    require(BN_mod_mul(power.get(), power.get(), second ? h2.get() : u.get(), p.get(), c));
    const Point point = newPoint();
    if (EC_POINT_set_affine_coordinates(m_curve.get(), point.get(), second ? x2.get() : x3.get(), power.get(), c) != 1)
        return std::nullopt;
    return times(point.get(), EC_GROUP_get0_cofactor(m_curve.get()));
}

bool isSound(const EC_GROUP* curve)
{
    const int bits = EC_GROUP_get_degree(curve);
    if (EC_GROUP_get_field_type(curve) != NID_X9_62_prime_field || bits < smallestField || bits > greatestField)
        return false;
    if (EC_GROUP_get_curve_name(curve) != NID_undef)
        return true;
    const BigNumberContext context = newBigNumberContext();
    const BigNumber p = newBigNumber();
    const BIGNUM* order = EC_GROUP_get0_order(curve);
    return order != nullptr && BN_num_bits(order) >= smallestField
        && EC_GROUP_get_curve(curve, p.get(), nullptr, nullptr, context.get()) == 1
        && BN_check_prime(p.get(), context.get(), nullptr) == 1 && BN_check_prime(order, context.get(), nullptr) == 1
        && BN_cmp(p.get(), order) != 0 // on such a curve logarithms are easy
        && !BN_is_zero(EC_GROUP_get0_cofactor(curve)) && BN_num_bits(EC_GROUP_get0_cofactor(curve)) <= 8
        && EC_GROUP_check(curve, context.get()) == 1;
}

GroupPointer group(Curve curve)
{
    if (!curve || EC_GROUP_get0_generator(curve.get()) == nullptr || !isSound(curve.get()))
        return nullptr;
    return std::make_shared<EllipticCurveGroup>(std::move(curve));
}

} // namespace

GroupPointer namedCurve(const char* name)
{
    const int nid = OBJ_sn2nid(name);
    return nid == NID_undef ? nullptr : group(Curve(EC_GROUP_new_by_curve_name(nid)));
}

GroupPointer curveFromParameters(ByteView encoded)
{
    constexpr std::size_t longest = 1024; // explicit parameters of 521 bits with a seed take half of that
    if (encoded.empty() || encoded.size() > longest)
        return nullptr;
    const unsigned char* at = encoded.data();
    Curve curve(d2i_ECPKParameters(nullptr, &at, static_cast<long>(encoded.size())));
    if (at != encoded.data() + encoded.size())
        return nullptr;
    return group(std::move(curve));
}

} // namespace kelvara::chip
