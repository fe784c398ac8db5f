#include "Tools/Cli/CliOptions.h"

#include <QFileInfo>

namespace kelvara::cli {

namespace {

constexpr auto kHelp = R"(Usage: kelvara COMMAND [options] FILE...

Looks at pictures as Kelvara's view does and prints one JSON object for each; reads chips.

Commands:
  mrz    reads the machine-readable zone of a card, passport page or visa, wherever it is in the picture, if its
         lines are level to ten degrees and not upside down
  card   finds a card's corners
  face   finds faces
  chip   reads an identity document's chip on a contactless reader, or one that software plays; it has options of its
         own: kelvara chip --help
  flow   plays a whole session from a script: kelvara flow --help

Options:
  --pretty            indent the JSON instead of one line for each picture
  --annotate OUT.png  also write the picture with what was found drawn over it (one FILE only)
  --ocr-model FOLDER  read with FOLDER/ocrb.traineddata instead of the built-in model (mrz only)
  --                  what follows are files
  -h, --help          this text
  --version           the version

Pictures are turned as their Exif entry says; coordinates are pixels of the upright picture, origin top-left.
Times are in milliseconds by stage; loading the OCR model, once for all files, is not among them.
"text" is what the OCR read, "lines" the zone as it was taken. Trust a zone only where "allCheckDigitsValid" is true.

Exit code: 0 all found, 1 something not found, 2 wrong usage, a file that cannot be read or written, or no OCR model.
)";

CliEnd wrong(const QString& sentence)
{
    return { QStringLiteral("kelvara: %1 See kelvara --help.\n").arg(sentence), 2 };
}

bool readCommand(const QString& word, CliOptions& options)
{
    if (word == u"mrz")
        options.command = CliOptions::Command::Mrz;
    else if (word == u"card")
        options.command = CliOptions::Command::Card;
    else if (word == u"face")
        options.command = CliOptions::Command::Face;
    else
        return false;
    return true;
}

} // namespace

std::variant<CliOptions, CliEnd> parseOptions(const QStringList& arguments)
{
    CliOptions options;
    bool hasCommand = false;
    bool onlyFiles = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        QString word = arguments[i];
        if (!onlyFiles && word.startsWith(u'-') && word.size() > 1) {
            QString value;
            bool hasValue = false;
            const qsizetype equals = word.indexOf(u'=');
            if (word.startsWith(u"--") && equals > 0) {
                value = word.mid(equals + 1);
                word.truncate(equals);
                hasValue = true;
            }
            const bool takesValue = word == u"--annotate" || word == u"--ocr-model";
            if (takesValue && !hasValue) {
                if (i + 1 >= arguments.size())
                    return wrong(QStringLiteral("%1 needs a value.").arg(word));
                value = arguments[++i];
            }
            if (takesValue && value.isEmpty())
                return wrong(QStringLiteral("%1 needs a value.").arg(word));
            if (hasValue && !takesValue)
                return wrong(QStringLiteral("%1 takes no value.").arg(word));
            if (word == u"-h" || word == u"--help")
                return CliEnd { QString::fromUtf8(kHelp), 0 };
            if (word == u"--version")
                return CliEnd { QStringLiteral("kelvara " KELVARA_VERSION "\n"), 0 };
            if (word == u"--")
                onlyFiles = true;
            else if (word == u"--pretty")
                options.isPretty = true;
            else if (word == u"--annotate")
                options.annotated = value;
            else if (word == u"--ocr-model")
                options.modelFolder = value;
            else
                return wrong(QStringLiteral("There is no option %1.").arg(word));
        } else if (!hasCommand) {
            if (!readCommand(word, options))
                return wrong(QStringLiteral("There is no command \"%1\".").arg(word));
            hasCommand = true;
        } else {
            options.files << word;
        }
    }
    if (!hasCommand)
        return wrong(QStringLiteral("A command is missing."));
    if (options.files.isEmpty())
        return wrong(QStringLiteral("A file is missing."));
    if (!options.annotated.isEmpty() && options.files.size() > 1)
        return wrong(QStringLiteral("--annotate takes one file only."));
    if (!options.annotated.isEmpty() && QFileInfo(options.annotated) == QFileInfo(options.files.front()))
        return wrong(QStringLiteral("--annotate would write over the picture itself."));
    return options;
}

} // namespace kelvara::cli
