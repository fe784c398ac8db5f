#include "Platform/Chip/software/ChipProfileFile.h"

#include "ChipDriver.h"
#include "Platform/Chip/lds/DataGroup2.h"
#include "Platform/Chip/lds/Portrait.h"
#include "Platform/Chip/trust/SecurityObject.h"

#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace kelvara::chip {
namespace {

using namespace software;
using Id = DataGroupId;

class ChipProfileFile : public testing::Test
{
protected:
    void SetUp() override
    {
        QImage face(60, 80, QImage::Format_RGB32);
        face.fill(0xFF336699);
        ASSERT_TRUE(face.save(folder.filePath(QStringLiteral("face.jpg"))));
        ASSERT_TRUE(face.scaled(900, 1200).save(folder.filePath(QStringLiteral("large.png"))));
        ASSERT_TRUE(QImage(6001, 1, QImage::Format_Mono).save(folder.filePath(QStringLiteral("wide.png"))));
        ASSERT_TRUE(face.save(folder.filePath(QStringLiteral("signature.png"))));
        write("national.bin", *fromHex("6D03010203"));
        write("drawing.svg", bytes("<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'/>"));
        write("many.bin", Bytes((1 << 20) + 1));
        ASSERT_EQ(::mkfifo(folder.filePath(QStringLiteral("pipe")).toLocal8Bit().constData(), 0600), 0);
    }
    void write(const char* name, const Bytes& content) const
    {
        QFile file(folder.filePath(QLatin1String(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(reinterpret_cast<const char*>(content.data()), static_cast<qint64>(content.size()));
    }
    [[nodiscard]] std::variant<ChipProfile, QString> parsed(const QByteArray& json) const
    {
        return chipProfileFromJson(json, QDir(folder.path()));
    }
    [[nodiscard]] ChipProfile profile(const QByteArray& json) const
    {
        auto outcome = parsed(json);
        if (const auto* problem = std::get_if<QString>(&outcome)) {
            ADD_FAILURE() << problem->toStdString();
            return {};
        }
        return std::get<ChipProfile>(outcome);
    }

    QTemporaryDir folder;
};

TEST_F(ChipProfileFile, TheDocumentedExampleMakesTheChipThatItSays)
{
    QFile document(QStringLiteral(KELVARA_DOCS "/software-chip.md"));
    ASSERT_TRUE(document.open(QIODevice::ReadOnly));
    const QByteArray text = document.readAll();
    const qsizetype from = text.indexOf("```json\n") + 8;
    const ChipProfile read = profile(text.mid(from, text.indexOf("```", from) - from));
    EXPECT_EQ(read.pace.size(), 2U);
    EXPECT_EQ(read.pace[1].mapping, PaceMapping::ChipAuthentication);
    EXPECT_EQ(read.forgeries, (Forgeries { Forgery::ChangedDG2, Forgery::QuietCom }));
    EXPECT_EQ(read.faults.delay.count(), 15);
    ASSERT_EQ(read.faults.list.size(), 2U);
    EXPECT_EQ(read.faults.list[1].kind, ChipFault::Kind::BitFlip);
    EXPECT_EQ(read.faults.list[1].counting, ChipFault::Counting::Presentation);
    EXPECT_EQ(read.faults.list[1].byte, 3U);
    EXPECT_EQ(read.reading.tooLongAnswer, 0x6700);
    EXPECT_EQ(read.persons.at(0).name.secondary, QStringLiteral("ALİ"));
    EXPECT_FALSE(read.announcesExtendedLength || read.acceptsExtendedLength);
    EXPECT_EQ(read.cardAccessNumber, "123456");
    EXPECT_TRUE(read.chipAuthentication.at(0).hasExplicitParameters);
    EXPECT_EQ(read.securityObject.signingTime, QDateTime(QDate(2025, 1, 1), QTime(12, 0), Qt::UTC));

    const auto chip = chipOf(read);
    ASSERT_TRUE(chip);
    chip->setFaults({});
    ChipDriver driver(chip, false);
    ASSERT_TRUE(driver.openByPace(PacePassword::fromCan("123456")));
    driver.selectApplication();
    EXPECT_EQ(driver.read(Id::DG13), fromHex("6D03010203"));
    EXPECT_TRUE(driver.read(Id::DG7));
    EXPECT_FALSE(driver.read(Id::DG16)) << "signed, and left out afterwards";
    EXPECT_TRUE(SecurityObject::parse(driver.read(Id::SOD).value())->hashes.contains(Id::DG16));
    const auto details = DataGroup11::parse(driver.read(Id::DG11).value());
    EXPECT_EQ(details->fullName->secondary, QStringLiteral("AYŞE GÜL"));
    EXPECT_EQ(details->placeOfBirth.value(0), QStringLiteral("İZMİR"));
    EXPECT_EQ(DataGroup12::parse(driver.read(Id::DG12).value())->issueDate, QStringLiteral("20250101"));
    EXPECT_TRUE(driver.authenticateChip());
    EXPECT_FALSE(driver.authenticateActively());
}

TEST_F(ChipProfileFile, WhatIsLeftOutIsAsInAProfile)
{
    const ChipProfile empty = profile("{}");
    const ChipProfile plain;
    EXPECT_EQ(empty.zone, plain.zone);
    EXPECT_TRUE(empty.isPassport && empty.hasAccessControl && empty.hasBac && empty.announcesExtendedLength);
    EXPECT_EQ(empty.pace.size(), 1U);
    EXPECT_EQ(empty.chipAuthentication.size(), 1U);
    EXPECT_TRUE(empty.portrait && empty.portrait->picture.isNull());
    EXPECT_FALSE(empty.activeAuthentication || empty.details || empty.document || empty.hasAtrInfo);
    const auto face = DataGroup2::parse(chipOf(empty)->files().at(Id::DG2));
    ASSERT_TRUE(face);
    const auto drawn = decodePortrait(face->faces[0].image.data);
    ASSERT_TRUE(std::holds_alternative<QImage>(drawn));
    EXPECT_EQ(std::get<QImage>(drawn).size(), QSize(413, 531));

    const ChipProfile none = profile(R"({ "portrait": null, "chipAuthentication": null, "activeAuthentication": null,
        "access": { "pace": null }, "passport": false })");
    EXPECT_FALSE(none.portrait || none.isPassport);
    EXPECT_TRUE(none.chipAuthentication.empty() && none.pace.empty());
}

TEST_F(ChipProfileFile, PortraitsOfEveryForm)
{
    EXPECT_EQ(profile(R"({ "portrait": "face.jpg" })").portrait->picture.size(), QSize(60, 80));
    EXPECT_EQ(profile(R"({ "portrait": "large.png" })").portrait->picture.size(), QSize(600, 800));
    const ChipProfile jpeg = profile(R"({ "portrait": { "file": "large.png", "format": "JPEG", "quality": 40 } })");
    EXPECT_EQ(jpeg.portrait->kind, ImageKind::Jpeg);
    EXPECT_EQ(jpeg.portrait->quality, 40);
    const ChipProfile same = profile(R"({ "portrait": { "file": "face.jpg", "asIs": true } })");
    QFile file(folder.filePath(QStringLiteral("face.jpg")));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(same.portrait->encoded->size(), static_cast<std::size_t>(file.size()));
    EXPECT_EQ(DataGroup2::parse(chipOf(same)->files().at(Id::DG2))->faces[0].image.data, *same.portrait->encoded);
}

TEST_F(ChipProfileFile, ErrorsNameTheField)
{
    const struct
    {
        const char* json;
        const char* part;
    } rows[] = {
        { "", "no JSON" },
        { "[1]", "no JSON object" },
        { R"({ "mrz": 5 })", "\"mrz\" must be a list" },
        { R"({ "mrz": ["A"] })", "\"mrz\" is no zone" },
        { R"({ "mrzz": [] })", "no field \"mrzz\"" },
        { R"({ "portrait": "none.jpg" })", "\"portrait\" names no file" },
        { R"({ "portrait": "pipe" })", "\"portrait\" names no file" },
        { R"({ "portrait": "/dev/zero" })", "\"portrait\" names no file" },
        { R"({ "portrait": "." })", "\"portrait\" names no file" },
        { R"({ "portrait": "wide.png" })", "\"portrait\" names no picture" },
        { R"({ "portrait": "drawing.svg" })", "\"portrait\" names no picture" },
        { R"({ "portrait": { "file": "signature.png", "asIs": true } })", "\"portrait.file\" names no JPEG" },
        { R"({ "portrait": { "quality": 0 } })", "\"portrait.quality\" must be a whole number from 1 to 1000" },
        { R"({ "portrait": 7 })", "\"portrait\" must be an object" },
        { R"({ "files": { "DG13": "many.bin" } })", "\"files.DG13\" names a file of more than 1048576 bytes" },
        { R"({ "files": { "DG17": null } })", "no field \"files.DG17\"" },
        { R"({ "details": { "birthDate": "1990" } })", "\"details.birthDate\" must have 8 digits" },
        { R"({ "details": { "fullName": { "first": "A" } } })", "no field \"details.fullName.first\"" },
        { R"({ "persons": [{}, { "phone": "1" }] })", "no field \"persons[1].phone\"" },
        { R"({ "access": { "pace": [{ "cipher": "AES" }] } })",
            "\"access.pace[0].cipher\" must be one of TripleDES, AES128, AES192, AES256" },
        { R"({ "access": { "bac": 1 } })", "\"access.bac\" must be true or false" },
        { R"({ "chipAuthentication": { "parameters": 13.5 } })", "\"chipAuthentication.parameters\" must be a whole" },
        { R"({ "activeAuthentication": { "rsaBits": 2048, "curve": "P" } })", "excludes \"rsaBits\"" },
        { R"({ "authority": { "country": "TUR" } })", "\"authority.country\" must have two letters" },
        { R"({ "securityObject": { "signingTime": "soon" } })", "\"securityObject.signingTime\" must be a time" },
        { R"({ "reading": { "tooLongAnswer": "67" } })", "\"reading.tooLongAnswer\" must be a status word" },
        { R"({ "forgeries": ["moustache"] })", "\"forgeries\" knows no \"moustache\"" },
        { R"({ "faults": { "list": [{ "kind": "tagLst" }] } })", "\"faults.list[0].kind\" knows no \"tagLst\"" },
        { R"({ "faults": { "delay": 60001 } })", "\"faults.delay\" must be a whole number from 0 to 60000" },
        { R"({ "faults": { "list": [{ "kind": "bitFlip", "bit": 8 }] } })", "\"faults.list[0].bit\" must be" },
    };
    for (const auto& row : rows) {
        const auto outcome = parsed(row.json);
        ASSERT_TRUE(std::holds_alternative<QString>(outcome)) << row.json;
        const std::string sentence = std::get<QString>(outcome).toStdString();
        EXPECT_NE(sentence.find(row.part), std::string::npos) << row.json << " / " << sentence;
        EXPECT_EQ(sentence.back(), '.') << sentence;
    }
    EXPECT_TRUE(std::holds_alternative<QString>(parsed(QByteArray((1 << 20) + 1, ' '))));
    QByteArray texts = "{ \"mrz\": [";
    texts += QByteArray("\"\",").repeated(70) + "\"\"] }";
    EXPECT_TRUE(std::holds_alternative<QString>(parsed(texts)));
}

} // namespace
} // namespace kelvara::chip
