#include "Controls.h"
#include "Documents.h"
#include "LiveView.h"

#include <QApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Kelvara consumer"));

    const struct
    {
        const char* name;
        QString (*run)();
    } trials[] = {
        { "the controls for hosts", tryControls },
        { "the view before a replay camera", tryLiveView },
        { "the zone of a photographed card", tryZone },
        { "the face of a portrait", tryFace },
        { "a chip played by software", tryChip },
    };
    int failures = 0;
    for (const auto& trial : trials) {
        const QString problem = trial.run();
        std::printf("%s: %s\n", trial.name, problem.isEmpty() ? "works" : qUtf8Printable(problem));
        failures += problem.isEmpty() ? 0 : 1;
    }
    std::printf(failures == 0 ? "The installed library works.\n" : "The installed library does not work.\n");
    return failures == 0 ? 0 : 1;
}
