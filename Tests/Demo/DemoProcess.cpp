#include "Tests/Demo/DemoProcess.h"

#include <QFile>
#include <QJsonDocument>
#include <QProcess>

DemoProcess DemoProcess::run(const QStringList& arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* display : { "DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM" })
        environment.remove(QLatin1String(display));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KELVARA_DEMO), arguments);
    const bool ended = process.waitForFinished(280000) && process.exitStatus() == QProcess::NormalExit;
    return { ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
        QString::fromUtf8(process.readAllStandardError()) };
}

QJsonObject resultIn(const QDir& folder)
{
    QFile file(folder.filePath(QStringLiteral("result.json")));
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}
