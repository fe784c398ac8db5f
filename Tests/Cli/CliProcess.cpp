#include "Tests/Cli/CliProcess.h"

#include <QJsonDocument>
#include <QProcess>

CliProcess CliProcess::run(const QStringList& arguments)
{
    return run(arguments, {});
}

CliProcess CliProcess::run(const QStringList& arguments, const QByteArray& input, const QStringList& variables)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* display : { "DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM" })
        environment.remove(QLatin1String(display));
    for (const QString& variable : variables)
        environment.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KELVARA_CLI), arguments);
    process.write(input);
    process.closeWriteChannel();
    const bool ended = process.waitForFinished(240000) && process.exitStatus() == QProcess::NormalExit;
    return { ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
        QString::fromUtf8(process.readAllStandardError()) };
}

std::vector<QJsonObject> CliProcess::objects() const
{
    std::vector<QJsonObject> list;
    for (const QString& line : said.split(u'\n', Qt::SkipEmptyParts))
        list.push_back(QJsonDocument::fromJson(line.toUtf8()).object());
    return list;
}
