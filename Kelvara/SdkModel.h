#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Imaging/UIImage.h"

#include <QString>

#include <memory>
#include <optional>

namespace kelvara {

class IDCardUtil;
class QKMRZScanResult;

/// Everything that the steps produced, in one record: photographs as taken and as cropped, their base64 texts, the MRZ
/// reading and the chip's data. Every field is absent until a step fills it; a later result replaces an earlier one and
/// nothing is ever cleared.
///
/// Shared by reference: the view, its delegate and the host hold the same object (`std::shared_ptr<SdkModel>`), so what
/// a later step writes shows in a record that was kept from an earlier callback. For `mrzInfo` and `nfcData` a null
/// pointer is "absent". Photographs and texts are personal data. Main thread only.
class KELVARA_EXPORT SdkModel
{
public:
    SdkModel();
    ~SdkModel();
    SdkModel(const SdkModel&) = delete;
    SdkModel& operator=(const SdkModel&) = delete;

    std::shared_ptr<QKMRZScanResult> mrzInfo; ///< The accepted reading of the card's back.
    std::optional<UIImage> idFrontImage; ///< The card's front as taken, cut to the scan area.
    std::optional<UIImage> idBackImage; ///< The card's back as taken.
    std::optional<UIImage> selfieImage; ///< The selfie as taken.
    std::optional<UIImage> mrzImage; ///< What the MRZ was read from.
    std::optional<UIImage> autoCropped_idFrontImage; ///< The front, cut to the card and its perspective corrected.
    std::optional<UIImage> autoCropped_idBackImage; ///< The back, likewise.
    std::optional<UIImage> autoCropped_selfieImage; ///< The selfie, cut to the face.
    std::optional<QString> base64_idFrontImage; ///< Base64 of `idFrontImage` as PNG: one line, padded. So the others.
    std::optional<QString> base64_idBackImage;
    std::optional<QString> base64_selfieImage;
    std::optional<QString> base64_autoCropped_idFrontImage;
    std::optional<QString> base64_autoCropped_idBackImage;
    std::optional<QString> base64_autoCropped_selfieImage;
    std::shared_ptr<IDCardUtil> nfcData; ///< The chip's data, in its `passport`.
};

} // namespace kelvara
