#include "Tools/Cli/FlowCommand.h"

#include "Tools/Cli/Output.h"
#include "Tools/Replay/FlowScriptFile.h"
#include "Tools/Replay/ReplaySession.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace kelvara::cli {

namespace {

constexpr auto kFlowHelp = R"(Usage: kelvara flow [options] SCRIPT.json...

Plays whole sessions of the view from scripts, without a display, cameras, reader or network, and prints what
happened, one JSON object for each script. Docs/replay.md describes the scripts.

Options:
  --times      say when each thing happened; without, the output of a script is the same on every run
  --pretty     indent the JSON
  -h, --help   this text

Exit code: 0 every step came to pass, 1 one did not, or something happened that must never, 2 wrong usage or a script
that is none. What the view itself says goes to the error stream.
)";

enum ExitCode { Met = 0, Unmet = 1, Failed = 2 };

/// While it lives, what is printed goes to the error stream.
class QuietOutput
{
public:
    QuietOutput()
    {
        std::fflush(stdout);
        m_output = dup(STDOUT_FILENO);
        dup2(STDERR_FILENO, STDOUT_FILENO);
    }
    ~QuietOutput()
    {
        std::fflush(stdout);
        dup2(m_output, STDOUT_FILENO);
        close(m_output);
    }
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;

private:
    int m_output = -1;
};

ExitCode play(const QString& file, bool withTimes, bool isPretty)
{
    auto script = replay::flowScriptFromFile(file);
    if (const auto* problem = std::get_if<QString>(&script)) {
        complain(*problem);
        return Failed;
    }
    QJsonObject report;
    bool isGood = false;
    {
        const QuietOutput quiet;
        auto opened = replay::ReplaySession::open(std::get<replay::FlowScript>(std::move(script)));
        if (const auto* problem = std::get_if<QString>(&opened)) {
            complain(QStringLiteral("%1: %2").arg(file, *problem));
            return Failed;
        }
        auto& session = *std::get<std::unique_ptr<replay::ReplaySession>>(opened);
        session.run();
        report = session.report(withTimes);
        isGood = session.isMet() && session.problems().isEmpty();
    }
    report.insert(QStringLiteral("script"), file);
    if (!print(report, isPretty))
        return Failed;
    return isGood ? Met : Unmet;
}

} // namespace

int runFlowCommand(const QStringList& arguments)
{
    QStringList files;
    bool withTimes = false;
    bool isPretty = false;
    for (const QString& word : arguments) {
        if (word == u"-h" || word == u"--help") {
            std::fputs(kFlowHelp, stdout);
            return Met;
        }
        if (word == u"--times") {
            withTimes = true;
        } else if (word == u"--pretty") {
            isPretty = true;
        } else if (word.startsWith(u'-') && word.size() > 1) {
            complain(QStringLiteral("There is no option %1. See kelvara flow --help.").arg(word));
            return Failed;
        } else {
            files.append(word);
        }
    }
    if (files.isEmpty()) {
        complain(QStringLiteral("A script is missing. See kelvara flow --help."));
        return Failed;
    }
    ExitCode worst = Met;
    for (const QString& file : files)
        worst = std::max(worst, play(file, withTimes, isPretty));
    return worst;
}

} // namespace kelvara::cli
