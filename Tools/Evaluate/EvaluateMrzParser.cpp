// How often the parser reads degraded zones, refuses them, or, worst, vouches for a wrong field.
//   kelvara-evaluate-mrz-parser [zones per row] [seed]
// "Arbitrary" is the part of the errors that no reader of OCR-B is known for: any character for any other. Hits are
// zones vouched for with every protected field right. KELVARA_SHOW_MISREADS=1 prints the misreads.

#include "Platform/Mrz/MrzCheckDigit.h"
#include "Platform/Mrz/QKMRZParser.h"
#include "Tools/Evaluate/MrzDamage.h"
#include "Tools/Specimen/Dice.h"
#include "Tools/Specimen/Specimen.h"

#include <QLocale>

#include <cstdio>
#include <cstdlib>

using namespace kelvara;
using evaluate::Damage;
using evaluate::degraded;
using specimen::Dice;
using specimen::SpecimenData;

namespace {

enum class Document { TurkishCard, Card, LargeCard, Passport };

struct Zone
{
    QStringList lines;
    QString documentNumber;
    QString personalNumber;
    SpecimenData data;
};

QString checked(const QString& field)
{
    return field + QString::number(mrzCheckDigit(field).value_or(0));
}

QString filled(const QString& text, int length)
{
    return text.leftJustified(length, u'<', true);
}

QString drawn(Dice& dice, QStringView shape)
{
    QString text;
    for (const QChar kind : shape) {
        static constexpr QStringView letters = u"ABCDEFGHIJKLMNOPQRSTUVWXYZ";
        static constexpr QStringView german = u"0123456789CFGHJKLMNPRTVWXYZ";
        const QStringView from = kind == u'A' ? letters : kind == u'G' ? german : letters.first(0);
        text += from.isEmpty() ? QChar(u'0' + dice.integer(0, 9)) : from[dice.integer(0, int(from.size()) - 1)];
    }
    return text;
}

/// Zones of other issuers, with document numbers of the shapes that are about.
Zone zoneOf(Document document, std::uint32_t seed)
{
    Zone zone { {}, {}, {}, SpecimenData::fromSeed(seed) };
    const SpecimenData& data = zone.data;
    zone.documentNumber = data.documentNumber;
    zone.personalNumber = data.identityNumber;
    if (document == Document::TurkishCard) {
        zone.lines = data.mrzLines();
        return zone;
    }
    struct Issuer
    {
        const char16_t* state;
        const char16_t* shape;
    };
    static constexpr Issuer issuers[] = { { u"USA", u"999999999" }, { u"GBR", u"999999999" }, { u"NLD", u"AA9999999" },
        { u"ITA", u"AA9999999" }, { u"FRA", u"99AA99999" }, { u"POL", u"AAA999999" }, { u"ESP", u"AAA999999" },
        { u"GRC", u"AA9999999" }, { u"UKR", u"AA999999" }, { u"KOR", u"A99999999" }, { u"D<<", u"GGGGGGGGG" } };
    Dice dice(seed, 0xd0c);
    const Issuer& issuer = dice.pick(std::span<const Issuer>(issuers));
    const QString state = QString::fromUtf16(issuer.state);
    zone.documentNumber = drawn(dice, QStringView(issuer.shape));
    zone.personalNumber = dice.chance(0.5) ? QString() : drawn(dice, QStringView(u"9999999").first(dice.integer(4, 7)));
    const QString name = data.mrzLines().at(2);
    const QString number = checked(filled(zone.documentNumber, 9));
    const QString birth = checked(QLocale::c().toString(data.birthDate, QStringLiteral("yyMMdd")));
    const QString expiry = checked(QLocale::c().toString(data.expiryDate, QStringLiteral("yyMMdd")));
    const auto final = [](const QString& covered) { return checked(covered).right(1); };
    if (document == Document::Card) {
        const QString first = QStringLiteral("I<") + state + number + filled(zone.personalNumber, 15);
        const QString empty = filled({}, 11);
        zone.lines
            = { first, birth + data.sex + expiry + state + empty + final(first.mid(5) + birth + expiry + empty), name };
        return zone;
    }
    const bool isPassport = document == Document::Passport;
    const QString personal = isPassport ? checked(filled(zone.personalNumber, 14)) : filled(zone.personalNumber, 7);
    zone.lines
        = { filled((isPassport ? QStringLiteral("P<") : QStringLiteral("I<")) + state + name, isPassport ? 44 : 36),
              number + state + birth + data.sex + expiry + personal + final(number + birth + expiry + personal) };
    return zone;
}

bool isRight(const QKMRZResult& result, const Zone& truth)
{
    return result.documentNumber == truth.documentNumber && result.personalNumber == truth.personalNumber
        && result.personalNumber2.value_or(QString()).isEmpty() && result.birthDate == truth.data.birthDate
        && result.expiryDate == truth.data.expiryDate;
}

struct Tally
{
    int hits = 0;
    int refusals = 0;
    int misreads = 0;
    int intact = 0; ///< Read without any error.
    bool isNoisy = std::getenv("KELVARA_SHOW_MISREADS") != nullptr;

