#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Imaging/UIImage.h"

#include <QDate>
#include <QString>

#include <memory>
#include <optional>

namespace kelvara {

struct QKMRZResult;
class VisionDetectors;

/// One accepted reading of a card's machine-readable zone, with the picture it was read from. The fields are the
/// parser's, unchanged (see `QKMRZResult`). Personal data. One thread at a time, the main thread in practice.
class KELVARA_EXPORT QKMRZScanResult
{
public:
    /// The portrait is searched by `detectors`, or by the library's own where none are given. Shared.
    QKMRZScanResult(const QKMRZResult& mrzResult, UIImage documentImage);
    QKMRZScanResult(
        const QKMRZResult& mrzResult, UIImage documentImage, std::shared_ptr<const VisionDetectors> detectors);
    ~QKMRZScanResult();
    QKMRZScanResult(const QKMRZScanResult&) = delete;
    QKMRZScanResult& operator=(const QKMRZScanResult&) = delete;

    const UIImage documentImage; ///< The card with some of what lies around it.
    const QString documentType;
    const QString countryCode; ///< Of the issuing state.
    const QString surnames;
    const QString givenNames;
    const QString documentNumber;
    const QString nationality;
    const std::optional<QDate> birthDate;
    const std::optional<QString> sex;
    const std::optional<QDate> expiryDate;
    const QString personalNumber; ///< On a Turkish identity card the identity number.
    const std::optional<QString> personalNumber2;

    /// The portrait on the document image, with room around the head; absent when no face is found. Searched when first
    /// asked for and then kept. Fatal without a face detector.
    [[nodiscard]] const std::optional<UIImage>& faceImage();
    /// Takes this one (or none) instead: nothing is searched any more.
    void setFaceImage(std::optional<UIImage> image);

private:
    [[nodiscard]] std::optional<UIImage> findFaceImage() const;

    std::shared_ptr<const VisionDetectors> m_detectors;
    std::optional<std::optional<UIImage>> m_faceImage; ///< Absent as long as nobody has asked.
};

} // namespace kelvara
