#include "Platform/Chip/software/LdsFiles.h"

#include "Platform/Chip/lds/Portrait.h"

#include <algorithm>

namespace kelvara::chip::software {

namespace {

/// "1.7" as "0107".
Bytes versionDigits(const std::string& version)
{
    Bytes digits;
    for (const QString& part : QString::fromStdString(version).split(u'.')) {
        const int number = std::clamp(part.toInt(), 0, 99);
        digits.push_back(static_cast<std::uint8_t>('0' + number / 10));
        digits.push_back(static_cast<std::uint8_t>('0' + number % 10));
    }
    return digits;
}

void append(Bytes& to, const Bytes& more)
{
    to.insert(to.end(), more.begin(), more.end());
}

/// A biometric header as all passports have it: encoded facial features in ISO's facial record.
Bytes faceHeader()
{
    return makeTlv(0xA1,
        joined({ makeTlv(0x80, Bytes { 0x01, 0x01 }), makeTlv(0x81, Bytes { 0x02 }),
            makeTlv(0x87, Bytes { 0x01, 0x01 }), makeTlv(0x88, Bytes { 0x00, 0x08 }) }));
}

} // namespace

Bytes makeCom(const ComOptions& options)
{
    return makeTlv(0x60,
        joined({ makeTlv(0x5F01, versionDigits(options.ldsVersion)),
            makeTlv(0x5F36, versionDigits(options.unicodeVersion)), makeTlv(0x5C, tagsOf(options.dataGroups)) }));
}

Bytes makeDG1(const QString& zone)
{
    Bytes text;
    for (const QChar c : zone) {
        if (!c.isSpace())
            text.push_back(static_cast<std::uint8_t>(c.toLatin1()));
    }
    return makeTlv(0x61, makeTlv(0x5F1F, text));
}

std::optional<Bytes> makeDG2(const std::vector<FaceOptions>& faces)
{
    std::vector<FaceImage> images;
    for (const FaceOptions& face : faces) {
        auto encoded = encodePortrait(face.portrait, face.kind, face.quality);
        if (!encoded)
            return std::nullopt;
        FaceImage image;
        image.image = { face.kind, std::move(*encoded) };
        image.gender = face.gender;
        image.imageType = face.imageType;
        image.width = static_cast<std::uint16_t>(face.portrait.width());
        image.height = static_cast<std::uint16_t>(face.portrait.height());
        image.colorSpace = face.portrait.format() == QImage::Format_Grayscale8 ? 3 : 1; // grey or RGB
        images.push_back(std::move(image));
    }
    return images.empty() ? std::nullopt : std::optional(makeDG2(images));
}

Bytes makeDG2(const std::vector<FaceImage>& faces)
{
    Bytes group = makeTlv(0x02, Bytes { static_cast<std::uint8_t>(faces.size()) });
    for (const FaceImage& face : faces)
        append(group, makeTlv(0x7F60, joined({ faceHeader(), makeTlv(0x5F2E, makeFaceRecord({ face })) })));
    return makeTlv(0x75, makeTlv(0x7F61, group));
}

std::optional<Bytes> makeDG7(const std::vector<QImage>& signatures, int quality)
{
    if (signatures.empty())
        return std::nullopt;
    Bytes content = makeTlv(0x02, Bytes { static_cast<std::uint8_t>(signatures.size()) });
    for (const QImage& signature : signatures) {
        const auto encoded = encodePortrait(signature, ImageKind::Jpeg, quality);
        if (!encoded)
            return std::nullopt;
        append(content, makeTlv(0x5F43, *encoded));
    }
    return makeTlv(0x67, content);
}

Bytes makeDG14(ByteView securityInfos)
{
    return makeTlv(0x6E, securityInfos);
}

Bytes makeDG15(ByteView publicKey)
{
    return makeTlv(0x6F, publicKey);
}

} // namespace kelvara::chip::software
