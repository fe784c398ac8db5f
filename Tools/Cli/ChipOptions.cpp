#include "Tools/Cli/ChipOptions.h"

#include "Kelvara/IDCardUtil.h"
#include "Platform/Mrz/QKMRZParser.h"

#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QRegularExpression>

namespace kelvara::cli {

namespace {

constexpr auto kChipHelp = R"(Usage: kelvara chip --mrz ZONE | --key KEY [options]
       kelvara chip --software FILE.json [options]

Reads an identity document's chip as Kelvara's view does and prints it as one JSON object.

  --mrz ZONE           the machine-readable zone that opens the chip: its two or three lines, separated or not
  --key KEY            or the access key itself: document number, birth and expiry date (YYMMDD), each with its
                       check digit
  --software FILE      read a chip that software plays instead of one on a reader; opened by its own key without
                       --mrz and --key
  --trace              print the commands and answers in clear to the error stream (with --software only)
  --portrait OUT       write the portrait, in the format of OUT's suffix (.png, .jpg)
  --master-list FILE   the authorities to trust: a state's master list, or certificates in PEM or DER
  --reader NAME        use the reader whose name holds NAME instead of the first
  --wait SECONDS       how long to wait for a card; 60 without
  --pretty             indent the JSON
  -h, --help           this text

A key on the command line can be seen by other users of the machine; "--mrz -" and "--key -" read it from standard
input instead. Nothing of a card is written but the JSON and the portrait that is asked for.

Exit code: 0 read and genuine, 1 not read or not genuine, 2 wrong usage, no reader, or a file that cannot be read or
written.
)";

CliEnd wrongChipUse(const QString& sentence)
{
    return { QStringLiteral("kelvara: %1 See kelvara chip --help.\n").arg(sentence), 2 };
}

std::optional<QString> standardInput()
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return std::nullopt;
    constexpr qint64 kMost = 4096;
    return QString::fromUtf8(input.read(kMost)).trimmed();
}

bool isSameFile(const QString& one, const QString& other)
{
    const QString path = QFileInfo(one).canonicalFilePath();
    return !path.isEmpty() && path == QFileInfo(other).canonicalFilePath();
}

/// Everything that can be known to go wrong before a card is asked for; empty when there is nothing.
QString problemOfPortrait(const ChipOptions& options)
{
    if (options.portraitFile.isEmpty())
        return {};
    const QByteArray suffix = QFileInfo(options.portraitFile).suffix().toLower().toLatin1();
    if (!QImageWriter::supportedImageFormats().contains(suffix))
        return QStringLiteral("--portrait needs a file whose suffix is a picture's, such as .png.");
    if (isSameFile(options.portraitFile, options.softwareFile)
        || isSameFile(options.portraitFile, options.masterListFile))
        return QStringLiteral("--portrait would overwrite a file that is to be read.");
    return {};
}

} // namespace

std::optional<QString> accessKeyOfZone(const QString& zone)
{
    QString characters = zone.toUpper();
    static const QRegularExpression spaces(QStringLiteral("\\s"));
    characters.remove(spaces);
    const qsizetype length = characters.size() == 90 ? 30 : characters.size() / 2;
    QStringList lines;
    for (qsizetype at = 0; length > 0 && at < characters.size(); at += length)
        lines << characters.mid(at, length);
    const auto read = QKMRZParser().parse(lines);
    if (!read || !read->allCheckDigitsValid || !read->birthDate || !read->expiryDate)
        return std::nullopt;
    IDCardUtil util(nullptr);
    constexpr qsizetype kLeastNumber = 9;
    util.setPassportNumber(read->documentNumber.leftJustified(kLeastNumber, u'<'));
    // In Western digits, whatever the user's own are.
    util.setDateOfBirth(read->birthDate->toString(QStringLiteral("yyMMdd")));
    util.setExpiryDate(read->expiryDate->toString(QStringLiteral("yyMMdd")));
    return util.getMRZKey();
}

std::variant<ChipOptions, CliEnd> parseChipOptions(const QStringList& arguments)
{
    ChipOptions options;
    QString zone;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString word = arguments[i].section(u'=', 0, 0);
        std::optional<QString> value;
        if (arguments[i].contains(u'='))
            value = arguments[i].section(u'=', 1);
        const bool isFlag = word == u"--trace" || word == u"--pretty" || word == u"-h" || word == u"--help";
        const bool takesValue = word == u"--mrz" || word == u"--key" || word == u"--software" || word == u"--portrait"
            || word == u"--master-list" || word == u"--reader" || word == u"--wait";
        if (isFlag && value)
            return wrongChipUse(QStringLiteral("%1 takes no value.").arg(word));
        if (takesValue && !value && i + 1 < arguments.size())
            value = arguments[++i];
        if (takesValue && (!value || value->isEmpty()))
            return wrongChipUse(QStringLiteral("%1 needs a value.").arg(word));
        if ((word == u"--mrz" || word == u"--key") && value == QLatin1String("-")) {
            value = standardInput();
            if (!value || value->isEmpty())
                return wrongChipUse(QStringLiteral("There is nothing on standard input for %1.").arg(word));
        }
        if (word == u"-h" || word == u"--help")
            return CliEnd { QString::fromUtf8(kChipHelp), 0 };
        if (word == u"--trace")
            options.isTraced = true;
        else if (word == u"--pretty")
            options.isPretty = true;
        else if (word == u"--mrz")
            zone = value.value_or(QString());
        else if (word == u"--key")
            options.key = value.value_or(QString());
        else if (word == u"--software")
            options.softwareFile = *value;
        else if (word == u"--portrait")
            options.portraitFile = *value;
        else if (word == u"--master-list")
            options.masterListFile = *value;
        else if (word == u"--reader")
            options.readerName = *value;
        else if (word == u"--wait") {
            bool isNumber = false;
            options.patience = std::chrono::seconds(value->toInt(&isNumber));
            constexpr std::chrono::seconds kLongest { 86'400 };
            if (!isNumber || options.patience.count() < 1 || options.patience > kLongest)
                return wrongChipUse(QStringLiteral("--wait needs a number of seconds from 1 to 86400."));
        } else if (!word.startsWith(u"--")) { // not repeated: it may be a line of a zone that was not put in quotes
            return wrongChipUse(QStringLiteral("There are words that belong to no option."));
        } else {
            return wrongChipUse(QStringLiteral("There is no option %1.").arg(word));
        }
    }
    if (!zone.isEmpty() && !options.key.isEmpty())
        return wrongChipUse(QStringLiteral("--mrz and --key exclude each other."));
    if (!zone.isEmpty()) {
        const auto key = accessKeyOfZone(zone);
        if (!key)
            return wrongChipUse(
                QStringLiteral("The text after --mrz is no machine-readable zone (90, 72 or 88 characters), or a "
                               "check digit is wrong."));
        options.key = *key;
    }
    if (options.key.isEmpty() && options.softwareFile.isEmpty())
        return wrongChipUse(QStringLiteral("--mrz or --key is missing."));
    if (const QString problem = problemOfPortrait(options); !problem.isEmpty())
        return wrongChipUse(problem);
    if (options.isTraced && options.softwareFile.isEmpty())
        return wrongChipUse(QStringLiteral("--trace is for software chips: nothing records a real card."));
    return options;
}

} // namespace kelvara::cli