    void add(const std::optional<QKMRZResult>& result, const Zone& truth, const std::vector<MrzLineReading>& read)
    {
        bool isIntact = static_cast<qsizetype>(read.size()) == truth.lines.size();
        for (std::size_t i = 0; isIntact && i < read.size(); ++i)
            isIntact = read[i].text == truth.lines[static_cast<qsizetype>(i)];
        intact += isIntact;
        if (!result || !result->allCheckDigitsValid) {
            ++refusals;
            return;
        }
        ++(isRight(*result, truth) ? hits : misreads);
        if (isNoisy && !isRight(*result, truth)) {
            for (std::size_t i = 0; i < read.size(); ++i)
                std::printf(
                    "    %s\n  < %s\n", qPrintable(truth.lines[static_cast<qsizetype>(i)]), qPrintable(read[i].text));
        }
    }
};

} // namespace

int main(int argc, char** argv)
{
    const int count = argc > 1 ? std::max(1, std::atoi(argv[1])) : 20000;
    const auto seed = static_cast<std::uint32_t>(argc > 2 ? std::atoi(argv[2]) : 1);
    QKMRZParser parser(true);
    parser.setToday([] { return QDate(2026, 6, 1); });
    struct Row
    {
        Document document;
        const char* name;
    };
    static constexpr Row rows[] = { { Document::TurkishCard, "Turkish card" }, { Document::Card, "other TD1" },
        { Document::LargeCard, "other TD2" }, { Document::Passport, "other TD3" } };
    static constexpr Damage damages[] = { { 0, 0, false }, { 0.005, 0, false }, { 0.01, 0, false }, { 0.02, 0, false },
        { 0.05, 0, false }, { 0.1, 0, false }, { 0.2, 0, false }, { 0.01, 0.1, false }, { 0.03, 0.1, false },
        { 0.1, 0.1, false }, { 0.01, 0.1, true }, { 0.03, 0.1, true }, { 0.1, 0.1, true } };
    std::printf("%d zones a row, seed %u\n%-13s %6s %9s %9s %8s %8s %9s %9s\n", count, seed, "document", "errors",
        "arbitrary", "certainty", "intact", "hits", "refusals", "misreads");
    for (const Row& row : rows) {
        for (const Damage& damage : damages) {
            Tally tally;
            for (int i = 0; i < count; ++i) {
                const auto zoneSeed = seed * 1000003U + static_cast<std::uint32_t>(i);
                const Zone truth = zoneOf(row.document, zoneSeed);
                Dice dice(zoneSeed, static_cast<std::uint32_t>(damage.rate * 1000) + 7);
                std::vector<MrzLineReading> read;
                for (const QString& line : truth.lines)
                    read.push_back(degraded(line, damage, dice));
                tally.add(parser.parse(read), truth, read);
            }
            std::printf("%-13s %5.1f%% %8.0f%% %9s %7.2f%% %7.2f%% %9d %9d\n", row.name, damage.rate * 100,
                damage.arbitrary * 100, damage.hasCertainty ? "known" : "unknown", 100.0 * tally.intact / count,
                100.0 * tally.hits / count, tally.refusals, tally.misreads);
            std::fflush(stdout);
        }
    }
    return 0;
}
