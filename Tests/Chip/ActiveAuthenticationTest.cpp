#include "Platform/Chip/access/ActiveAuthentication.h"

#include "ExplicitCurve.h"
#include "Platform/Chip/software/ChipSigner.h"
#include "Platform/Chip/software/SecurityInfoWriter.h"
#include "ProtocolRun.h"

namespace kelvara::chip {
namespace {

// Keys and signatures of another library (Python's cryptography), over the challenge below.
const Bytes challenge = *fromHex("F173589974BF40C6");
const Bytes rsaKeyInfo = *fromHex(
    "30819F300D06092A864886F70D010101050003818D0030818902818100D3B869092D6A17BDB9AA53AD6CE406B9DFA402894F90BAA0472AA258"
    "C9928E02B46832ABCF6781D7B2241DF8751A4148B5ACC2B6E8C4BF8116104FF1503BD3FE31B8D1E7F6859C9DEDC610DE32593C3F3981E09555"
    "0C32AD70D3D3136FB72FE05E4EE6F366F9C92107C86F871C48AE2A5EFA3B626D67D6C4462BD0DE4100EBE50203010001");
const Bytes ecKey
    = *fromHex("305A301406072A8648CE3D020106092B2403030208010107034200042AE2BE9DEDF32459E5DE2B8BB6C98F6C76731D03E3B66CE"
               "9E3EF9A0BF609D1A464F7E1E82065B04DB4A09520150A085AA4740532B87C96C17F42255851FF1FA1");

struct SignatureRow
{
    const char* name;
    const Bytes& key;
    bool isGenuine;
    const char* signature;
};

const SignatureRow rows[] = {
    { "SHA-1, trailer BC", rsaKeyInfo, true,
        "85523303F7A5B4CAD9A9942367B38124E00FFC3CB34E6FDA6F33B85CED6899BEDB6640918681B99C211C50C9D843DA5FDC050E71F6CEB4"
        "689CD4318147A19B01B5DD97E201E2C1C159915CC7ED84E1247C550C63F89F67B67D424FCA549BD5EDF8E405F7CD0CA254C7B1881E403E"
        "39B7E25677BB8CE7BD370D24C9F4880F0ADB" },
    { "SHA-256, n - s", rsaKeyInfo, true,
        "B4E589D1ABC4E15A9CC67FDFB9A6B3C7E8D3EDDC198FA6DDCF5B2C88B834A71DE296D3FEA6665D290A3C1F520539A620183551D0DD9252"
        "99D7B6E2C5DBE8D09DACFFACBACA2AACA5BD1470BA47B348AABFB3E466584092DD4E605873F4386EE582A6F8D75738E497E35A204B1E5C"
        "E6132706B26BEC4B84A8AB86EFCC3E09C2D8" },
    { "SHA-224, padded header", rsaKeyInfo, true,
        "497253A61D575BBA628F6E30A36B05951FF03F1446CE3C1947C207E2A291BA4B79C91CBD5D166E730826C4CD9667D471FA428C9DF44C53"
        "250A73CB152D8825356972727297557DCB347753BAA0688A70C538683B800AF8AF914B5D63D9BD2C6093B9CAD97ECE53D67914BA354386"
        "BE660E806FBB265A7786A9755BB36465C4FE" },
    { "a trailer of another digest", rsaKeyInfo, false,
        "3DB4437EBC17C13ACE5BB7CF4D7843564AA130145D290654F649D7D613ED609BEF5975DD2F54CAF5A37CAB9C79ED9436CDDF69497CB232"
        "A03C5DC9024362229D242CE3AB085641960B61B9D6931273AF78FDC6957CEF40094B6A288739557C90AA32A0D60790FEE0917464E3AE68"
        "A7B20E6A8665E326CA16646405C8D80B98D1" },
    { "a header of total recovery", rsaKeyInfo, false,
        "72117BCA06D6FA79E47B77955274E0BBFB01AF1D2FB48C16396C25CF00BC5C103AF4C75E264E35232A4F42A9427081E61511061F4AB89E"
        "D4C16069CD02E04F4D696E74CB7B39107515A224727F801AB1EDD35AF62D27784701CEA171CB7EEB7320D32F8A6F430646EAD2384D9C40"
        "4E479C7E4B4A7904F4E89E54541780576AD6" },
    { "the second one's s and n added", rsaKeyInfo, false,
        "F28B4840AF0F4E20D68E277B202159ABD67417368591CE62BEFA1828DAF074E786399158F868A6865A0C1C9EE4FADC715324339CF3F72C"
        "685469BD1CC48ED75EB671F71522E08C961E77B1021CFF2FD3B34FDCC451D7D27D93474DB2EB35F0DB39F6D50F76BAADAA2C36BEC31A34"
        "764196EDC458EE8428DFE0D0B1F043F814F2" },
    { "ECDSA with SHA-256", ecKey, true,
        "A22C7611AFE54D0C5507E414AF125949E09352001437F0458D332586826723E52F294A2CF92C06A8C22E4CF62BE52EE4CCA361649CD1A0"
        "6889BA0CC2FC476B60" },
};

std::optional<AccessFailure> failureOf(const Bytes& key, const Bytes& signature,
    std::optional<ActiveAuthenticationInfo> info = {}, const Bytes& asked = challenge)
{
    ActiveAuthentication authentication(key, info, 256, scripted({ asked }));
    EXPECT_EQ(toHex(authentication.command()->encoded()), "0088000008" + toHex(asked) + "00");
    authentication.receive({ signature, 0x9000 });
    EXPECT_EQ(authentication.succeeded(), !authentication.failure());
    return authentication.failure();
}

TEST(ActiveAuthentication, SignaturesOfAnotherLibrary)
{
    for (const SignatureRow& row : rows) {
        const Bytes signature = hex(row.signature);
        const auto failure = failureOf(row.key, signature);
        EXPECT_EQ(!failure, row.isGenuine) << row.name;
        if (!row.isGenuine) {
            EXPECT_EQ(failure->error, AccessError::NotGenuine);
            continue;
        }
        for (std::size_t at = 0; at < signature.size(); ++at) {
            Bytes changed = signature;
            changed[at] ^= static_cast<std::uint8_t>(1 << at % 8);
            EXPECT_TRUE(failureOf(row.key, changed)) << row.name << ' ' << at;
            EXPECT_TRUE(failureOf(row.key, bytes(ByteView(signature).first(at))));
        }
        EXPECT_TRUE(failureOf(row.key, joined({ signature, hex("00") })));
        EXPECT_TRUE(failureOf(row.key, joined({ hex("00"), signature })));
        EXPECT_TRUE(failureOf(row.key, signature, {}, hex("F173589974BF40C7"))) << "of another challenge";
    }
    EXPECT_FALSE(failureOf(ecKey, hex(rows[6].signature), ActiveAuthenticationInfo { DigestAlgorithm::SHA256 }));
    EXPECT_TRUE(failureOf(ecKey, hex(rows[6].signature), ActiveAuthenticationInfo { DigestAlgorithm::SHA1 }));
    EXPECT_TRUE(failureOf(ecKey, Bytes(64, 0)));
    EXPECT_TRUE(failureOf(rsaKeyInfo, Bytes(128, 0)));
}

TEST(ActiveAuthentication, CurvesThatAreSpelledOut)
{
    const ByteView point = ByteView(ecKey).last(65);
    const Bytes named = publicKeyInfo(explicitAlgorithm(brainpoolP256r1), point);
    EXPECT_FALSE(failureOf(named, hex(rows[6].signature)));
    // Made by plain arithmetic in Python.
    const Bytes unnamed = publicKeyInfo(explicitAlgorithm(frp256v1),
        hex("0435BCC8B9F9C708B335CF0E20ABF548F20CFF378FFEE47F87380E9FBEB0FC7559"
            "8168F43B172E5E8D5F5E3E6467DF8B546344159CC89D2D59DE2F49B290CC086C"));
    Bytes signature = hex("9FD91BD9BFCB2AC01D59E81E4F3F7B29E8D2483D650BB6EF6DD4AAC40442CAD9"
                          "51C9E75F4B4D9A967F747ED64E755077B76B9ACAB41DC92FAE8D1E387E987C68");
    EXPECT_FALSE(failureOf(unnamed, signature));
    signature[40] ^= 1;
    EXPECT_TRUE(failureOf(unnamed, signature));
    EXPECT_FALSE(SignatureKey::fromInfo(publicKeyInfo(explicitAlgorithm(frp256v1), point)));
}

TEST(ActiveAuthentication, AChipOfOurOwnWithEveryDigest)
{
    const auto rsa = SignatureKey::generateRsa(2048);
    const auto ec = SignatureKey::generateEc("brainpoolP384r1");
    const auto another = SignatureKey::generateEc("P-256");
    ASSERT_TRUE(rsa && ec && another);
    for (const DigestAlgorithm digest : { DigestAlgorithm::SHA1, DigestAlgorithm::SHA224, DigestAlgorithm::SHA256,
             DigestAlgorithm::SHA384, DigestAlgorithm::SHA512 }) {
        for (const SignatureKey& key : { *rsa, *ec, *another }) {
            for (const bool hasShortTrailer : { false, true }) {
                if (hasShortTrailer && digest != DigestAlgorithm::SHA1)
                    continue;
                const ChipSigner chip(key, digest, hasShortTrailer);
                const auto answers = [&chip](const CommandApdu& command) { return chip.answer(command); };
                ActiveAuthentication right(chip.subjectPublicKeyInfo(), ActiveAuthenticationInfo { digest });
                run(right, answers);
                EXPECT_TRUE(right.succeeded()) << static_cast<int>(digest);
                EXPECT_FALSE(right.takeSession());
                ActiveAuthentication clone(key.isRsa() ? rsaKeyInfo : ecKey, ActiveAuthenticationInfo { digest });
                run(clone, answers);
                ASSERT_TRUE(clone.failure());
                EXPECT_EQ(clone.failure()->error, AccessError::NotGenuine);
            }
        }
    }
}

TEST(ActiveAuthentication, KeysThatAreNoneAreNotAskedFor)
{
    for (std::size_t size = 0; size < rsaKeyInfo.size(); ++size)
        EXPECT_FALSE(SignatureKey::fromInfo(ByteView(rsaKeyInfo).first(size)));
    Bytes beside = ecKey; // a point beside the curve
    beside.back() ^= 1;
    EXPECT_FALSE(SignatureKey::fromInfo(beside));
    Bytes even = rsaKeyInfo;
    even.back() = 2; // a public exponent that cannot be
    EXPECT_FALSE(SignatureKey::fromInfo(even));
    EXPECT_FALSE(SignatureKey::generateRsa(512));
    ActiveAuthentication none(beside, {});
    ASSERT_TRUE(none.failure());
    EXPECT_EQ(none.failure()->error, AccessError::Unsupported);

    ActiveAuthentication refused(rsaKeyInfo, {});
    refused.receive({ {}, 0x6D00 });
    EXPECT_EQ(refused.failure()->error, AccessError::Unsupported);
    ActiveAuthentication empty(rsaKeyInfo, {});
    empty.receive({ {}, 0x9000 });
    EXPECT_EQ(empty.failure()->error, AccessError::Protocol);
}

} // namespace
} // namespace kelvara::chip
