#include "Platform/Chip/software/ChipContent.h"

#include "Platform/Chip/Tlv.h"
#include "Platform/Chip/lds/Portrait.h"
#include "Platform/Chip/software/DrawnPortrait.h"
#include "Platform/Chip/software/LdsFiles.h"
#include "Platform/Chip/software/SecurityInfoWriter.h"

#include <algorithm>

namespace kelvara::chip::software {

namespace {

using Files = std::map<DataGroupId, Bytes>;
using Id = DataGroupId;

constexpr std::size_t kLargestFile = std::size_t { 1 } << 20;
constexpr std::size_t kMostPersons = 15;

/// All bytes of a list of infos, as a set.
Bytes setOf(std::initializer_list<const std::vector<Bytes>*> parts)
{
    std::vector<Bytes> all;
    for (const auto* part : parts)
        all.insert(all.end(), part->begin(), part->end());
    return securityInfos(all);
}

/// What a forgery needs of the rest of the profile; empty when all is there.
QString missingFor(const ChipProfile& profile)
{
    const auto complaint = [](Forgery forgery, const char* what) {
        return QStringLiteral("The forgery \"%1\" needs %2.")
            .arg(QString::fromUtf8(nameOf(forgery).data(), static_cast<qsizetype>(nameOf(forgery).size())),
                QLatin1String(what));
    };
    const bool hasKeys = !profile.chipAuthentication.empty()
        || std::any_of(profile.pace.begin(), profile.pace.end(),
            [](const PaceOffer& offer) { return offer.mapping == PaceMapping::ChipAuthentication; });
    for (const Forgery forgery : profile.forgeries) {
        switch (forgery) {
        case Forgery::ActiveAuthenticationClone:
        case Forgery::RefusesActiveAuthentication:
        case Forgery::MissingDG15:
            if (!profile.activeAuthentication)
                return complaint(forgery, "active authentication");
            break;
        case Forgery::ChipAuthenticationClone:
        case Forgery::RefusesChipAuthentication:
            if (!hasKeys)
                return complaint(forgery, "chip authentication");
            break;
        case Forgery::PaceHidden:
        case Forgery::PaceStripped:
            if (!profile.hasAccessControl || !profile.hasBac || profile.pace.empty())
                return complaint(forgery, "both BAC and PACE");
            break;
        case Forgery::ChangedDG2:
        case Forgery::UndecodablePortrait:
            if (!profile.portrait)
                return complaint(forgery, "a portrait");
            break;
        case Forgery::QuietCom:
            if (!hasKeys && !profile.activeAuthentication)
                return complaint(forgery, "chip or active authentication");
            break;
        case Forgery::ChangedDG1:
        case Forgery::SwappedSecurityObject:
        case Forgery::ForeignSigner:
        case Forgery::ForeignDG1:
            break;
        }
    }
    return {};
}

/// Begins as a picture and is none.
Bytes spoiltPicture()
{
    return joined({ Bytes { 0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10 }, Bytes(600, 0x5A) });
}

std::optional<Bytes> faceFile(const PortraitOptions& options, bool isSpoilt)
{
    if (options.encoded || isSpoilt) {
        FaceImage face;
        face.image = EncodedImage::of(isSpoilt ? spoiltPicture() : *options.encoded);
        face.imageType = 1; // full frontal
        if (const auto size = imageSizeOf(face.image.data)) {
            face.width = static_cast<std::uint16_t>(size->width());
            face.height = static_cast<std::uint16_t>(size->height());
        }
        return makeDG2({ face });
    }
    const QImage picture = options.picture.isNull() ? drawnPortrait() : options.picture;
    if (std::max(picture.width(), picture.height()) > kLongestPortraitSide
        || qint64 { picture.width() } * picture.height() > kMostPortraitPixels)
        return std::nullopt;
    return makeDG2({ FaceOptions { picture, options.kind, options.quality } });
}

bool override(Files& files, const std::map<Id, std::optional<Bytes>>& wishes)
{
    for (const auto& [id, content] : wishes) {
        if (!content)
            files.erase(id);
        else if (content->size() > kLargestFile)
            return false;
        else
            files[id] = *content;
    }
    return true;
}

/// Card capabilities and the lengths that are taken (ISO/IEC 7816-4 §12.7).
Bytes atrInfo(bool isExtended)
{
    const Bytes capabilities { 0x80, 0x01, static_cast<std::uint8_t>(isExtended ? 0x40 : 0x00) };
    Bytes file = makeTlv(0x47, capabilities);
    if (isExtended) {
        const Bytes longest = makeTlv(0x02, Bytes { 0xFF, 0xFF });
        file = joined({ file, makeTlv(0x7F66, joined({ longest, longest })) });
    }
    return file;
}

/// The data groups before they are signed; a sentence where one cannot be made.
QString makeGroups(Files& files, const ChipProfile& profile, const ZoneText& zone, const ChipSecrets& secrets)
{
    files[Id::DG1] = makeDG1(zone.lines().join(u'\n'));
    if (profile.portrait) {
        auto face = faceFile(*profile.portrait, profile.forgeries.contains(Forgery::UndecodablePortrait));
        if (!face)
            return QStringLiteral("The portrait is too large, too small or of no format that can be written.");
        files[Id::DG2] = std::move(*face);
    }
    if (!profile.signature.isNull()) {
        auto file = makeDG7({ profile.signature });
        if (!file)
            return QStringLiteral("The signature is no picture that can be written.");
        files[Id::DG7] = std::move(*file);
    }
    if (profile.details)
        files[Id::DG11] = makeDG11(*profile.details);
    if (profile.document)
        files[Id::DG12] = makeDG12(*profile.document);
    if (profile.persons.size() > kMostPersons)
        return QStringLiteral("There are more than 15 persons to notify.");
    if (!profile.persons.empty())
        files[Id::DG16] = makeDG16(profile.persons);
    if (!secrets.paceInfos.empty() || !secrets.chipAuthenticationInfos.empty()
        || !secrets.activeAuthenticationInfos.empty())
        files[Id::DG14] = makeDG14(
            setOf({ &secrets.paceInfos, &secrets.chipAuthenticationInfos, &secrets.activeAuthenticationInfos }));
    if (!secrets.activeAuthenticationKey.empty())
        files[Id::DG15] = makeDG15(secrets.activeAuthenticationKey);
    if (!override(files, profile.files))
        return QStringLiteral("A file is larger than any chip's.");
    return {};
}

Bytes comFile(const Files& files, bool isQuiet)
{
    ComOptions options;
    for (const auto& [id, content] : files) {
        if (isDataGroup(id) && !(isQuiet && (id == Id::DG14 || id == Id::DG15)))
            options.dataGroups.push_back(id);
    }
    return makeCom(options);
}

std::optional<Bytes> securityObjectFile(const Files& files, const ChipProfile& profile, const TestAuthority& authority)
{
    if (!profile.forgeries.contains(Forgery::SwappedSecurityObject))
        return authority.securityObject(files, profile.securityObject);
    Files others = files; // another document has the same data groups with other contents
    for (auto& [id, content] : others)
        content.push_back(0);
    return authority.securityObject(others, profile.securityObject);
}

void forgeAfterSigning(Files& files, const ChipProfile& profile, const ZoneText& zone)
{
    if (profile.forgeries.contains(Forgery::ChangedDG1))
        files[Id::DG1] = makeDG1(zone.withAnotherName().lines().join(u'\n'));
    if (profile.forgeries.contains(Forgery::ChangedDG2)) {
        const bool isJpeg = profile.portrait->kind == ImageKind::Jpeg;
        auto other = makeDG2({ FaceOptions { drawnPortrait(true), isJpeg ? ImageKind::Jpeg : ImageKind::Jpeg2000 } });
        if (other)
            files[Id::DG2] = std::move(*other);
    }
    if (profile.forgeries.contains(Forgery::MissingDG15))
        files.erase(Id::DG15);
}

/// Everything that lies around the data groups; a sentence where something cannot be made.
QString completeFiles(Files& files, const ChipProfile& profile, const ZoneText& zone, const ChipSecrets& secrets,
    const TestAuthority& signer)
{
    const auto has = [&](Forgery forgery) { return profile.forgeries.contains(forgery); };
    auto object = securityObjectFile(files, profile, signer);
    if (!object)
        return QStringLiteral("The security object cannot be signed as asked for.");
    Files around { { Id::COM, comFile(files, has(Forgery::QuietCom)) }, { Id::SOD, std::move(*object) } };
    if (!secrets.paceInfos.empty() && !has(Forgery::PaceHidden))
        around[Id::CardAccess]
            = has(Forgery::PaceStripped) ? setOf({ &secrets.chipAuthenticationInfos }) : setOf({ &secrets.paceInfos });
    if (!secrets.staticKey.publicKey.empty()) {
        auto security = signer.cardSecurity(setOf({ &secrets.paceInfos, &secrets.chipAuthenticationInfos }));
        if (!security)
            return QStringLiteral("EF.CardSecurity cannot be signed as asked for.");
        around[Id::CardSecurity] = std::move(*security);
    }
    if (profile.hasAtrInfo)
        around[Id::AtrInfo] = atrInfo(profile.announcesExtendedLength);
    for (auto& [id, content] : around) {
        if (!profile.files.contains(id))
            files[id] = std::move(content);
    }
    forgeAfterSigning(files, profile, zone);
    if (!override(files, profile.filesAfterSigning))
        return QStringLiteral("A file is larger than any chip's.");
    return {};
}

bool isCardAccessNumber(const std::string& digits)
{
    return !digits.empty() && digits.size() <= 16
        && std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

std::variant<ChipContent, QString> ChipContent::of(const ChipProfile& profile)
{
    auto zone = ZoneText::of(profile.zone);
    if (auto* problem = std::get_if<QString>(&zone))
        return std::move(*problem);
    const ZoneText& own = std::get<ZoneText>(zone);
    if (QString problem = missingFor(profile); !problem.isEmpty())
        return problem;
    if (profile.hasAccessControl && !profile.hasBac && profile.pace.empty())
        return QStringLiteral("A chip with neither BAC nor PACE could not be opened.");
    if (profile.cardAccessNumber && !isCardAccessNumber(*profile.cardAccessNumber))
        return QStringLiteral("The card access number needs 1 to 16 digits.");
    auto secrets = ChipSecrets::of(profile);
    if (auto* problem = std::get_if<QString>(&secrets))
        return std::move(*problem);
    const bool isForeign = profile.forgeries.contains(Forgery::ForeignSigner);
    const auto authority = profile.authority ? profile.authority : TestAuthority::make(profile.authorityOptions);
    const auto signer = isForeign ? TestAuthority::make(profile.authorityOptions) : authority;
    if (!authority || !signer)
        return QStringLiteral("The authority's keys or certificates cannot be made as asked for.");

    ChipContent content { own, {}, std::get<ChipSecrets>(std::move(secrets)), {}, *authority };
    const ZoneText written = profile.forgeries.contains(Forgery::ForeignDG1) ? own.ofAnotherDocument() : own;
    QString problem = makeGroups(content.files, profile, written, content.secrets);
    if (problem.isEmpty())
        problem = completeFiles(content.files, profile, written, content.secrets, *signer);
    if (!problem.isEmpty())
        return problem;
    content.passwords.push_back(PacePassword::fromMrz(own.key()));
    if (profile.cardAccessNumber)
        content.passwords.push_back(PacePassword::fromCan(*profile.cardAccessNumber));
    return content;
}

} // namespace kelvara::chip::software
