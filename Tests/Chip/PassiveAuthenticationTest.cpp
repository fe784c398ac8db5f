#include "Platform/Chip/trust/PassiveAuthentication.h"
#include "LdsSamples.h"
#include "Platform/Chip/software/TestAuthority.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kelvara::chip {
namespace {

using software::AuthorityOptions;
using software::SecurityObjectOptions;
using software::SigningCurve;
using software::SigningKey;
using software::SigningOptions;
using software::TestAuthority;

/// Two data groups, the kind that every document has.
std::map<DataGroupId, Bytes> document(const QString& zone = kTd3Zone)
{
    return { { DataGroupId::DG1, software::makeDG1(zone) },
        { DataGroupId::DG15, software::makeDG15(*fromHex("30 05 30 00 03 01 00")) } };
}

/// Made once: most cases need no other.
const TestAuthority& state()
{
    static const TestAuthority authority = *TestAuthority::make();
    return authority;
}

const MasterList& trusted()
{
    static const MasterList list = *MasterList::parse(state().certificate());
    return list;
}

PassiveAuthentication judged(const Bytes& sod, const std::map<DataGroupId, Bytes>& files, const MasterList* list,
    PassiveAuthentication::Options options = {})
{
    const auto object = SecurityObject::parse(sod);
    EXPECT_TRUE(object);
    options.authorities = list;
    return object ? PassiveAuthentication::judge(*object, files, options) : PassiveAuthentication {};
}

/// The file with the first place where `part` occurs changed in its last byte.
Bytes changedAt(Bytes file, ByteView part)
{
    const auto at = std::search(file.begin(), file.end(), part.begin(), part.end());
    EXPECT_NE(at, file.end());
    at[static_cast<std::ptrdiff_t>(part.size()) - 1] ^= 1;
    return file;
}

struct Signing
{
    const char* name;
    SigningOptions how;
};

std::ostream& operator<<(std::ostream& out, const Signing& signing)
{
    return out << signing.name;
}

class SigningTest : public testing::TestWithParam<Signing>
{ };

TEST_P(SigningTest, IsReadAndItsForgeryIsNot)
{
    AuthorityOptions options;
    options.authority = options.signer = GetParam().how;
    const auto authority = TestAuthority::make(options);
    ASSERT_TRUE(authority);
    const MasterList list = *MasterList::parse(authority->certificate());
    SecurityObjectOptions how;
    how.digest = GetParam().how.digest;
    const auto files = document();
    const Bytes sod = *authority->securityObject(files, how);
    const auto right = judged(sod, files, &list);
    EXPECT_EQ(right.signature, SignatureOutcome::Valid);
    EXPECT_EQ(right.signer, SignerTrust::Trusted);
    EXPECT_EQ(right.period, SignerPeriod::Current);
    EXPECT_EQ(right.signerCountry, "UT");
    EXPECT_TRUE(right.isGenuine());

    Bytes forged = sod;
    forged.back() ^= 1; // of the signature
    const auto wrong = judged(forged, files, &list);
    EXPECT_EQ(wrong.signature, SignatureOutcome::Invalid);
    EXPECT_EQ(wrong.signer, SignerTrust::Trusted);
    EXPECT_TRUE(wrong.areHashesRight());
    EXPECT_FALSE(wrong.isGenuine());
}

constexpr SigningOptions ec(SigningKey key, SigningCurve curve, DigestAlgorithm digest)
{
    return { key, curve, 0, digest };
}

constexpr SigningOptions rsa(SigningKey key, int bits, DigestAlgorithm digest)
{
    return { key, SigningCurve::P256, bits, digest };
}

INSTANTIATE_TEST_SUITE_P(Algorithms, SigningTest,
    testing::Values(Signing { "P224Sha1", ec(SigningKey::NamedCurve, SigningCurve::P224, DigestAlgorithm::SHA1) },
        Signing { "P256Sha1Explicit", ec(SigningKey::ExplicitCurve, SigningCurve::P256, DigestAlgorithm::SHA1) },
        Signing { "P384Sha384", ec(SigningKey::NamedCurve, SigningCurve::P384, DigestAlgorithm::SHA384) },
        Signing { "P521Sha512Explicit", ec(SigningKey::ExplicitCurve, SigningCurve::P521, DigestAlgorithm::SHA512) },
        Signing {
            "Brainpool224Sha224", ec(SigningKey::NamedCurve, SigningCurve::BrainpoolP224r1, DigestAlgorithm::SHA224) },
        Signing {
            "Brainpool256Sha256", ec(SigningKey::NamedCurve, SigningCurve::BrainpoolP256r1, DigestAlgorithm::SHA256) },
        Signing { "Brainpool320Sha256Explicit",
            ec(SigningKey::ExplicitCurve, SigningCurve::BrainpoolP320r1, DigestAlgorithm::SHA256) },
        Signing { "Brainpool384Sha384Explicit",
            ec(SigningKey::ExplicitCurve, SigningCurve::BrainpoolP384r1, DigestAlgorithm::SHA384) },
        Signing { "Brainpool512Sha512Explicit",
            ec(SigningKey::ExplicitCurve, SigningCurve::BrainpoolP512r1, DigestAlgorithm::SHA512) },
        Signing { "RsaSha1", rsa(SigningKey::Rsa, 1024, DigestAlgorithm::SHA1) },
        Signing { "RsaSha224", rsa(SigningKey::Rsa, 1024, DigestAlgorithm::SHA224) },
        Signing { "RsaSha256", rsa(SigningKey::Rsa, 2048, DigestAlgorithm::SHA256) },
        Signing { "RsaSha512", rsa(SigningKey::Rsa, 1024, DigestAlgorithm::SHA512) },
        Signing { "PssSha1", rsa(SigningKey::RsaPss, 1024, DigestAlgorithm::SHA1) },
        Signing { "PssSha256", rsa(SigningKey::RsaPss, 2048, DigestAlgorithm::SHA256) },
        Signing { "PssSha384", rsa(SigningKey::RsaPss, 1024, DigestAlgorithm::SHA384) },
        Signing { "PssOnlySha256", rsa(SigningKey::RsaPssOnly, 1024, DigestAlgorithm::SHA256) },
        Signing { "PssSha512", rsa(SigningKey::RsaPss, 1536, DigestAlgorithm::SHA512) }),
    [](const auto& row) { return row.param.name; });

TEST(SecurityObject, BothVersions)
{
    const auto files = document();
    for (const int version : { 0, 1 }) {
        SecurityObjectOptions how;
        how.version = version;
        how.digest = DigestAlgorithm::SHA224;
        const auto object = SecurityObject::parse(*state().securityObject(files, how));
        ASSERT_TRUE(object);
        EXPECT_EQ(object->version, version);
        EXPECT_EQ(object->digestAlgorithm, DigestAlgorithm::SHA224);
        EXPECT_EQ(object->hashes.size(), 2U);
        EXPECT_EQ(object->hashes.at(DataGroupId::DG1), digest(DigestAlgorithm::SHA224, files.at(DataGroupId::DG1)));
        EXPECT_EQ(object->ldsVersion, version == 1 ? "0108" : "");
        EXPECT_EQ(object->unicodeVersion, version == 1 ? "040000" : "");
        EXPECT_EQ(object->signedData.signer, state().signerCertificate());
    }
}

TEST(SecurityObject, RefusesListsThatCannotBe)
{
    EXPECT_FALSE(state().securityObject({ { DataGroupId::COM, Bytes(3) } })) << "nothing to sign";
    const Bytes tooShort(20, 1);
    EXPECT_FALSE(SecurityObject::parse(*state().securityObjectOfHashes({ { DataGroupId::DG1, tooShort } })))
        << "no hash of that digest";
    const Bytes cardSecurity = *state().cardSecurity(*fromHex("31 00"));
    EXPECT_FALSE(SecurityObject::parse(makeTlv(0x77, cardSecurity))) << "another kind of content";
    const auto readSecurity = SignedData::parse(cardSecurity, SignedData::kCardSecurity);
    ASSERT_TRUE(readSecurity);
    EXPECT_EQ(toHex(readSecurity->content), "3100");
    EXPECT_EQ(readSecurity->signature, SignatureOutcome::Valid);
    EXPECT_FALSE(SecurityObject::parse(makeTlv(0x77, state().certificate())));
}

TEST(SecurityObject, AMessageOfAnotherKindCannotBeRelabelled)
{
    Bytes message = state().masterList();
    ASSERT_EQ(SignedData::parse(message, SignedData::kMasterList)->signature, SignatureOutcome::Valid);
    const Bytes label = *fromHex("06 06 67 81 08 01 01 02"); // of a master list, a byte from that of a security object
    const auto at = std::search(message.begin(), message.end(), label.begin(), label.end());
    ASSERT_NE(at, message.end());
    at[7] = 0x01;
    EXPECT_FALSE(SignedData::parse(message, SignedData::kMasterList));
    const auto relabelled = SignedData::parse(message, SignedData::kLdsSecurityObject);
    ASSERT_TRUE(relabelled);
    EXPECT_EQ(relabelled->signature, SignatureOutcome::Invalid);
}

TEST(SecurityObject, DamageNeverPassesForSigned)
{
    const auto files = document();
    const Bytes sod = *state().securityObject(files);
    for (std::size_t size = 0; size < sod.size(); ++size)
        ASSERT_FALSE(SecurityObject::parse(bytes(first(sod, size)))) << size;
    const auto whole = SecurityObject::parse(sod);
    PassiveAuthentication::Options options;
    options.authorities = &trusted();
    for (std::size_t at = 0; at < sod.size(); at += 3) {
        Bytes flipped = sod;
        flipped[at] ^= 0x01;
        const auto object = SecurityObject::parse(flipped);
        if (!object)
            continue;
        // What is not signed may change (the order of certificates, say); what was signed may not.
        const bool isSame = object->hashes == whole->hashes && object->digestAlgorithm == whole->digestAlgorithm;
        EXPECT_TRUE(isSame || object->signedData.signature != SignatureOutcome::Valid) << at;
        const auto result = PassiveAuthentication::judge(*object, files, options);
        EXPECT_TRUE(!result.isGenuine() || isSame) << at;
    }
}

TEST(PassiveAuthentication, EachForgeryIsToldApart)
{
    const auto files = document();
    const Bytes sod = *state().securityObject(files);
    EXPECT_TRUE(judged(sod, files, &trusted()).isGenuine());

    auto changed = files;
    changed[DataGroupId::DG1][20] ^= 1;
    const auto changedFile = judged(sod, changed, &trusted());
    EXPECT_EQ(changedFile.signature, SignatureOutcome::Valid);
    EXPECT_EQ(changedFile.signer, SignerTrust::Trusted);
    EXPECT_EQ(changedFile.hashes.at(DataGroupId::DG1), HashOutcome::Mismatch);
    EXPECT_EQ(changedFile.hashes.at(DataGroupId::DG15), HashOutcome::Match);
    EXPECT_FALSE(changedFile.isGenuine());

    const auto swapped = judged(*state().securityObject(document(kTd1Zone)), files, &trusted());
    EXPECT_EQ(swapped.signature, SignatureOutcome::Valid);
    EXPECT_EQ(swapped.signer, SignerTrust::Trusted);
    EXPECT_EQ(swapped.hashes.at(DataGroupId::DG1), HashOutcome::Mismatch);
    EXPECT_FALSE(swapped.isGenuine());

    // The hash in the list made to fit the changed file.
    const Bytes oldHash = digest(DigestAlgorithm::SHA256, files.at(DataGroupId::DG1));
    const Bytes newHash = digest(DigestAlgorithm::SHA256, changed.at(DataGroupId::DG1));
    Bytes patched = sod;
    std::copy(
        newHash.begin(), newHash.end(), std::search(patched.begin(), patched.end(), oldHash.begin(), oldHash.end()));
    const auto fitted = judged(patched, changed, &trusted());
    EXPECT_EQ(fitted.signature, SignatureOutcome::Invalid);
    EXPECT_TRUE(fitted.areHashesRight());
    EXPECT_FALSE(fitted.isGenuine());

    // A state of the forger's own, with the very names of the right one.
    const auto selfMade = judged(*TestAuthority::make()->securityObject(changed), changed, &trusted());
    EXPECT_EQ(selfMade.signature, SignatureOutcome::Valid);
    EXPECT_EQ(selfMade.signer, SignerTrust::NotTrusted);
    EXPECT_TRUE(selfMade.areHashesRight());
    EXPECT_FALSE(selfMade.isGenuine());

    // Nobody's certificate.
    SecurityObjectOptions bare;
    bare.withCertificate = false;
    const auto unsignedBy = judged(*state().securityObject(files, bare), files, &trusted());
    EXPECT_EQ(unsignedBy.signature, SignatureOutcome::Unsupported);
    EXPECT_EQ(unsignedBy.signer, SignerTrust::NotTrusted);
    EXPECT_EQ(unsignedBy.period, SignerPeriod::Unknown);

    // The right certificate, changed in the authority's signature.
    const auto changedCertificate
        = judged(changedAt(sod, ByteView(state().signerCertificate()).last(8)), files, &trusted());
    EXPECT_EQ(changedCertificate.signature, SignatureOutcome::Valid);
    EXPECT_EQ(changedCertificate.signer, SignerTrust::NotTrusted);
}

TEST(PassiveAuthentication, WhatIsMissingIsNoMatch)
{
    auto files = document();
    const Bytes sod = *state().securityObject(files);
    const auto without = judged(sod, files, nullptr);
    EXPECT_EQ(without.signer, SignerTrust::NotChecked);
    EXPECT_TRUE(without.areHashesRight());
    EXPECT_FALSE(without.isGenuine()) << "nobody vouches for the signer";

    const MasterList nobody;
    EXPECT_EQ(judged(sod, files, &nobody).signer, SignerTrust::NotTrusted);

    files.erase(DataGroupId::DG15);
    const auto partly = judged(sod, files, &trusted());
    EXPECT_EQ(partly.hashes.at(DataGroupId::DG15), HashOutcome::NotRead);
    EXPECT_TRUE(partly.isGenuine()) << "what was read is";
    files[DataGroupId::DG11] = software::makeDG11({});
    files[DataGroupId::COM] = software::makeCom({});
    const auto more = judged(sod, files, &trusted());
    EXPECT_EQ(more.hashes.at(DataGroupId::DG11), HashOutcome::NotSigned);
    EXPECT_FALSE(more.hashes.contains(DataGroupId::COM));
    EXPECT_FALSE(more.isGenuine());
    EXPECT_FALSE(judged(sod, {}, &trusted()).isGenuine()) << "nothing was read";
}

TEST(PassiveAuthentication, PeriodsAreJudgedWhenTheDocumentWasSigned)
{
    const auto year = [](int number) { return QDateTime(QDate(number, 6, 1), QTime(12, 0), Qt::UTC); };
    AuthorityOptions options;
    options.authorityFrom = year(2010);
    options.authorityTo = year(2025);
    options.signerFrom = year(2012);
    options.signerTo = year(2022);
    const auto authority = *TestAuthority::make(options);
    const MasterList list = *MasterList::parse(authority.certificate());
    const auto files = document();
    struct Row
    {
        int signedIn, now;
        SignerPeriod period;
        bool genuine;
    };
    for (const Row& row : { Row { 2013, 2014, SignerPeriod::Current, true },
             Row { 2013, 2026, SignerPeriod::Expired, true }, Row { 2023, 2026, SignerPeriod::NotAtSigning, false },
             Row { 2011, 2014, SignerPeriod::NotAtSigning, false } }) {
        SecurityObjectOptions how;
        how.signingTime = year(row.signedIn);
        PassiveAuthentication::Options when;
        when.now = year(row.now);
        const auto result = judged(*authority.securityObject(files, how), files, &list, when);
        EXPECT_EQ(result.period, row.period) << row.signedIn << ' ' << row.now;
        EXPECT_EQ(result.signer, SignerTrust::Trusted);
        EXPECT_EQ(result.isGenuine(), row.genuine);
    }

    options.signerFrom = year(2026); // when the authority was over itself
    options.signerTo = year(2030);
    const auto late = *TestAuthority::make(options);
    EXPECT_FALSE(MasterList::parse(late.certificate())->hasIssued(late.signerCertificate()));
}

TEST(MasterList, EveryForm)
{
    const auto other = *TestAuthority::make();
    const Bytes both = joined({ state().certificate(), other.certificate() });
    const Bytes pem = joined({ bytes("Subject: somebody\n"), state().certificatePem(), other.certificatePem() });
    struct Row
    {
        Bytes file;
        std::size_t count;
        bool other;
    };
    for (const Row& row : { Row { state().certificate(), 1, false }, Row { both, 2, true }, Row { pem, 2, true },
             Row { state().certificatePem(), 1, false }, Row { state().masterList(), 1, false },
             Row { joined({ state().certificatePem(), state().certificatePem() }), 1, false } }) {
        const auto list = MasterList::parse(row.file);
        ASSERT_TRUE(list);
        EXPECT_EQ(list->count(), row.count);
        EXPECT_TRUE(list->hasIssued(state().signerCertificate()));
        EXPECT_EQ(list->hasIssued(other.signerCertificate()), row.other);
        EXPECT_FALSE(list->hasIssued(state().certificate())) << "an authority signs no documents";
    }
    MasterList together = *MasterList::parse(state().certificate());
    together.add(*MasterList::parse(other.masterList()));
    EXPECT_EQ(together.count(), 2U);
    EXPECT_TRUE(together.hasIssued(other.signerCertificate()));

    EXPECT_FALSE(MasterList::parse(state().signerCertificate())) << "no authority";
    EXPECT_FALSE(MasterList::parse(changedAt(state().masterList(), ByteView(state().certificate()).last(4))))
        << "changed after signing";
    EXPECT_FALSE(MasterList::parse({}));
    EXPECT_FALSE(MasterList::parse(bytes("-----BEGIN CERTIFICATE-----\nAAAA\n-----END CERTIFICATE-----\n")));
    // The master list's signer has a certificate of the authority too, for that purpose only.
    const auto list = SignedData::parse(state().masterList(), SignedData::kMasterList);
    EXPECT_FALSE(trusted().hasIssued(list->signer));
}

} // namespace
} // namespace kelvara::chip
