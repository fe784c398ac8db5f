#include "ExplicitCurve.h"
#include "Platform/Chip/crypto/DomainParameters.h"
#include "Platform/Chip/crypto/EllipticCurveGroup.h"
#include "Platform/Chip/crypto/PrimeFieldGroup.h"
#include "ProtocolRun.h"

namespace kelvara::chip {
namespace {

TEST(KeyAgreementGroup, BothSidesOfEveryStandardisedGroupAgree)
{
    for (unsigned id = 0; id < 32; ++id) {
        const GroupPointer group = standardizedGroup(id);
        ASSERT_EQ(group != nullptr, id < 3 || (id >= 8 && id <= 18)) << id;
        if (!group)
            continue;
        const auto random = secureRandom();
        const auto a = group->generateKeyPair(group->generator(), random);
        const auto b = group->generateKeyPair(group->generator(), random);
        ASSERT_TRUE(a && b);
        const auto one = group->power(a->publicKey, b->privateKey);
        const auto other = group->power(b->publicKey, a->privateKey);
        ASSERT_TRUE(one && other) << id;
        EXPECT_EQ(*one, *other);
        EXPECT_EQ(group->secret(*one)->size(), (group->fieldBits() + 7) / 8);
        constexpr unsigned p224 = 10; // its prime leaves 1 modulo 4
        const auto mapped = group->mapped(Bytes(80, 0x5A));
        EXPECT_EQ(mapped.has_value(), id != p224) << id;
        EXPECT_TRUE(!mapped || group->element(*mapped)) << id;
        EXPECT_FALSE(group->power(group->generator(), Bytes(1, 0))) << "the neutral element is no key";
        EXPECT_FALSE(group->mapped({})) << id;
    }
}

TEST(KeyAgreementGroup, ForeignElementsAreChecked)
{
    const GroupPointer curve = standardizedGroup(13);
    const Bytes point = curve->generator();
    const auto changed = [&point](std::size_t at, std::uint8_t to) {
        Bytes copy = point;
        copy[at] = to;
        return copy;
    };
    Bytes outOfRange(65, 0xFF);
    outOfRange[0] = 4;
    for (const Bytes& no : { Bytes {}, Bytes(1, 0), Bytes(65, 0), changed(0, 6), changed(0, 7), changed(0, 0),
             changed(64, 0), outOfRange, standardizedGroup(12)->generator(), standardizedGroup(14)->generator(),
             joined({ hex("02"), ByteView(point).subspan(1, 32) }), joined({ point, hex("00") }) }) {
        EXPECT_FALSE(curve->element(no)) << toHex(no);
        EXPECT_FALSE(curve->power(no, Bytes(1, 2)));
        EXPECT_FALSE(curve->combined(point, no));
        EXPECT_FALSE(curve->secret(no));
    }
    // A point and its opposite add up to nothing.
    const Bytes order = hex("A9FB57DBA1EEA9BC3E660A909D838D718C397AA3B561A6F7901E0E82974856A7");
    const Bytes last = joined({ first(order, 31), hex("A6") });
    EXPECT_FALSE(curve->power(point, order));
    EXPECT_FALSE(curve->combined(point, *curve->power(point, last)));

    const GroupPointer field = standardizedGroup(0);
    const Bytes p = hex("B10B8F96A080E01DDE92DE5EAE5D54EC52C99FBCFB06A3C69A6A9DCA52D23B61"
                        "6073E28675A23D189838EF1E2EE652C013ECB4AEA906112324975C3CD49B83BF"
                        "ACCBDD7D90C4BD7098488E9C219A73724EFFD6FAE5644738FAA31A4FF55BCCC0"
                        "A151AF5F0DC8B4BD45BF37DF365C1A65E68CFDA76D4DA708DF1FB2BC2E4A4371");
    const Bytes beforeP = joined({ first(p, 127), hex("70") });
    const Bytes afterP = joined({ first(p, 127), hex("73") });
    for (const Bytes& no :
        { Bytes {}, Bytes(1, 0), Bytes(1, 1), Bytes(1, 2), beforeP, p, afterP, Bytes(128, 0xFF), Bytes(129, 1) })
        EXPECT_FALSE(field->element(no)) << toHex(no); // 2 lies beside the subgroup
    EXPECT_EQ(field->element(field->generator()), field->generator());
    const Bytes longer = joined({ hex("00"), *field->power(field->generator(), Bytes(1, 2)) });
    EXPECT_FALSE(longer.size() <= 128 && !field->element(longer)) << "leading zeros do no harm";

    // Where the order was not told the range is all there is.
    const GroupPointer loose = primeField(p, {}, Bytes(1, 2));
    ASSERT_TRUE(loose);
    EXPECT_TRUE(loose->element(Bytes(1, 3)));
    EXPECT_FALSE(loose->element(beforeP));
    EXPECT_FALSE(loose->mapped(Bytes(80, 1)));
    EXPECT_FALSE(primeField(p, {}, Bytes(1, 1)));
    EXPECT_FALSE(primeField(p, hex("F518AA8781A8DF278ABA4E7D64B7CB9D49462353"), Bytes(1, 2)));
    EXPECT_FALSE(primeField(beforeP, {}, Bytes(1, 2)));
    EXPECT_FALSE(primeField(Bytes(100, 0xFF), {}, Bytes(1, 2)));
    EXPECT_FALSE(namedPrimeField("no such group"));
    EXPECT_FALSE(namedCurve("no such curve"));
}

TEST(KeyAgreementGroup, ExplicitCurvesAreTriedNotBelieved)
{
    const GroupPointer known = curveFromParameters(explicitParameters(brainpoolP256r1));
    ASSERT_TRUE(known);
    EXPECT_EQ(known->generator(), standardizedGroup(13)->generator());

    const GroupPointer unnamed = curveFromParameters(explicitParameters(frp256v1));
    ASSERT_TRUE(unnamed);
    const auto pair = unnamed->generateKeyPair(unnamed->generator(), secureRandom());
    EXPECT_TRUE(pair && unnamed->element(pair->publicKey));

    ExplicitCurve wrong = frp256v1;
    wrong.order = brainpoolP256r1.order;
    EXPECT_FALSE(curveFromParameters(explicitParameters(wrong)));
    wrong = frp256v1;
    wrong.b = wrong.a;
    EXPECT_FALSE(curveFromParameters(explicitParameters(wrong))) << "a generator beside the curve";
    wrong = frp256v1;
    std::swap(wrong.p, wrong.order);
    EXPECT_FALSE(curveFromParameters(explicitParameters(wrong)));
    EXPECT_FALSE(curveFromParameters({}));
    EXPECT_FALSE(curveFromParameters(Bytes(2000, 0x30)));
    const Bytes whole = explicitParameters(brainpoolP256r1);
    for (std::size_t size = 1; size < whole.size(); ++size)
        EXPECT_FALSE(curveFromParameters(ByteView(whole).first(size)));
}

} // namespace
} // namespace kelvara::chip
