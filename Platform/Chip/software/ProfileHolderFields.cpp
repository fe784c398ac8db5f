// Who the document is about, and files as they are.

#include "Platform/Chip/lds/Portrait.h"
#include "Platform/Chip/software/ProfileFields.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>

namespace kelvara::chip::software {

namespace {

constexpr qint64 kLargestPicture = qint64 { 16 } << 20;
constexpr qint64 kLargestFile = qint64 { 1 } << 20;
/// Larger pictures are drawn smaller: a chip has some tens of kilobytes for its portrait.
constexpr int kLongestSide = 800;

/// The bytes of a regular file; absent, and told, where there is none or it is too large.
std::optional<Bytes> contentOf(JsonFields& fields, const QString& name, const QDir& base, qint64 largest)
{
    const QString path = fields.text(name);
    QFile file(base.filePath(path));
    if (path.isEmpty() || !QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly)) {
        fields.fail(name, QStringLiteral("names no file that can be read"));
        return std::nullopt;
    }
    if (file.size() > largest) {
        fields.fail(name, QStringLiteral("names a file of more than %1 bytes").arg(largest));
        return std::nullopt;
    }
    const QByteArray all = file.read(largest);
    return bytes(
        ByteView(reinterpret_cast<const std::uint8_t*>(all.constData()), static_cast<std::size_t>(all.size())));
}

bool isSane(QSize size)
{
    return !size.isEmpty() && std::max(size.width(), size.height()) <= kLongestPortraitSide
        && qint64 { size.width() } * size.height() <= kMostPortraitPixels;
}

/// Null where it is no photograph of sane size.
QImage decoded(const Bytes& content)
{
    if (imageKindOf(content) == ImageKind::Jpeg2000) {
        auto picture = decodePortrait(content);
        const auto* found = std::get_if<QImage>(&picture);
        return found == nullptr ? QImage() : *found;
    }
    const QByteArray view = QByteArray::fromRawData(
        reinterpret_cast<const char*>(content.data()), static_cast<qsizetype>(content.size()));
    QBuffer buffer;
    buffer.setData(view);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    // A drawing has no pixels of its own and may name other files.
    return reader.format().startsWith("svg") || !isSane(reader.size()) ? QImage() : reader.read();
}

QImage pictureOf(JsonFields& fields, const QString& name, const QDir& base)
{
    const auto content = contentOf(fields, name, base, kLargestPicture);
    if (!content)
        return {};
    QImage picture = decoded(*content);
    if (picture.isNull()) {
        fields.fail(name,
            QStringLiteral("names no picture, or one of more than %1 pixels or %2 a side")
                .arg(kMostPortraitPixels)
                .arg(kLongestPortraitSide));
        return {};
    }
    if (std::max(picture.width(), picture.height()) > kLongestSide)
        picture = picture.scaled(kLongestSide, kLongestSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return picture;
}

void readPortrait(ChipProfile& profile, JsonFields& fields, const QDir& base)
{
    const QString name = QStringLiteral("portrait");
    const QString file = QStringLiteral("file");
    if (!fields.has(name))
        return;
    if (fields.takeNull(name)) {
        profile.portrait.reset();
        return;
    }
    if (fields.isText(name)) {
        profile.portrait->picture = pictureOf(fields, name, base);
        return;
    }
    JsonFields part = fields.object(name);
    profile.portrait->kind = part.choice(QStringLiteral("format"), ImageKind::Jpeg2000,
        { { "JPEG", ImageKind::Jpeg }, { "JPEG2000", ImageKind::Jpeg2000 } });
    const bool isJpeg = profile.portrait->kind == ImageKind::Jpeg;
    profile.portrait->quality = part.number(QStringLiteral("quality"), isJpeg ? 80 : 75, 1, isJpeg ? 100 : 1000);
    if (part.flag(QStringLiteral("asIs"), false)) {
        auto content = contentOf(part, file, base, kLargestFile);
        if (content && !isSane(imageSizeOf(*content).value_or(QSize())))
            part.fail(file, QStringLiteral("names no JPEG or JPEG 2000 picture of sane size, which \"asIs\" needs"));
        profile.portrait->encoded = std::move(content);
    } else if (part.has(file)) {
        profile.portrait->picture = pictureOf(part, file, base);
    }
    part.finish();
}

HolderName nameIn(JsonFields part)
{
    HolderName name { part.text(QStringLiteral("primary")), part.text(QStringLiteral("secondary")) };
    part.finish();
    return name;
}

std::vector<HolderName> namesIn(JsonFields& fields, const QString& name)
{
    std::vector<HolderName> names;
    for (JsonFields& part : fields.objects(name))
        names.push_back(nameIn(part));
    return names;
}

/// Digits of a date or time; absent where the field is.
std::optional<QString> digitsIn(JsonFields& fields, const QString& name, qsizetype count)
{
    if (!fields.has(name))
        return std::nullopt;
    const QString digits = fields.text(name);
    const bool isGood = digits.size() == count
        && std::all_of(digits.begin(), digits.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    if (!isGood)
        fields.fail(name, QStringLiteral("must have %1 digits").arg(count));
    return digits;
}

DataGroup11 detailsIn(JsonFields part)
{
    DataGroup11 details;
    if (part.has(QStringLiteral("fullName")))
        details.fullName = nameIn(part.object(QStringLiteral("fullName")));
    details.otherNames = namesIn(part, QStringLiteral("otherNames"));
    details.personalNumber = part.text(QStringLiteral("personalNumber"));
    details.birthDate = digitsIn(part, QStringLiteral("birthDate"), 8);
    details.placeOfBirth = part.texts(QStringLiteral("placeOfBirth"));
    details.address = part.texts(QStringLiteral("address"));
    details.telephone = part.text(QStringLiteral("telephone"));
    details.profession = part.text(QStringLiteral("profession"));
    details.title = part.text(QStringLiteral("title"));
    details.personalSummary = part.text(QStringLiteral("personalSummary"));
    details.otherTravelDocuments = part.texts(QStringLiteral("otherTravelDocuments"));
    details.custody = part.text(QStringLiteral("custody"));
    part.finish();
    return details;
}

DataGroup12 documentIn(JsonFields part)
{
    DataGroup12 document;
    document.issuingAuthority = part.text(QStringLiteral("issuingAuthority"));
    document.issueDate = digitsIn(part, QStringLiteral("issueDate"), 8);
    document.otherPersons = namesIn(part, QStringLiteral("otherPersons"));
    document.endorsements = part.text(QStringLiteral("endorsements"));
    document.taxOrExit = part.text(QStringLiteral("taxOrExit"));
    document.personalizationTime = digitsIn(part, QStringLiteral("personalizationTime"), 14);
    document.personalizationSerial = part.text(QStringLiteral("personalizationSerial"));
    part.finish();
    return document;
}

PersonToNotify personIn(JsonFields part)
{
    PersonToNotify person;
    person.recordedOn = digitsIn(part, QStringLiteral("recordedOn"), 8);
    person.name = nameIn(part.object(QStringLiteral("name")));
    person.telephone = part.text(QStringLiteral("telephone"));
    person.address = part.texts(QStringLiteral("address"));
    part.finish();
    return person;
}

std::map<DataGroupId, std::optional<Bytes>> filesIn(JsonFields part, const QDir& base)
{
    std::map<DataGroupId, std::optional<Bytes>> files;
    for (const QString& name : part.names()) {
        const auto id = dataGroupOfName(name.toStdString());
        if (!id)
            continue; // left to `finish`
        if (part.takeNull(name))
            files[*id] = std::nullopt;
        else if (auto content = contentOf(part, name, base, kLargestFile))
            files[*id] = std::move(content);
    }
    part.finish();
    return files;
}

} // namespace

void readHolder(ChipProfile& profile, JsonFields& fields, const QDir& base)
{
    readPortrait(profile, fields, base);
    if (fields.has(QStringLiteral("signature")))
        profile.signature = pictureOf(fields, QStringLiteral("signature"), base);
    if (fields.has(QStringLiteral("details")))
        profile.details = detailsIn(fields.object(QStringLiteral("details")));
    if (fields.has(QStringLiteral("document")))
        profile.document = documentIn(fields.object(QStringLiteral("document")));
    for (JsonFields& part : fields.objects(QStringLiteral("persons")))
        profile.persons.push_back(personIn(part));
}

void readFiles(ChipProfile& profile, JsonFields& fields, const QDir& base)
{
    profile.files = filesIn(fields.object(QStringLiteral("files")), base);
    profile.filesAfterSigning = filesIn(fields.object(QStringLiteral("filesAfterSigning")), base);
}

} // namespace kelvara::chip::software
