#include "Platform/Chip/trust/PassiveAuthentication.h"

#include "Platform/Chip/trust/OpenSsl_p.h"

#include <algorithm>

namespace kelvara::chip {

namespace {

using namespace openssl;

SignerPeriod periodOf(const X509* signer, const SignedData& signedData, const PassiveAuthentication::Options& options)
{
    const auto from = dateTimeOf(X509_get0_notBefore(signer));
    const auto to = dateTimeOf(X509_get0_notAfter(signer));
    if (!from || !to)
        return SignerPeriod::Unknown;
    if (signedData.signingTime) {
        if (*signedData.signingTime < *from || *signedData.signingTime > *to)
            return SignerPeriod::NotAtSigning;
    } else if (options.issueDate) { // a day of unknown time zone: a day more on both sides
        if (*options.issueDate < from->date().addDays(-1) || *options.issueDate > to->date().addDays(1))
            return SignerPeriod::NotAtSigning;
    }
    if (options.now < *from)
        return SignerPeriod::NotAtSigning;
    return options.now > *to ? SignerPeriod::Expired : SignerPeriod::Current;
}

QString countryOf(X509* signer)
{
    char text[8] = {};
    const int length
        = X509_NAME_get_text_by_NID(X509_get_issuer_name(signer), NID_countryName, text, static_cast<int>(sizeof text));
    return length > 0 ? QString::fromLatin1(text).toUpper() : QString();
}

} // namespace

bool PassiveAuthentication::areHashesRight() const
{
    const auto is = [](HashOutcome wanted) { return [=](const auto& one) { return one.second == wanted; }; };
    return std::any_of(hashes.begin(), hashes.end(), is(HashOutcome::Match))
        && std::none_of(hashes.begin(), hashes.end(), is(HashOutcome::Mismatch))
        && std::none_of(hashes.begin(), hashes.end(), is(HashOutcome::NotSigned));
}

bool PassiveAuthentication::isGenuine() const
{
    return signature == SignatureOutcome::Valid && signer == SignerTrust::Trusted
        && (period == SignerPeriod::Current || period == SignerPeriod::Expired) && areHashesRight();
}

PassiveAuthentication PassiveAuthentication::judge(
    const SecurityObject& object, const std::map<DataGroupId, Bytes>& files, const Options& options)
{
    const QuietErrors quiet;
    PassiveAuthentication result;
    result.signature = object.signedData.signature;
    if (const Certificate signer = certificateOf(object.signedData.signer)) {
        result.period = periodOf(signer.get(), object.signedData, options);
        result.signerCountry = countryOf(signer.get());
    }
    if (options.authorities != nullptr) {
        const bool isTrusted = options.authorities->hasIssued(object.signedData.signer);
        result.signer = isTrusted ? SignerTrust::Trusted : SignerTrust::NotTrusted;
    }
    for (const auto& [id, file] : files) {
        if (!isDataGroup(id))
            continue;
        const auto hash = object.hashes.find(id);
        if (hash == object.hashes.end())
            result.hashes[id] = HashOutcome::NotSigned;
        else
            result.hashes[id]
                = digest(object.digestAlgorithm, file) == hash->second ? HashOutcome::Match : HashOutcome::Mismatch;
    }
    for (const auto& [id, hash] : object.hashes)
        result.hashes.try_emplace(id, HashOutcome::NotRead);
    return result;
}

} // namespace kelvara::chip
