#pragma once

#include "Platform/Imaging/UIImage.h"

#include <QDate>
#include <QString>

#include <optional>

namespace kelvara {

/// What the chip step takes over from the card's machine-readable zone. Its fields mirror those of `QKMRZScanResult`,
/// but only the three that open a chip are ever filled. Personal data. A value.
struct IDCardModel
{
    IDCardModel(QString documentNumber, const QDate& birthDate, const QDate& expiryDate);

    UIImage documentImage;
    QString documentType;
    QString countryCode;
    QString surnames;
    QString givenNames;
    QString documentNumber;
    QString nationality;
    std::optional<QDate> birthDate = QDate::currentDate();
    QString gender;
    std::optional<QDate> expiryDate = QDate::currentDate();
    QString personalNumber;
};

} // namespace kelvara
