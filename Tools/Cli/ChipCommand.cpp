#include "Tools/Cli/ChipCommand.h"

#include "Platform/Chip/PassportReader.h"
#include "Platform/Chip/software/ChipProfileFile.h"
#include "Platform/Chip/software/SoftwareTerminal.h"
#include "Platform/Chip/transport/PcscTerminal.h"
#include "Tools/Cli/ChipJson.h"
#include "Tools/Cli/ChipOptions.h"
#include "Tools/Cli/Look.h"
#include "Tools/Cli/Output.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>

#include <cstdio>
#include <future>

namespace kelvara::cli {

namespace {

enum ExitCode { Read = 0, NotRead = 1, Failed = 2 };

using chip::software::SoftwareChip;
using chip::software::SoftwareTerminal;

struct Outcome
{
    std::shared_ptr<NFCPassportModel> passport;
    std::optional<NFCPassportReaderError> error;
};

void printTrace(const chip::software::TraceEntry& entry)
{
    std::fprintf(stderr, "%u %s%s\n  > %s\n  < %s\n", entry.number, entry.name.c_str(),
        entry.isProtected ? " (protected)" : "", chip::toHex(entry.command.encoded()).c_str(),
        chip::toHex(entry.response.encoded()).c_str());
}

std::variant<std::shared_ptr<SoftwareChip>, QString> makeChip(const QString& path)
{
    constexpr qint64 kMostBytes = qint64 { 16 } << 20;
    QFile file(path);
    const QFileInfo info(path);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly))
        return QStringLiteral("%1 cannot be read.").arg(path);
    if (file.size() > kMostBytes)
        return QStringLiteral("%1 is too large to describe a chip.").arg(path);
    const auto profile = chip::software::chipProfileFromJson(file.readAll(), info.dir());
    if (const auto* problem = std::get_if<QString>(&profile))
        return QStringLiteral("%1: %2").arg(path, *problem);
    return SoftwareChip::make(std::get<chip::software::ChipProfile>(profile));
}

std::optional<QString> askForCard(const NFCViewDisplayMessage& message)
{
    if (message.kind == NFCViewDisplayMessage::Kind::requestPresentCard)
        std::fputs(
            message.isCardLost ? "The card was lost. Hold it to the reader again.\n" : "Hold the card to the reader.\n",
            stderr);
    return std::nullopt;
}

Outcome read(const ChipOptions& options, const std::shared_ptr<chip::CardTerminal>& terminal, bool asks)
{
    const QUrl masterList = options.masterListFile.isEmpty()
        ? QUrl()
        : QUrl::fromLocalFile(QFileInfo(options.masterListFile).absoluteFilePath());
    std::promise<Outcome> promise;
    auto outcome = promise.get_future();
    PassportReader reader(ReaderLogLevel::Warning, masterList);
    reader.setTerminal(terminal);
    reader.setPatience(options.patience, options.patience);
    reader.readPassport(options.key, {}, true, asks ? askForCard : PassportReader::DisplayMessage {},
        [&promise](std::shared_ptr<NFCPassportModel> passport, std::optional<NFCPassportReaderError> error) {
            promise.set_value({ std::move(passport), std::move(error) });
        });
    return outcome.get();
}

/// What is there already stays until the new picture is whole; empty when it was written.
QString writePortrait(const QImage& face, const QString& path)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    QImageWriter writer(&file, QFileInfo(path).suffix().toLatin1());
    if (!writer.write(face))
        return writer.errorString();
    return file.commit() ? QString() : file.errorString();
}

ExitCode codeOf(const NFCPassportReaderError& error)
{
    using Kind = NFCPassportReaderError::Kind;
    const bool isUsage
        = error.kind == Kind::NoReader || error.kind == Kind::InvalidKey || error.kind == Kind::MasterListUnusable;
    return isUsage ? Failed : NotRead;
}

} // namespace

int runChipCommand(const QStringList& arguments)
{
    const auto parsed = parseChipOptions(arguments);
    if (const auto* end = std::get_if<CliEnd>(&parsed)) {
        std::fputs(qUtf8Printable(end->text), end->exitCode == 0 ? stdout : stderr);
        return end->exitCode;
    }
    ChipOptions options = std::get<ChipOptions>(parsed);
    std::shared_ptr<chip::CardTerminal> terminal;
    if (options.softwareFile.isEmpty()) {
        const auto reader = std::make_shared<chip::PcscTerminal>(options.readerName.toStdString());
        if (!reader->isServiceRunning()) {
            complain(QStringLiteral("The reader service (pcscd) does not run."));
            return Failed;
        }
        if (!reader->isAvailable())
            complain(QStringLiteral("There is no contactless reader yet."));
        terminal = reader;
    } else {
        const auto made = makeChip(options.softwareFile);
        if (const auto* problem = std::get_if<QString>(&made)) {
            complain(*problem);
            return Failed;
        }
        const auto& chip = std::get<std::shared_ptr<SoftwareChip>>(made);
        if (options.isTraced)
            chip->setTrace(printTrace);
        if (options.key.isEmpty())
            options.key = chip->mrzKey();
        const auto reader = std::make_shared<SoftwareTerminal>(chip);
        reader->setReturnAfterLoss(std::chrono::milliseconds(10)); // a patient hand
        terminal = reader;
    }

    QElapsedTimer timer;
    timer.start();
    const Outcome outcome = read(options, terminal, options.softwareFile.isEmpty());
    const double milliseconds = double(timer.nsecsElapsed()) / 1e6;
    ExitCode code = Read;
    QJsonObject object;
    if (outcome.passport) {
        object = jsonOf(*outcome.passport);
        const QImage& face = outcome.passport->faceImage;
        QJsonObject portrait { { QStringLiteral("width"), face.width() }, { QStringLiteral("height"), face.height() } };
        const QString problem = options.portraitFile.isEmpty() ? QString() : writePortrait(face, options.portraitFile);
        if (!problem.isEmpty()) {
            complain(QStringLiteral("%1 cannot be written: %2.").arg(options.portraitFile, problem));
            code = Failed;
        } else if (!options.portraitFile.isEmpty()) {
            portrait.insert(QStringLiteral("file"), options.portraitFile);
        }
        object.insert(QStringLiteral("portrait"), portrait);
    } else {
        object = { { QStringLiteral("error"), jsonOf(*outcome.error) },
            { QStringLiteral("verification"), jsonOf(outcome.error->verification) } };
        code = codeOf(*outcome.error);
    }
    object.insert(QStringLiteral("read"), outcome.passport != nullptr);
    object.insert(QStringLiteral("milliseconds"), rounded(milliseconds));
    if (!print(object, options.isPretty)) {
        complain(QStringLiteral("The result cannot be written."));
        return Failed;
    }
    return code;
}

} // namespace kelvara::cli
