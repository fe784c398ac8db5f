#pragma once

#include "Platform/Chip/trust/MasterList.h"
#include "Platform/Chip/trust/SecurityObject.h"
#include "Platform/Foundation/Export.h"

namespace kelvara::chip {

/// Who signed the document.
enum class SignerTrust {
    NotChecked, ///< There was no list of authorities to check against.
    Trusted, ///< One of the authorities issued the signer's certificate.
    NotTrusted, ///< None of them did: anybody can have made it. Revocation is not checked.
};

/// The period of the signer's certificate. Signers' certificates end long before the documents that they signed, so
/// that an expired one is no fault.
enum class SignerPeriod {
    Unknown, ///< There is no certificate.
    Current, ///< Valid today.
    Expired, ///< Over today; not known to have been over when the document was signed or issued.
    NotAtSigning, ///< Not begun or over already when the document was signed or issued.
};

/// A data group against its signed hash.
enum class HashOutcome {
    Match,
    Mismatch, ///< Changed after signing, or signed for another document.
    NotSigned, ///< The security object has no hash of this file.
    NotRead, ///< The security object has a hash, and the file was not given.
};

/// What passive authentication found out (ICAO Doc 9303-11 §5.1), each question apart. A value.
struct KELVARA_EXPORT PassiveAuthentication
{
    SignatureOutcome signature = SignatureOutcome::Unsupported;
    SignerTrust signer = SignerTrust::NotChecked;
    SignerPeriod period = SignerPeriod::Unknown;
    std::map<DataGroupId, HashOutcome> hashes; ///< Of every data group given or signed.
    QString signerCountry; ///< As the signer's certificate names its issuer's state, upper case; empty without.

    /// At least one data group was given, and each that was given has its signed hash.
    [[nodiscard]] bool areHashesRight() const;
    /// Whether all that was read is as a trusted state signed it.
    [[nodiscard]] bool isGenuine() const;

    struct Options
    {
        const MasterList* authorities = nullptr; ///< Borrowed for the call; null: the signer is not checked.
        /// When the document was issued, for signers that do not say when they signed.
        std::optional<QDate> issueDate;
        QDateTime now = QDateTime::currentDateTimeUtc();
    };

    /// Judges data groups, whole files each by its id (other files are passed over). Takes milliseconds: not for the
    /// main thread. Any thread.
    [[nodiscard]] static PassiveAuthentication judge(
        const SecurityObject& object, const std::map<DataGroupId, Bytes>& files, const Options& options);
};

} // namespace kelvara::chip
