#pragma once

#include "Platform/Chip/ChipVerification.h"
#include "Platform/Chip/DataGroup.h"
#include "Platform/Foundation/Export.h"

#include <QDate>
#include <QImage>
#include <QString>

#include <map>
#include <optional>

namespace kelvara {

/// What was read from an identity document's chip, verified as far as `verification` says. A model exists only after a
/// read whose hashes, signature and proofs of the chip all held; the one thing that may be open is who the signer is
/// (`isSignerTrusted`), when the host gave no list of authorities.
///
/// Every field is a value and copying is cheap enough. Personal data: nothing of it is ever logged or stored. One
/// thread at a time.
class KELVARA_EXPORT NFCPassportModel
{
public:
    // The machine-readable zone (DG1), by field. Fillers are taken off; texts are as the chip has them.
    QString documentCode; ///< "I", "P" …
    QString issuingState;
    QString documentNumber;
    QString surname;
    QString givenNames;
    QString nationality;
    QString gender; ///< "F", "M", or empty where unspecified.
    QString birthDateDigits; ///< YYMMDD, with '<' for unknown parts.
    QString expiryDateDigits; ///< YYMMDD.
    std::optional<QDate> birthDate; ///< By the sliding century rule: never in the future.
    std::optional<QDate> expiryDate;
    QString personalNumber; ///< From DG11 where it is, else the zone's optional data; the identity number in Turkey.
    QString mrz; ///< All lines without line ends.

    // Further details (DG11, DG12), empty or absent where the chip has none.
    QString fullName; ///< In the national script where the issuer wrote it so.
    QString placeOfBirth;
    QString address;
    QString telephone;
    QString profession;
    QString issuingAuthority;
    std::optional<QDate> issueDate;

    /// The portrait (DG2), upright. Null only in a model of a read whose tags left DG2 out.
    QImage faceImage;
    QImage signatureImage; ///< DG7; null where the chip has none.

    /// Every file that was read, by its identifier, parsed where its content is known. All of them are as signed but
    /// EF.COM, which nothing signs and nothing here relies on.
    std::map<chip::DataGroupId, chip::DataGroup> dataGroupsRead;
    /// The hashes of the data groups as the issuer signed them (EF.SOD).
    std::map<chip::DataGroupId, chip::Bytes> dataGroupHashes;

    chip::ChipVerification verification;

    /// Whether an authority on the host's list issued the signer's certificate. False without such a list.
    [[nodiscard]] bool isSignerTrusted() const;

    /// The parsed file, when it was read and is of this type: `model.dataGroup<chip::DataGroup11>(DataGroupId::DG11)`.
    /// Borrowed from the model.
    template<typename Group> [[nodiscard]] const Group* dataGroup(chip::DataGroupId id) const
    {
        const auto found = dataGroupsRead.find(id);
        return found == dataGroupsRead.end() ? nullptr : std::get_if<Group>(&found->second);
    }
};

} // namespace kelvara
