#include "Demo/SpecimenCard.h"

#include "Tools/Specimen/Specimen.h"

#include <array>

namespace kelvara::demo {

namespace {

constexpr int kYearsOfValidity = 10;

/// Place and province.
struct Birthplace
{
    const char* place;
    const char* province;
};
constexpr std::array kBirthplaces { Birthplace { "ÜSKÜDAR", "İSTANBUL" }, Birthplace { "ÇANKAYA", "ANKARA" },
    Birthplace { "ŞEHİTKÂMİL", "GAZİANTEP" }, Birthplace { "ÖDEMİŞ", "İZMİR" }, Birthplace { "IĞDIR", "IĞDIR" } };

QString digits(const QDate& date)
{
    return date.toString(QStringLiteral("yyyyMMdd"));
}

chip::DataGroup11 holderOf(const specimen::SpecimenData& data)
{
    const Birthplace& birthplace = kBirthplaces[data.seed % kBirthplaces.size()];
    chip::DataGroup11 holder;
    holder.fullName = { data.surname, data.givenNames };
    holder.personalNumber = data.identityNumber;
    holder.birthDate = digits(data.birthDate);
    holder.placeOfBirth = { QString::fromUtf8(birthplace.place), QString::fromUtf8(birthplace.province) };
    holder.address = { QString::fromUtf8("ÖRNEK MAHALLESİ NUMUNE SOKAK 7"), QString::fromUtf8(birthplace.province) };
    return holder;
}

chip::DataGroup12 documentOf(const specimen::SpecimenData& data)
{
    chip::DataGroup12 document;
    document.issuingAuthority = QString::fromUtf8("T.C. ÖRNEK MAKAMI"); // as it stands on the specimen's back
    document.issueDate = digits(data.expiryDate.addYears(-kYearsOfValidity));
    return document;
}

} // namespace

CardContents specimenCard(std::uint32_t seed)
{
    const auto data = specimen::SpecimenData::fromSeed(seed);
    const QImage front = specimen::printFront(data);
    const QRectF area = specimen::portraitRect();
    CardContents contents;
    contents.zone = data.mrzLines();
    contents.portrait = front.copy(QRectF(area.x() * front.width(), area.y() * front.height(),
        area.width() * front.width(), area.height() * front.height())
                                       .toRect());
    contents.isPortraitInvented = true;
    contents.holder = holderOf(data);
    contents.document = documentOf(data);
    return contents;
}

} // namespace kelvara::demo
