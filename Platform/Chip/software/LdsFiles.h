#pragma once

#include "Platform/Chip/lds/COM.h"
#include "Platform/Chip/lds/DataGroup1.h"
#include "Platform/Chip/lds/DataGroup11.h"
#include "Platform/Chip/lds/DataGroup12.h"
#include "Platform/Chip/lds/DataGroup16.h"
#include "Platform/Chip/lds/DataGroup2.h"

#include <QImage>

#include <span>

/// Makes the files of a passport, ready to be put on a chip that software plays: each function writes what the type of
/// the same name in lds/ reads. Any thread.
namespace kelvara::chip::software {

/// EF.COM. The list may name more or fewer data groups than the chip has: nothing checks it.
struct ComOptions
{
    std::vector<DataGroupId> dataGroups;
    std::string ldsVersion = "1.7"; ///< Two numbers below 100.
    std::string unicodeVersion = "4.0.0"; ///< Three numbers below 100.
};
[[nodiscard]] Bytes makeCom(const ComOptions& options);

/// DG1 of a machine-readable zone: its lines, with or without line ends between them. The text is taken as it is.
[[nodiscard]] Bytes makeDG1(const QString& zone);

/// DG2 of one or several portraits.
struct FaceOptions
{
    QImage portrait;
    ImageKind kind = ImageKind::Jpeg2000;
    int quality = 75; ///< As in `encodePortrait`: JPEG 1 to 100, JPEG 2000 thousandths of the uncompressed size.
    std::uint8_t gender = 0; ///< As in `FaceImage`.
    std::uint8_t imageType = 1; ///< Full frontal.
};
/// Absent where there is no portrait or one cannot be encoded.
[[nodiscard]] std::optional<Bytes> makeDG2(const std::vector<FaceOptions>& faces);
/// DG2 of faces that are encoded already, as they are.
[[nodiscard]] Bytes makeDG2(const std::vector<FaceImage>& faces);

/// DG7 of pictures of the signature, as JPEG. Absent where there is none or one cannot be encoded.
[[nodiscard]] std::optional<Bytes> makeDG7(const std::vector<QImage>& signatures, int quality = 80);

/// How a date is written: eight digits, or four bytes of binary coded decimals as older chips have it.
enum class DateForm { Digits, BinaryCodedDecimals };

/// DG11 of the fields that are set; `raw` is not looked at.
[[nodiscard]] Bytes makeDG11(const DataGroup11& details, DateForm dates = DateForm::Digits);
/// DG12 of the fields that are set; `raw` is not looked at.
[[nodiscard]] Bytes makeDG12(const DataGroup12& details, DateForm dates = DateForm::Digits);
/// DG14 around a DER set of SecurityInfo.
[[nodiscard]] Bytes makeDG14(ByteView securityInfos);
/// DG15 around a DER SubjectPublicKeyInfo.
[[nodiscard]] Bytes makeDG15(ByteView publicKey);
/// DG16 of at most fifteen persons; further ones are left out.
[[nodiscard]] Bytes makeDG16(std::span<const PersonToNotify> persons);

} // namespace kelvara::chip::software
