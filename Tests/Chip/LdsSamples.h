#pragma once

#include "Platform/Chip/lds/Portrait.h"
#include "Platform/Chip/software/LdsFiles.h"

#include <map>

namespace kelvara::chip {

inline const QString kTd3Zone = QStringLiteral("P<UTOERIKSSON<<ANNA<MARIA<<<<<<<<<<<<<<<<<<<\n"
                                               "L898902C36UTO7408122F1204159ZE184226B<<<<<10");
inline const QString kTd1Zone = QStringLiteral("I<UTOD231458907<<<<<<<<<<<<<<<\n"
                                               "7408122F1204159UTO<<<<<<<<<<<6\n"
                                               "ERIKSSON<<ANNA<MARIA<<<<<<<<<<");
inline const QString kTd2Zone = QStringLiteral("I<UTOSTEVENSON<<PETER<JOHN<<<<<<<<<<\n"
                                               "D23145890<UTO3407127M95071227349<<<8");

/// A picture whose every corner is another colour.
inline QImage cornersPicture(int width = 60, int height = 80)
{
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            picture.setPixel(x, y, qRgb(230 * x / width, 230 * y / height, x < width / 2 ? 200 : 30));
    }
    return picture;
}

inline DataGroup11 someDetails()
{
    DataGroup11 details;
    details.fullName = HolderName { QStringLiteral("YILMAZ"), QStringLiteral("AYŞE GÜL") };
    details.otherNames = { { QStringLiteral("ÖZTÜRK"), QStringLiteral("AYŞE") }, { QStringLiteral("GÜLCÜ"), {} } };
    details.personalNumber = QStringLiteral("10000000146");
    details.birthDate = QStringLiteral("19740812");
    details.placeOfBirth = { QStringLiteral("İZMİR"), QStringLiteral("TUR") };
    details.address = { QStringLiteral("123 MAPLE RD"), QStringLiteral("ANYTOWN"), QStringLiteral("MN") };
    details.telephone = QStringLiteral("+90 232 000 00 00");
    details.profession = QStringLiteral("TRAVEL AGENT");
    details.title = QStringLiteral("DR");
    details.personalSummary = QStringLiteral("SUMMARY");
    details.otherTravelDocuments = { QStringLiteral("A1"), QStringLiteral("B2") };
    details.custody = QStringLiteral("NONE");
    return details;
}

inline DataGroup12 someDocument()
{
    DataGroup12 details;
    details.issuingAuthority = QStringLiteral("T.C. İÇİŞLERİ BAKANLIĞI");
    details.issueDate = QStringLiteral("20200131");
    details.otherPersons = { { QStringLiteral("SMITH"), QStringLiteral("BRENDA P") } };
    details.endorsements = QStringLiteral("ENDORSED");
    details.taxOrExit = QStringLiteral("FREE");
    details.front = EncodedImage::of(*encodePortrait(cornersPicture(8, 8), ImageKind::Jpeg, 50));
    details.rear = EncodedImage::of(*encodePortrait(cornersPicture(32, 32), ImageKind::Jpeg2000, 200));
    details.personalizationTime = QStringLiteral("20200130235959");
    details.personalizationSerial = QStringLiteral("PRINTER-7");
    return details;
}

/// One file of every kind, as small as they come.
inline std::map<DataGroupId, Bytes> someFiles()
{
    const PersonToNotify charles { QStringLiteral("20210203"), { QStringLiteral("SMITH"), QStringLiteral("CHARLES R") },
        QStringLiteral("19525551212"), { QStringLiteral("123 MAPLE RD"), QStringLiteral("ANYTOWN") } };
    PersonToNotify other = charles;
    other.name.secondary = QStringLiteral("ANN");
    const std::vector<PersonToNotify> persons { charles, other };
    std::map<DataGroupId, Bytes> files;
    files[DataGroupId::COM] = software::makeCom({ { DataGroupId::DG1, DataGroupId::DG2, DataGroupId::DG11 } });
    files[DataGroupId::DG1] = software::makeDG1(kTd3Zone);
    files[DataGroupId::DG2] = *software::makeDG2({ software::FaceOptions { cornersPicture(36, 40) },
        software::FaceOptions { cornersPicture(24, 32), ImageKind::Jpeg, 60, 2 } });
    files[DataGroupId::DG7] = *software::makeDG7({ cornersPicture(8, 8), cornersPicture(16, 8) });
    files[DataGroupId::DG11] = software::makeDG11(someDetails());
    files[DataGroupId::DG12] = software::makeDG12(someDocument());
    files[DataGroupId::DG14] = software::makeDG14(*fromHex("31 0F 30 0D 06 08 04 00 7F 00 07 02 02 02 02 01 02"));
    files[DataGroupId::DG15] = software::makeDG15(
        *fromHex("30 19 30 13 06 07 2A 86 48 CE 3D 02 01 06 08 2A 86 48 CE 3D 03 01 07 03 02 00 04"));
    files[DataGroupId::DG16] = software::makeDG16(persons);
    return files;
}

} // namespace kelvara::chip
