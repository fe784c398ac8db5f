#include "Demo/Allocator.h"
#include "Demo/DemoRun.h"

#include <QApplication>

#include <cstdio>

namespace {

/// Without a display everything happens in memory, at two pixels a point.
bool choosePlatform()
{
    const bool hasDisplay = !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (!hasDisplay && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const bool offscreen = qgetenv("QT_QPA_PLATFORM").startsWith("offscreen");
    if (offscreen && qEnvironmentVariableIsEmpty("QT_SCALE_FACTOR"))
        qputenv("QT_SCALE_FACTOR", "2");
    return !offscreen;
}

QtMessageHandler usual = nullptr;

/// Leaves out what Qt says on every machine without a display or sound, where nothing is amiss.
void quieten(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    const bool isBrowsers = QLatin1String(context.category).startsWith(QLatin1String("qt.webengine"))
        || message.startsWith(QLatin1String("Sandboxing disabled"))
        || message.startsWith(QLatin1String("WebEngineContext used"))
        || message.startsWith(QLatin1String("No suitable graphics backend"));
    const bool idle = isBrowsers || message == QLatin1String("This plugin does not support propagateSizeHints()")
        || message.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set"))
        || message.startsWith(QLatin1String("PulseAudioService:"));
    if (!idle)
        usual(type, context, message);
}

} // namespace

int main(int argc, char** argv)
{
    using namespace kelvara::demo;
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const DemoOptions options = DemoOptions::parse(arguments);
    if (!options.problem.isEmpty()) {
        std::fprintf(stderr, "%s\n\n%s", qUtf8Printable(options.problem), qUtf8Printable(DemoOptions::usage()));
        return BadInput;
    }
    if (options.help) {
        std::fputs(qUtf8Printable(DemoOptions::usage()), stdout);
        return Completed;
    }

    keepLittleFreedMemory();
    const bool hasDisplay = choosePlatform();
    if (qEnvironmentVariableIsEmpty("OPENCV_FFMPEG_LOGLEVEL"))
        qputenv("OPENCV_FFMPEG_LOGLEVEL", "-8"); // a file that cannot be read gets one sentence, and that is ours
    usual = qInstallMessageHandler(quieten);
    int noArguments = 1; // the demo's options are not Qt's
    QApplication application(noArguments, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Kelvara demo"));
    return DemoRun(options, hasDisplay).exec();
}
