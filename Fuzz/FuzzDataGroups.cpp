#include "Platform/Chip/lds/COM.h"
#include "Platform/Chip/lds/DataGroup1.h"
#include "Platform/Chip/lds/DataGroup11.h"
#include "Platform/Chip/lds/DataGroup12.h"
#include "Platform/Chip/lds/DataGroup14.h"
#include "Platform/Chip/lds/DataGroup15.h"
#include "Platform/Chip/lds/DataGroup16.h"
#include "Platform/Chip/lds/DataGroup2.h"
#include "Platform/Chip/lds/DataGroup7.h"

#include <algorithm>
#include <cstdlib>

using namespace kelvara::chip;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void checkDigits(const std::optional<QString>& digits, qsizetype count)
{
    require(!digits || (digits->size() == count && std::all_of(digits->cbegin(), digits->cend(), [](QChar c) {
        return c >= u'0' && c <= u'9';
    })));
}

void checkImage(const EncodedImage& image, std::size_t fileSize)
{
    require(image.data.size() < fileSize && image.kind == imageKindOf(image.data));
    const auto size = imageSizeOf(image.data);
    require(!size || (size->width() > 0 && size->height() > 0));
}

void check(const COM& com, std::size_t)
{
    require(com.dataGroups.size() <= 16);
}

void check(const DataGroup1& group, std::size_t)
{
    const qsizetype expected = group.format == DataGroup1::Format::TD1 ? 30
        : group.format == DataGroup1::Format::TD2                      ? 36
                                                                       : 44;
    for (const QString& line : group.lines)
        require(line.size() == expected);
    require(group.birthDate.size() == 6 && group.expiryDate.size() == 6 && group.sex.size() == 1);
}

void check(const DataGroup2& group, std::size_t size)
{
    require(!group.faces.empty());
    for (const FaceImage& face : group.faces)
        checkImage(face.image, size);
}

void check(const DataGroup7& group, std::size_t size)
{
    require(!group.images.empty());
    for (const EncodedImage& image : group.images)
        checkImage(image, size);
}

void check(const DataGroup11& group, std::size_t)
{
    checkDigits(group.birthDate, 8);
}

void check(const DataGroup12& group, std::size_t)
{
    checkDigits(group.issueDate, 8);
    checkDigits(group.personalizationTime, 14);
}

void check(const DataGroup14& group, std::size_t size)
{
    require(!group.securityInfos.empty() && group.securityInfos.size() < size);
}

void check(const DataGroup15& group, std::size_t size)
{
    require(!group.publicKey.empty() && group.publicKey.size() < size);
}

void check(const DataGroup16& group, std::size_t)
{
    for (const PersonToNotify& person : group.persons)
        checkDigits(person.recordedOn, 8);
}

template<typename Group> void parse(ByteView file)
{
    if (const auto group = Group::parse(file)) {
        require(group->raw == bytes(file));
        check(*group, file.size());
    }
}

} // namespace

/// The first byte says what the rest is read as.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr void (*kParsers[])(ByteView) = { parse<COM>, parse<DataGroup1>, parse<DataGroup2>, parse<DataGroup7>,
        parse<DataGroup11>, parse<DataGroup12>, parse<DataGroup14>, parse<DataGroup15>, parse<DataGroup16> };
    if (size > 0)
        kParsers[data[0] % std::size(kParsers)]({ data + 1, size - 1 });
    return 0;
}
