#pragma once

#include "Platform/Imaging/CIContext.h"
#include "Platform/Imaging/CIImage.h"

#include <QRectF>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <vector>

namespace kelvara {

class FaceDetector;

inline const QString CIDetectorTypeFace = QStringLiteral("CIDetectorTypeFace");
inline const QString CIDetectorAccuracy = QStringLiteral("CIDetectorAccuracy");
inline const QString CIDetectorAccuracyLow = QStringLiteral("CIDetectorAccuracyLow");
inline const QString CIDetectorAccuracyHigh = QStringLiteral("CIDetectorAccuracyHigh");

/// What a detector found in a filter image.
struct CIFeature
{
    QRectF bounds; ///< In the image's own coordinates (pixels, origin bottom-left).
};

/// Finds features in filter images. Any thread.
class CIDetector
{
public:
    /// A detector of a type; null for one that is not known or not served. Of the types there is `CIDetectorTypeFace`,
    /// on `faces`. `context` renders the images (borrowed). Of the options there is `CIDetectorAccuracy`, which changes
    /// nothing: the face detector has one accuracy.
    [[nodiscard]] static std::unique_ptr<CIDetector> make(const QString& type, const CIContext& context,
        const QVariantMap& options, std::shared_ptr<const FaceDetector> faces);

    /// Best first; empty where nothing is found or the image cannot be rendered.
    [[nodiscard]] std::vector<CIFeature> features(const CIImage& image) const;

private:
    CIDetector(const CIContext& context, std::shared_ptr<const FaceDetector> faces);

    const CIContext& m_context;
    std::shared_ptr<const FaceDetector> m_faces;
};

} // namespace kelvara
