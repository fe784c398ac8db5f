// Protocols, authority, manners and faults.

#include "Platform/Chip/software/ProfileFields.h"

namespace kelvara::chip::software {

namespace {

constexpr int kGreatestParameterId = 31;
constexpr int kMillion = 1'000'000;
constexpr int kMinute = 60'000; // milliseconds

CipherAlgorithm cipherIn(JsonFields& fields)
{
    return fields.choice(QStringLiteral("cipher"), CipherAlgorithm::AES128,
        { { "TripleDES", CipherAlgorithm::TripleDES }, { "AES128", CipherAlgorithm::AES128 },
            { "AES192", CipherAlgorithm::AES192 }, { "AES256", CipherAlgorithm::AES256 } });
}

DigestAlgorithm digestIn(JsonFields& fields)
{
    return fields.choice(QStringLiteral("digest"), DigestAlgorithm::SHA256,
        { { "SHA1", DigestAlgorithm::SHA1 }, { "SHA224", DigestAlgorithm::SHA224 },
            { "SHA256", DigestAlgorithm::SHA256 }, { "SHA384", DigestAlgorithm::SHA384 },
            { "SHA512", DigestAlgorithm::SHA512 } });
}

unsigned parametersIn(JsonFields& fields)
{
    return static_cast<unsigned>(fields.number(QStringLiteral("parameters"), 13, 0, kGreatestParameterId));
}

/// Four hexadecimal digits.
std::uint16_t statusIn(JsonFields& fields, const QString& name, std::uint16_t otherwise)
{
    if (!fields.has(name))
        return otherwise;
    const auto status = fromHex(fields.text(name).toStdString());
    if (status && status->size() == 2)
        return static_cast<std::uint16_t>((*status)[0] << 8 | (*status)[1]);
    fields.fail(name, QStringLiteral("must be a status word of four hexadecimal digits"));
    return otherwise;
}

std::chrono::milliseconds delayIn(JsonFields& fields)
{
    return std::chrono::milliseconds(fields.number(QStringLiteral("delay"), 0, 0, kMinute));
}

void readAccess(ChipProfile& profile, JsonFields part)
{
    profile.hasAccessControl = !part.flag(QStringLiteral("open"), false);
    profile.hasBac = part.flag(QStringLiteral("bac"), true);
    if (part.takeNull(QStringLiteral("pace")))
        profile.pace.clear();
    else if (part.has(QStringLiteral("pace"))) {
        profile.pace.clear();
        for (JsonFields& offer : part.objects(QStringLiteral("pace"))) {
            const auto mapping = offer.choice(QStringLiteral("mapping"), PaceMapping::Generic,
                { { "generic", PaceMapping::Generic }, { "integrated", PaceMapping::Integrated },
                    { "chipAuthentication", PaceMapping::ChipAuthentication } });
            profile.pace.push_back({ mapping, parametersIn(offer), cipherIn(offer) });
            offer.finish();
        }
    }
    if (part.has(QStringLiteral("can")))
        profile.cardAccessNumber = part.text(QStringLiteral("can")).toStdString();
    part.finish();
}

ActiveAuthenticationKey activeKeyIn(JsonFields part)
{
    ActiveAuthenticationKey key;
    key.rsaBits = static_cast<unsigned>(part.number(QStringLiteral("rsaBits"), 1024, 1024, 4096));
    key.curve = part.text(QStringLiteral("curve")).toStdString();
    if (!key.curve.empty() && part.has(QStringLiteral("rsaBits")))
        part.fail(QStringLiteral("curve"), QStringLiteral("excludes \"rsaBits\""));
    key.digest = digestIn(part);
    key.hasShortTrailer = part.flag(QStringLiteral("shortTrailer"), false);
    part.finish();
    return key;
}

ChipFault faultIn(JsonFields& part)
{
    using Counting = ChipFault::Counting;
    ChipFault fault;
    const QString kind = part.text(QStringLiteral("kind"));
    if (const auto known = faultOfName(kind.toStdString()))
        fault.kind = *known;
    else
        part.fail(QStringLiteral("kind"), QStringLiteral("knows no \"%1\"").arg(kind));
    fault.command = static_cast<unsigned>(part.number(QStringLiteral("command"), 1, 1, kMillion));
    fault.counting = part.choice(QStringLiteral("counting"), Counting::ChipLife,
        { { "chipLife", Counting::ChipLife }, { "presentation", Counting::Presentation } });
    if (part.has(QStringLiteral("byte")))
        fault.byte = static_cast<std::size_t>(part.number(QStringLiteral("byte"), 0, 0, kMillion));
    fault.bit = static_cast<unsigned>(part.number(QStringLiteral("bit"), 0, 0, 7));
    fault.sw = statusIn(part, QStringLiteral("status"), fault.kind == ChipFault::Kind::SessionEnd ? 0x6700 : 0x6F00);
    fault.size = static_cast<std::size_t>(part.number(QStringLiteral("size"), 20, 0, 65'538));
    fault.delay = delayIn(part);
    part.finish();
    return fault;
}

} // namespace

void readProtocols(ChipProfile& profile, JsonFields& fields)
{
    const QString chip = QStringLiteral("chipAuthentication");
    const QString active = QStringLiteral("activeAuthentication");
    readAccess(profile, fields.object(QStringLiteral("access")));
    if (fields.takeNull(chip)) {
        profile.chipAuthentication.clear();
    } else if (fields.has(chip)) {
        profile.chipAuthentication.clear();
        for (JsonFields& part : fields.objects(chip)) {
            profile.chipAuthentication.push_back(
                { parametersIn(part), cipherIn(part), part.flag(QStringLiteral("explicit"), false) });
            part.finish();
        }
    }
    if (!fields.takeNull(active) && fields.has(active))
        profile.activeAuthentication = activeKeyIn(fields.object(active));
}

void readAuthority(ChipProfile& profile, JsonFields& fields)
{
    JsonFields authority = fields.object(QStringLiteral("authority"));
    AuthorityOptions& options = profile.authorityOptions;
    options.country = authority.text(QStringLiteral("country"), options.country);
    if (options.country.size() != 2)
        authority.fail(QStringLiteral("country"), QStringLiteral("must have two letters"));
    options.name = authority.text(QStringLiteral("name"), options.name);
    if (options.name.isEmpty() || options.name.size() > 40) // with its signers' names no longer than certificates allow
        authority.fail(QStringLiteral("name"), QStringLiteral("must have 1 to 40 characters"));
    SigningOptions signing;
    signing.key = authority.choice(QStringLiteral("key"), SigningKey::ExplicitCurve,
        { { "explicitCurve", SigningKey::ExplicitCurve }, { "namedCurve", SigningKey::NamedCurve },
            { "RSA", SigningKey::Rsa }, { "RSA-PSS", SigningKey::RsaPss },
            { "RSA-PSS-only", SigningKey::RsaPssOnly } });
    signing.curve = authority.choice(QStringLiteral("curve"), SigningCurve::BrainpoolP256r1,
        { { "P224", SigningCurve::P224 }, { "P256", SigningCurve::P256 }, { "P384", SigningCurve::P384 },
            { "P521", SigningCurve::P521 }, { "brainpoolP224r1", SigningCurve::BrainpoolP224r1 },
            { "brainpoolP256r1", SigningCurve::BrainpoolP256r1 }, { "brainpoolP320r1", SigningCurve::BrainpoolP320r1 },
            { "brainpoolP384r1", SigningCurve::BrainpoolP384r1 },
            { "brainpoolP512r1", SigningCurve::BrainpoolP512r1 } });
    signing.rsaBits = authority.number(QStringLiteral("rsaBits"), 2048, 1024, 4096);
    signing.digest = digestIn(authority);
    options.authority = options.signer = signing;
    authority.finish();

    JsonFields object = fields.object(QStringLiteral("securityObject"));
    profile.securityObject.digest = digestIn(object);
    profile.securityObject.version = object.number(QStringLiteral("version"), 0, 0, 1);
    profile.securityObject.withCertificate = object.flag(QStringLiteral("certificate"), true);
    if (object.has(QStringLiteral("signingTime"))) {
        const QDateTime time = QDateTime::fromString(object.text(QStringLiteral("signingTime")), Qt::ISODate);
        if (!time.isValid() || time.date().year() < 1950 || time.date().year() > 2200)
            object.fail(QStringLiteral("signingTime"), QStringLiteral("must be a time such as 2024-05-31T12:00:00Z"));
        else
            profile.securityObject.signingTime = time.toUTC();
    }
    object.finish();
}

void readManners(ChipProfile& profile, JsonFields& fields)
{
    JsonFields part = fields.object(QStringLiteral("reading"));
    ReadingManners& manners = profile.reading;
    manners.longestAnswer = static_cast<std::uint32_t>(part.number(QStringLiteral("longestAnswer"), 65'536, 1, 65'536));
    manners.tooLongAnswer = statusIn(part, QStringLiteral("tooLongAnswer"), manners.tooLongAnswer);
    manners.endOfFileAnswer = statusIn(part, QStringLiteral("endOfFileAnswer"), manners.endOfFileAnswer);
    manners.knowsShortFileIds = part.flag(QStringLiteral("shortFileIds"), true);
    manners.knowsOddInstruction = part.flag(QStringLiteral("oddInstruction"), true);
    profile.announcesExtendedLength = part.flag(QStringLiteral("extendedLength"), true);
    profile.acceptsExtendedLength = part.flag(QStringLiteral("acceptsExtendedLength"), profile.announcesExtendedLength);
    part.finish();
}

void readFaults(ChipProfile& profile, JsonFields& fields)
{
    JsonFields part = fields.object(QStringLiteral("faults"));
    for (JsonFields& fault : part.objects(QStringLiteral("list")))
        profile.faults.list.push_back(faultIn(fault));
    profile.faults.delay = delayIn(part);
    profile.faults.refusedReadEndsSession = part.flag(QStringLiteral("refusedReadEndsSession"), false);
    profile.faults.seed = static_cast<std::uint32_t>(part.number(QStringLiteral("seed"), 1, 0, kMillion));
    part.finish();
}

} // namespace kelvara::chip::software
