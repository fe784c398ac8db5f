// The command line's `kelvara`: pictures, chips or scripts in, JSON out.

#include "Kelvara/OcrbModel.h"
#include "Tools/Cli/Annotation.h"
#include "Tools/Cli/CardLook.h"
#include "Tools/Cli/ChipCommand.h"
#include "Tools/Cli/CliOptions.h"
#include "Tools/Cli/FaceLook.h"
#include "Tools/Cli/FlowCommand.h"
#include "Tools/Cli/MrzLook.h"
#include "Tools/Cli/Output.h"
#include "Tools/Cli/PictureFile.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImageWriter>

#include <algorithm>
#include <cstdio>
#include <exception>

using namespace kelvara;
using namespace kelvara::cli;

namespace {

enum ExitCode { AllFound = 0, NotFound = 1, Failed = 2 };

std::unique_ptr<Look> makeLook(const CliOptions& options)
{
    switch (options.command) {
    case CliOptions::Command::Mrz:
        return std::make_unique<MrzLook>(options.modelFolder.isEmpty() ? ocrbModelFolder() : options.modelFolder);
    case CliOptions::Command::Card:
        return std::make_unique<CardLook>();
    case CliOptions::Command::Face:
        return std::make_unique<FaceLook>();
    }
    return nullptr;
}

Finding lookAt(Look& look, const QImage& picture)
{
    try {
        return look.at(picture);
    } catch (const std::exception& error) { // such as memory that ran out
        Finding finding;
        finding.reason
            = QStringLiteral("The picture cannot be searched: %1.").arg(QString::fromLocal8Bit(error.what()));
        finding.isBroken = true;
        return finding;
    }
}

ExitCode treat(const QString& file, const CliOptions& options, Look& look)
{
    QElapsedTimer timer;
    timer.start();
    const auto picture = readPicture(file);
    const double load = double(timer.nsecsElapsed()) / 1e6;
    ExitCode code = AllFound;
    QJsonObject object;
    QJsonObject milliseconds;
    if (const auto* unreadable = std::get_if<Unreadable>(&picture)) {
        object.insert(QStringLiteral("found"), false);
        object.insert(QStringLiteral("reason"), unreadable->sentence);
        complain(QStringLiteral("%1: %2").arg(file, unreadable->sentence));
        milliseconds.insert(QStringLiteral("total"), rounded(load));
        code = Failed;
    } else {
        const QImage& upright = std::get<QImage>(picture);
        const Finding finding = lookAt(look, upright);
        object = finding.facts;
        milliseconds = finding.milliseconds;
        milliseconds.insert(QStringLiteral("total"), rounded(double(timer.nsecsElapsed()) / 1e6));
        object.insert(QStringLiteral("width"), upright.width());
        object.insert(QStringLiteral("height"), upright.height());
        object.insert(QStringLiteral("found"), finding.found);
        if (!finding.found) {
            object.insert(QStringLiteral("reason"), finding.reason);
            code = finding.isBroken ? Failed : NotFound;
        }
        if (finding.isBroken)
            complain(QStringLiteral("%1: %2").arg(file, finding.reason));
        if (QImageWriter writer(options.annotated);
            !options.annotated.isEmpty() && !writer.write(annotated(upright, finding.outlines))) {
            complain(QStringLiteral("%1 cannot be written: %2.").arg(options.annotated, writer.errorString()));
            code = Failed;
        }
    }
    milliseconds.insert(QStringLiteral("load"), rounded(load));
    object.insert(QStringLiteral("milliseconds"), milliseconds);
    object.insert(QStringLiteral("file"), file);
    return print(object, options.isPretty) ? code : Failed;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1 && QByteArray(argv[1]) == "flow") { // the only one with widgets, and they are seen by nobody
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        const QApplication application(argc, argv);
        return runFlowCommand(QCoreApplication::arguments().mid(2));
    }
    const QCoreApplication application(argc, argv);
    if (argc > 1 && QByteArray(argv[1]) == "chip")
        return runChipCommand(QCoreApplication::arguments().mid(2));
    const auto parsed = parseOptions(QCoreApplication::arguments().mid(1));
    if (const auto* end = std::get_if<CliEnd>(&parsed)) {
        std::fputs(qUtf8Printable(end->text), end->exitCode == 0 ? stdout : stderr);
        return end->exitCode;
    }
    const auto& options = std::get<CliOptions>(parsed);
    const std::unique_ptr<Look> look = makeLook(options);
    if (const auto problem = look->problem()) {
        complain(*problem);
        return Failed;
    }
    ExitCode worst = AllFound;
    for (const QString& file : options.files)
        worst = std::max(worst, treat(file, options, *look));
    return worst;
}
