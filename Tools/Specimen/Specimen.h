#pragma once

#include "Platform/Foundation/Export.h"

#include <QDate>
#include <QImage>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <cstdint>

namespace kelvara::specimen {

/// Invented data of one identity card. Every value follows from the seed.
struct KELVARA_EXPORT SpecimenData
{
    QString surname;
    QString givenNames;
    QString documentNumber; ///< Nine characters: letter, two digits, letter, five digits.
    QString identityNumber; ///< Eleven digits with their two right check digits.
    QDate birthDate;
    QDate expiryDate;
    QString sex; ///< "M" or "F".
    QString nationality = QStringLiteral("TUR");
    QString motherName;
    QString fatherName;
    std::uint32_t seed = 0;

    [[nodiscard]] static SpecimenData fromSeed(std::uint32_t seed);

    /// The three TD1 lines of 30 characters with right check digits (ICAO Doc 9303-5).
    [[nodiscard]] QStringList mrzLines() const;
};

/// Prints an ID-1 card (85.60 × 53.98 mm, corner radius 3.18 mm) marked SPECIMEN. The image is transparent outside
/// the rounded corners; `width` pixels wide. Null, with a warning that names the package, if a font is missing (see
/// `printerProblem`). Any thread, while a QGuiApplication lives.
[[nodiscard]] KELVARA_EXPORT QImage printFront(const SpecimenData& data, int width = 1400);
[[nodiscard]] KELVARA_EXPORT QImage printBack(const SpecimenData& data, int width = 1400);

/// Where the front's portrait (without the ghost portrait) lies, normalised to the card, origin top-left.
[[nodiscard]] KELVARA_EXPORT QRectF portraitRect();

/// Where on the front the face lies (forehead to chin, ear to ear), normalised to the card, origin top-left.
[[nodiscard]] KELVARA_EXPORT QRectF printedFace(const SpecimenData& data);

/// Why nothing can be printed, as a sentence: a font file is missing, or there is no QGuiApplication. Empty if all is
/// well.
[[nodiscard]] KELVARA_EXPORT QString printerProblem();

} // namespace kelvara::specimen
