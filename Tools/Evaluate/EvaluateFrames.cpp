// Shows each step's subject to the view at thirty frames a second, a 1080 x 1920 camera in a view of 390 x 844 points
// at two pixels each (or QT_SCALE_FACTOR), and counts how many frames a second are analysed and how many are painted.
// Before that it measures how long a view takes from its making to its first analysed frame, and at the end what memory
// is resident. Held to one core it tells what a small machine does:
//
//   taskset -c 1 kelvara-evaluate-frames [seconds for each step = 10]

#include "Kelvara/QorvelKycView.h"
#include "Platform/Vision/VisionDetectors.h"
#include "Tools/Evaluate/HeldSubject.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>

#include <atomic>
#include <cstdio>
#include <cstdlib>

using namespace kelvara;
using namespace kelvara::evaluate;

namespace {

/// The library's own search for faces, which every analysed frame of the three steps ends with.
class CountingFaces final : public FaceDetector
{
public:
    explicit CountingFaces(std::shared_ptr<const FaceDetector> faces) : m_faces(std::move(faces)) { }

    [[nodiscard]] std::vector<VNFaceObservation> detect(const VisionImage& image) const override
    {
        auto found = m_faces->detect(image);
        ++m_searches;
        return found;
    }
    [[nodiscard]] int searches() const { return m_searches; }

private:
    std::shared_ptr<const FaceDetector> m_faces;
    mutable std::atomic<int> m_searches { 0 };
};

class PaintCounter final : public QObject
{
public:
    int paints = 0;

    bool eventFilter(QObject*, QEvent* event) override
    {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

long residentKilobytes(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(field))
            return line.mid(static_cast<int>(qstrlen(field))).trimmed().split(' ').constFirst().toLong();
    return 0;
}

void run(const char* name, ViewType step, specimen::Subject subject, int seconds)
{
    const std::vector<QImage> film = heldFilm(specimen::SpecimenData::fromSeed(5'000'001), subject);
    PlatformServices services = phoneSeeing(
        ReplaySource::generator([&](std::int64_t index, std::chrono::microseconds) { return frameOf(film, index); }),
        film.front());
    const auto counter = std::make_shared<CountingFaces>(services.imageAnalysis->faces);
    auto detectors = std::make_shared<VisionDetectors>(*services.imageAnalysis);
    detectors->faces = counter;
    services.imageAnalysis = detectors;

    QElapsedTimer clock;
    clock.start();
    QorvelKycView view(QRectF(QPointF(), kView), services);
    PaintCounter painted;
    view.installEventFilter(&painted);
    view.setViewTypes({ step });
    view.show();
    const QDeadlineTimer patience(10'000);
    while (counter->searches() == 0 && !patience.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const qint64 start = clock.elapsed();

    const int analysedBefore = counter->searches();
    const int paintedBefore = painted.paints;
    clock.restart();
    QEventLoop loop;
    QTimer::singleShot(std::chrono::seconds(seconds), Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
    const double passed = static_cast<double>(clock.elapsed()) / 1000;
    std::printf("%-7s first frame analysed after %4lld ms; %4.1f frames a second analysed, %4.1f painted\n", name,
        static_cast<long long>(start), (counter->searches() - analysedBefore) / passed,
        (painted.paints - paintedBefore) / passed);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!qEnvironmentVariableIsSet("QT_SCALE_FACTOR"))
        qputenv("QT_SCALE_FACTOR", "2");
    const QApplication app(argc, argv);
    const int seconds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
    run("front", ViewType::idPhoto, specimen::Subject::Front, seconds);
    run("back", ViewType::idPhoto, specimen::Subject::Back, seconds);
    run("selfie", ViewType::selfie, specimen::Subject::Selfie, seconds);
    std::printf("resident memory: %ld MB, at most %ld MB (the films' pictures among it)\n",
        residentKilobytes("VmRSS:") / 1000, residentKilobytes("VmHWM:") / 1000);
    return 0;
}
