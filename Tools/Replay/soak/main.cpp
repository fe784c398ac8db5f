// Plays random sessions of the view, one after the other, and looks for whatever breaks.
//
//   kelvara-soak [seconds = 60] [seed = 1] [folder = out/soak]

#include "Tools/Replay/soak/SoakRun.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments().mid(1);
    bool isNumber = true;
    bool isSeed = true;
    const int seconds = words.value(0, QStringLiteral("60")).toInt(&isNumber);
    const std::uint32_t seed = words.value(1, QStringLiteral("1")).toUInt(&isSeed);
    const QDir folder(words.value(2, QStringLiteral("out/soak")));
    if (!isNumber || !isSeed || seconds < 1 || words.size() > 3) {
        std::fputs("Usage: kelvara-soak [seconds] [seed] [folder]\n", stderr);
        return 2;
    }
    if (!folder.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "%s cannot be made.\n", qUtf8Printable(folder.path()));
        return 2;
    }
    // The view's own words, thousands of them, go nowhere; ours to the output as it was.
    std::FILE* const output = fdopen(dup(STDOUT_FILENO), "w");
    const int nowhere = open("/dev/null", O_WRONLY);
    if (!output || nowhere < 0)
        return 2;
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);

    kelvara::soak::SoakRun run(folder, output);
    run.run(std::chrono::seconds(seconds), seed);
    const bool isGood = run.conclude();
    std::fclose(output);
    return isGood ? 0 : 1;
}
