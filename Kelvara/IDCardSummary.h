#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace kelvara {

class IDCardUtil;
class UIImage;

/// The quality at which a chip's pictures are encoded as JPEG: 1 for every image.
[[nodiscard]] double getImageQuality(const UIImage& image);

/// A card's chip in short, as it would be shown. A value; personal data.
struct IDCardSummary
{
    QString name;
    QString documentNumber;
    QString nationality;
    QString gender; ///< "FEMALE", "MALE" or "N/A".
    QString ldsVersion; ///< Of EF.COM.
    QString placeOfBirth; ///< Of DG11.
    QByteArray portraitHash; ///< As signed: of DG2.
    QByteArray portrait; ///< JPEG.
    QByteArray picture; ///< The same picture, for where it stands a second time.
    QStringList lines;

    /// Of the chip in the holder's `passport`; everything is empty without one. Fatal when the chip's model has no
    /// portrait. Main thread.
    [[nodiscard]] static IDCardSummary of(const IDCardUtil& holder);
};

} // namespace kelvara
