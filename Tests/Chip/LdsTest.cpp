#include "LdsSamples.h"
#include "Platform/Chip/lds/DataGroup14.h"
#include "Platform/Chip/lds/DataGroup15.h"
#include "Platform/Chip/lds/DataGroup7.h"

#include <gtest/gtest.h>

#include <set>

namespace kelvara::chip {
namespace {

/// Text between the objects: "6B 'len'" trees are tiresome to write by hand.
Bytes object(Tag tag, std::string_view text)
{
    return makeTlv(tag, bytes(text));
}

TEST(DataGroupId, EveryNameLeadsBack)
{
    std::set<std::pair<int, bool>> fileIds;
    for (const DataGroupEntry& entry : dataGroupEntries()) {
        EXPECT_EQ(&entryOf(entry.id), &entry);
        EXPECT_EQ(dataGroupOfName(entry.name), entry.id);
        EXPECT_EQ(dataGroupOfFileId(entry.fileId, entry.inApplication), entry.id);
        EXPECT_TRUE(fileIds.insert({ entry.fileId, entry.inApplication }).second) << entry.name;
        if (entry.tag) {
            EXPECT_EQ(dataGroupOfTag(*entry.tag), entry.id);
        }
        if (const auto number = numberOf(entry.id)) {
            EXPECT_EQ(dataGroupOfNumber(*number), entry.id);
            EXPECT_EQ(entry.shortFileId, *number);
        }
    }
    EXPECT_EQ(dataGroupOfTag(0x75), DataGroupId::DG2);
    EXPECT_EQ(dataGroupOfTag(0x76), DataGroupId::DG4);
    EXPECT_FALSE(dataGroupOfTag(0x7F));
    EXPECT_FALSE(numberOf(DataGroupId::COM));
    EXPECT_FALSE(dataGroupOfNumber(0));
    EXPECT_FALSE(dataGroupOfNumber(17));
    EXPECT_EQ(dataGroupsOfTags(*fromHex("61 75 61 7F 60 77 6E")),
        (std::vector { DataGroupId::DG1, DataGroupId::DG2, DataGroupId::DG14 }))
        << "each once, and data groups only";
}

TEST(COM, PublishedExample)
{
    const auto com = COM::parse(*fromHex("60 16 5F01 04 30313037 5F36 06 303430303030 5C 04 61 75 76 6C"));
    ASSERT_TRUE(com);
    EXPECT_EQ(com->ldsVersion, "1.7");
    EXPECT_EQ(com->unicodeVersion, "4.0.0");
    EXPECT_EQ(
        com->dataGroups, (std::vector { DataGroupId::DG1, DataGroupId::DG2, DataGroupId::DG4, DataGroupId::DG12 }));
    EXPECT_EQ(bytes(software::makeCom({ com->dataGroups, com->ldsVersion, com->unicodeVersion })), com->raw);
    EXPECT_FALSE(COM::parse(*fromHex("60 07 5F01 04 30313037"))) << "no list of tags";
    EXPECT_EQ(COM::parse(*fromHex("60 09 5F01 04 3031307F 5C 00"))->ldsVersion, "");
}

TEST(DataGroup1, FieldsOfEveryFormat)
{
    struct Row
    {
        QString zone;
        DataGroup1::Format format;
        const char *code, *number, *nationality, *birth, *sex, *expiry, *optional, *primary, *secondary;
    };
    const Row rows[] = {
        { kTd3Zone, DataGroup1::Format::TD3, "P", "L898902C3", "UTO", "740812", "F", "120415", "ZE184226B", "ERIKSSON",
            "ANNA MARIA" },
        { kTd1Zone, DataGroup1::Format::TD1, "I", "D23145890", "UTO", "740812", "F", "120415", "", "ERIKSSON",
            "ANNA MARIA" },
        { kTd2Zone, DataGroup1::Format::TD2, "I", "D23145890734", "UTO", "340712", "M", "950712", "", "STEVENSON",
            "PETER JOHN" },
    };
    for (const Row& row : rows) {
        const Bytes file = software::makeDG1(row.zone);
        const auto group = DataGroup1::parse(file);
        ASSERT_TRUE(group) << row.primary;
        EXPECT_EQ(group->format, row.format);
        EXPECT_EQ(group->lines.join(u'\n'), row.zone);
        EXPECT_EQ(group->documentCode, row.code);
        EXPECT_EQ(group->issuingState, "UTO");
        EXPECT_EQ(group->documentNumber, row.number);
        EXPECT_EQ(group->nationality, row.nationality);
        EXPECT_EQ(group->birthDate, row.birth);
        EXPECT_EQ(group->sex, row.sex);
        EXPECT_EQ(group->expiryDate, row.expiry);
        EXPECT_EQ(group->optionalData, row.optional);
        EXPECT_EQ(group->name, (HolderName { row.primary, row.secondary }));
        EXPECT_EQ(group->raw, file);
    }
    EXPECT_FALSE(DataGroup1::parse(software::makeDG1(kTd3Zone.chopped(1)))) << "no length of a zone";
    EXPECT_FALSE(DataGroup1::parse(software::makeDG1(kTd3Zone.toLower()))) << "not its alphabet";
}

TEST(DataGroup2, SeveralFacesOfBothKinds)
{
    const Bytes file = someFiles().at(DataGroupId::DG2);
    const auto group = DataGroup2::parse(file);
    ASSERT_TRUE(group);
    ASSERT_EQ(group->faces.size(), 2U);
    EXPECT_EQ(group->faces[0].image.kind, ImageKind::Jpeg2000);
    EXPECT_EQ(group->faces[1].image.kind, ImageKind::Jpeg);
    EXPECT_EQ(group->faces[1].gender, 2);
    EXPECT_EQ(group->faces[0].width, 36);
    EXPECT_EQ(software::makeDG2(group->faces), file);

    // Both faces in one record, as some issuers have it.
    const Bytes record = makeFaceRecord(group->faces);
    const auto together = DataGroup2::parse(makeTlv(0x75, makeTlv(0x7F61, makeTlv(0x7F60, makeTlv(0x5F2E, record)))));
    ASSERT_TRUE(together);
    ASSERT_EQ(together->faces.size(), 2U);
    EXPECT_EQ(together->faces[1].image.data, group->faces[1].image.data);

    // A record of a later edition: the picture somewhere among nested objects.
    const Bytes nested = makeTlv(
        0xA1, joined({ makeTlv(0x80, Bytes { 3 }), makeTlv(0xA1, makeTlv(0x81, group->faces[0].image.data)) }));
    const auto later = DataGroup2::parse(makeTlv(0x75, makeTlv(0x7F61, makeTlv(0x7F60, makeTlv(0x7F2E, nested)))));
    ASSERT_TRUE(later);
    EXPECT_EQ(later->faces.at(0).image.data, group->faces[0].image.data);
    EXPECT_FALSE(DataGroup2::parse(makeTlv(0x75, makeTlv(0x7F61, makeTlv(0x02, Bytes { 0 })))));
}

TEST(FaceRecord, PassesFeaturePointsAndForgivesTheLengthOfASingleFace)
{
    Bytes record = makeFaceRecord({ { { ImageKind::Jpeg, *fromHex("FFD8FFE0 0102") } } });
    record[14 + 5] = 1; // one feature point
    record.insert(record.begin() + 14 + 20, 8, 0xEE);
    record[14 + 3] = 0; // and no length
    const auto faces = parseFaceRecord(record);
    ASSERT_EQ(faces.size(), 1U);
    EXPECT_EQ(toHex(faces[0].image.data), "FFD8FFE00102");
    EXPECT_EQ(faces[0].featurePoints, 1);
    record[14 + 4] = 0xFF; // more points than bytes
    EXPECT_TRUE(parseFaceRecord(record).empty());
}

TEST(DataGroup11, PublishedExample)
{
    const Bytes file = makeTlv(0x6B,
        joined({ *fromHex("5C 0A 5F0E 5F11 5F42 5F12 5F13"), object(0x5F0E, "SMITH<<JOHN<T"),
            object(0x5F11, "ANYTOWN<MN"), object(0x5F42, "123 MAPLE RD<ANYTOWN<MN"), object(0x5F12, "1-612-555-1212"),
            object(0x5F13, "TRAVEL<AGENT") }));
    EXPECT_EQ(toHex(first(file, 2)), "6B63");
    const auto group = DataGroup11::parse(file);
    ASSERT_TRUE(group);
    EXPECT_EQ(group->fullName, (HolderName { "SMITH", "JOHN T" }));
    EXPECT_EQ(group->placeOfBirth, (QStringList { "ANYTOWN", "MN" }));
    EXPECT_EQ(group->address, (QStringList { "123 MAPLE RD", "ANYTOWN", "MN" }));
    EXPECT_EQ(group->telephone, "1-612-555-1212");
    EXPECT_EQ(group->profession, "TRAVEL AGENT");
    EXPECT_FALSE(group->birthDate);
    EXPECT_TRUE(group->personalNumber.isEmpty());
    EXPECT_EQ(software::makeDG11(*group).size(), file.size());
}

TEST(DataGroup11, EverythingThereAndBack)
{
    for (const auto form : { software::DateForm::Digits, software::DateForm::BinaryCodedDecimals }) {
        const DataGroup11 in = someDetails();
        const auto out = DataGroup11::parse(software::makeDG11(in, form));
        ASSERT_TRUE(out);
        EXPECT_EQ(out->fullName, in.fullName);
        EXPECT_EQ(out->otherNames, in.otherNames);
        EXPECT_EQ(out->personalNumber, in.personalNumber);
        EXPECT_EQ(out->birthDate, in.birthDate);
        EXPECT_EQ(out->placeOfBirth, in.placeOfBirth);
        EXPECT_EQ(out->address, in.address);
        EXPECT_EQ(out->telephone, in.telephone);
        EXPECT_EQ(out->profession, in.profession);
        EXPECT_EQ(out->title, in.title);
        EXPECT_EQ(out->personalSummary, in.personalSummary);
        EXPECT_EQ(out->otherTravelDocuments, in.otherTravelDocuments);
        EXPECT_EQ(out->custody, in.custody);
    }
    EXPECT_FALSE(DataGroup11::parse(makeTlv(0x6B, object(0x5F2B, "1974AUG2")))->birthDate);
}

TEST(DataGroup12, EverythingThereAndBack)
{
    for (const auto form : { software::DateForm::Digits, software::DateForm::BinaryCodedDecimals }) {
        const DataGroup12 in = someDocument();
        const auto out = DataGroup12::parse(software::makeDG12(in, form));
        ASSERT_TRUE(out);
        EXPECT_EQ(out->issuingAuthority, in.issuingAuthority);
        EXPECT_EQ(out->issueDate, in.issueDate);
        EXPECT_EQ(out->otherPersons, in.otherPersons);
        EXPECT_EQ(out->endorsements, in.endorsements);
        EXPECT_EQ(out->taxOrExit, in.taxOrExit);
        EXPECT_EQ(out->front->data, in.front->data);
        EXPECT_EQ(out->rear->kind, ImageKind::Jpeg2000);
        EXPECT_EQ(out->personalizationTime, in.personalizationTime);
        EXPECT_EQ(out->personalizationSerial, in.personalizationSerial);
    }
    // Other persons without a template around them.
    const auto plain = DataGroup12::parse(makeTlv(0x6C, object(0x5F1A, "SMITH<<BRENDA<P")));
    EXPECT_EQ(plain->otherPersons.at(0), (HolderName { "SMITH", "BRENDA P" }));
}

TEST(LdsFiles, TheRestThereAndBack)
{
    const auto files = someFiles();
    const auto signatures = DataGroup7::parse(files.at(DataGroupId::DG7));
    ASSERT_TRUE(signatures);
    EXPECT_EQ(signatures->images.size(), 2U);
    EXPECT_EQ(imageSizeOf(signatures->images[1].data), QSize(16, 8));
    EXPECT_EQ(software::makeDG14(DataGroup14::parse(files.at(DataGroupId::DG14))->securityInfos),
        files.at(DataGroupId::DG14));
    EXPECT_EQ(
        software::makeDG15(DataGroup15::parse(files.at(DataGroupId::DG15))->publicKey), files.at(DataGroupId::DG15));
    EXPECT_FALSE(DataGroup15::parse(makeTlv(0x6F, makeTlv(0x30, {}))));
    const auto persons = DataGroup16::parse(files.at(DataGroupId::DG16));
    ASSERT_TRUE(persons);
    ASSERT_EQ(persons->persons.size(), 2U);
    EXPECT_EQ(persons->persons[0].recordedOn, "20210203");
    EXPECT_EQ(persons->persons[1].name, (HolderName { "SMITH", "ANN" }));
    EXPECT_EQ(persons->persons[1].address, (QStringList { "123 MAPLE RD", "ANYTOWN" }));
    EXPECT_EQ(software::makeDG16(persons->persons), files.at(DataGroupId::DG16));
}

/// Whether the parser of the file's kind takes it; and what it took is no larger than the file.
bool isRead(DataGroupId id, ByteView file)
{
    const auto check = [&](const auto& group) {
        if (group) {
            EXPECT_EQ(group->raw, bytes(file));
        }
        return group.has_value();
    };
    switch (id) {
    case DataGroupId::COM:
        return check(COM::parse(file));
    case DataGroupId::DG1:
        return check(DataGroup1::parse(file));
    case DataGroupId::DG2:
        return check(DataGroup2::parse(file));
    case DataGroupId::DG7:
        return check(DataGroup7::parse(file));
    case DataGroupId::DG11:
        return check(DataGroup11::parse(file));
    case DataGroupId::DG12:
        return check(DataGroup12::parse(file));
    case DataGroupId::DG14:
        return check(DataGroup14::parse(file));
    case DataGroupId::DG15:
        return check(DataGroup15::parse(file));
    case DataGroupId::DG16:
        return check(DataGroup16::parse(file));
    default:
        return false;
    }
}

TEST(LdsFiles, CutOffOrForeignFilesAreAbsentAndFlippedOnesHarmless)
{
    const auto files = someFiles();
    for (const auto& [id, file] : files) {
        const std::string name(entryOf(id).name);
        EXPECT_TRUE(isRead(id, file)) << name;
        for (std::size_t size = 0; size < file.size(); ++size) {
            const Bytes cut = bytes(first(file, size)); // a copy: reading past it is seen by the sanitizer
            ASSERT_FALSE(isRead(id, cut)) << name << " cut to " << size;
        }
        for (const auto& [other, foreign] : files)
            EXPECT_TRUE(other == id || !isRead(id, foreign)) << name << " read from " << entryOf(other).name;
        const std::size_t step = file.size() / 400 + 1;
        for (std::size_t at = 0; at < file.size(); at += step) {
            Bytes flipped = file;
            flipped[at] = static_cast<std::uint8_t>(flipped[at] ^ (at % 2 ? 0x80 : 0xFF));
            isRead(id, flipped);
        }
    }
}

} // namespace
} // namespace kelvara::chip
