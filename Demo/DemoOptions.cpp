#include "Demo/DemoOptions.h"

#include <QHash>

#include <functional>

namespace kelvara::demo {

namespace {

constexpr int kSmallestSide = 320;
constexpr int kLargestSide = 4096;
constexpr double kLongestLimit = 3600;

std::optional<QSize> sizeOf(const QString& text)
{
    const QStringList parts = text.toLower().split(QLatin1Char('x'));
    if (parts.size() != 2)
        return std::nullopt;
    bool wide = false;
    bool high = false;
    const QSize size(parts[0].toInt(&wide), parts[1].toInt(&high));
    const auto inRange = [](int side) { return side >= kSmallestSide && side <= kLargestSide; };
    if (!wide || !high || !inRange(size.width()) || !inRange(size.height()))
        return std::nullopt;
    return size;
}

/// Reads an option's value into `options`; a sentence if it is no good.
using Reader = std::function<QString(DemoOptions& options, const QString& value)>;

Reader textInto(QString DemoOptions::*member)
{
    return [member](DemoOptions& options, const QString& value) {
        options.*member = value;
        return value.isEmpty() ? QStringLiteral("it must not be empty") : QString();
    };
}

QString readSeed(DemoOptions& options, const QString& value)
{
    bool ok = false;
    options.seed = value.toUInt(&ok);
    return ok ? QString() : QStringLiteral("it takes a whole number from 0 to 4294967295");
}

QString readSize(DemoOptions& options, const QString& value)
{
    options.size = sizeOf(value);
    return options.size
        ? QString()
        : QStringLiteral("it takes WIDTHxHEIGHT in points, each from %1 to %2").arg(kSmallestSide).arg(kLargestSide);
}

QString readLimit(DemoOptions& options, const QString& value)
{
    bool ok = false;
    const double seconds = value.toDouble(&ok);
    if (!ok || !(seconds > 0) || seconds > kLongestLimit)
        return QStringLiteral("it takes seconds, more than 0 and up to %1").arg(kLongestLimit);
    options.limit = std::chrono::milliseconds(static_cast<qint64>(seconds * 1000));
    return {};
}

QString readTextScale(DemoOptions& options, const QString& value)
{
    bool ok = false;
    options.textScale = value.toDouble(&ok);
    return ok && options.textScale >= 1 && options.textScale <= 3 ? QString()
                                                                  : QStringLiteral("it takes a number from 1 to 3");
}

const QHash<QString, Reader>& valueOptions()
{
    static const QHash<QString, Reader> options {
        { QStringLiteral("--seed"), readSeed },
        { QStringLiteral("--size"), readSize },
        { QStringLiteral("--text-scale"), readTextScale },
        { QStringLiteral("--limit"), readLimit },
        { QStringLiteral("--out"), textInto(&DemoOptions::out) },
        { QStringLiteral("--card-front"), textInto(&DemoOptions::cardFront) },
        { QStringLiteral("--card-back"), textInto(&DemoOptions::cardBack) },
        { QStringLiteral("--selfie"), textInto(&DemoOptions::selfie) },
    };
    return options;
}

const QHash<QString, bool DemoOptions::*>& switches()
{
    static const QHash<QString, bool DemoOptions::*> options {
        { QStringLiteral("--help"), &DemoOptions::help },
        { QStringLiteral("-h"), &DemoOptions::help },
        { QStringLiteral("--camera"), &DemoOptions::camera },
        { QStringLiteral("--scripted"), &DemoOptions::scripted },
        { QStringLiteral("--by-hand"), &DemoOptions::byHand },
        { QStringLiteral("--lose-card"), &DemoOptions::loseCard },
        { QStringLiteral("--no-call"), &DemoOptions::noCall },
    };
    return options;
}

QString contradiction(const DemoOptions& options)
{
    if (options.camera && !(options.cardFront.isEmpty() && options.cardBack.isEmpty() && options.selfie.isEmpty()))
        return QStringLiteral(
            "--camera takes its pictures from the device: leave out --card-front, --card-back and --selfie.");
    if (options.camera && options.loseCard)
        return QStringLiteral("--lose-card is for the demo's own chip: leave out --camera.");
    if (options.scripted && options.byHand)
        return QStringLiteral("--scripted and --by-hand exclude each other.");
    return {};
}

} // namespace

DemoOptions DemoOptions::parse(const QStringList& arguments)
{
    DemoOptions options;
    for (int i = 0; i < arguments.size() && options.problem.isEmpty(); ++i) {
        // Both "--name value" and "--name=value".
        const QString name = arguments[i].section(QLatin1Char('='), 0, 0);
        const bool joined = name.size() < arguments[i].size();
        if (const auto member = switches().value(name); member && !joined) {
            options.*member = true;
        } else if (const Reader reader = valueOptions().value(name); !reader) {
            options.problem = QStringLiteral("\"%1\" is not an option of the demo.").arg(arguments[i]);
        } else if (!joined && i + 1 == arguments.size()) {
            options.problem = QStringLiteral("%1 needs a value.").arg(name);
        } else {
            const QString value = joined ? arguments[i].mid(name.size() + 1) : arguments[++i];
            if (const QString complaint = reader(options, value); !complaint.isEmpty())
                options.problem = QStringLiteral("%1 cannot be \"%2\": %3.").arg(name, value, complaint);
        }
    }
    if (options.problem.isEmpty() && !options.help)
        options.problem = contradiction(options);
    return options;
}

QString DemoOptions::usage()
{
    return QString::fromUtf8(R"(Usage: ./run demo [options]

Photographs both sides of an identity card and a selfie, reads the card's chip and holds a video call through the
library's view, as a host application would, and leaves in the out folder: result.json, every picture the host was given,
and every screen.

Without options all pictures are specimens (no camera, no reader, no display and no real person's data needed), the chip
is played by software, a drawn representative calls from a conference server in the demo itself, and a scripted person
holds the card and presses the buttons.

  --card-front PATH   your own picture of a card's front: a photo, a folder of photos, or a video
  --card-back PATH    the same for its back; the chip gets what stands on the card
  --selfie PATH       the same for the face; what is not given stays a specimen
  --camera            the device's own cameras, and its contactless reader if there is one; you press the buttons
                      yourself
  --by-hand           press the buttons yourself, with replayed pictures too (needs a display)
  --scripted          let the scripted person press them with --camera too
  --lose-card         the card slips away once while its chip is read, and is held there again
  --no-call           leave out the video call
  --size WxH          size of the window in points (390x844; with --camera 844x390)
  --text-scale N      letters N times as large, 1 to 3
  --seed N            other specimens (1)
  --limit SECONDS     give up after so long (60; by hand no limit unless given)
  --out DIR           where the results go (out/demo)
  --help              this text

The pictures of your own that you show the demo are written to the out folder and, for as long as it runs, the selfie to
a temporary file from which the call's pretended camera shows it; nowhere else.

Exit code: 0 the flow was completed; 1 it was not; 2 an option or a file is no good; 3 there is no camera.
)");
}

} // namespace kelvara::demo
