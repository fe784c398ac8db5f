#include "LiveView.h"

#include <Kelvara/QorvelKycView.h>
#include <Platform/Capture/ReplayCamera.h>
#include <Platform/Chip/NFCPassportModel.h>
#include <Platform/Chip/NFCReaderSession.h>
#include <Platform/Foundation/UserDefaults.h>
#include <Platform/Vision/VisionDetectors.h>
#include <Platform/Vision/VisionImage.h>
#include <Tools/Specimen/ScanAreas.h>

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QPalette>
#include <QSet>
#include <QTimer>

#include <atomic>

using namespace kelvara;

namespace {

struct Delegate final : QorvelKycViewDelegate
{
    void didDetectSdkDataBeforeJitsi(QorvelKycView&, const std::shared_ptr<SdkModel>&) override { }
    void didCaptureIdFrontPhoto(QorvelKycView&, const UIImage&, const QString&, const UIImage&, const QString&) override
    { }
    void didCaptureIdBackPhoto(QorvelKycView&, const UIImage&, const QString&, const UIImage&, const QString&) override
    { }
    void didCaptureSelfiePhoto(QorvelKycView&, const UIImage&, const QString&, const UIImage&, const QString&) override
    { }
    void didReadNfc(QorvelKycView&, const NFCPassportModel&) override { }
    void didClose(QorvelKycView&, const std::shared_ptr<SdkModel>&) override { }
};

/// The library's own search for cards, watched: a host's class between two of the library's.
struct WatchedRectangles final : RectangleDetector
{
    std::vector<VNRectangleObservation> detect(const VisionImage& image, const RectangleLimits& limits) const override
    {
        auto found = VisionDetectors::native()->rectangles->detect(image, limits);
        ++frames;
        cards += found.empty() ? 0 : 1;
        return found;
    }

    mutable std::atomic<int> frames { 0 };
    mutable std::atomic<int> cards { 0 };
};

/// What a camera of 1080 × 1920 takes: a card or a face that is held in the view's cut-out.
std::shared_ptr<ReplayCamera> cameraBefore(specimen::Subject subject, AVCaptureDevicePosition position)
{
    const auto areas = specimen::ScanAreas::of({ 390, 844 }, { 1080, 1920 });
    const QImage picture = specimen::photograph(specimen::SpecimenData::fromSeed(7), areas.held(subject, 7)).image;
    ReplayCameraOptions options;
    options.position = position;
    return std::make_shared<ReplayCamera>(ReplaySource::still(picture), options);
}

int coloursOf(const QImage& picture)
{
    QSet<QRgb> colours;
    for (int y = 0; y < picture.height(); y += 2) {
        for (int x = 0; x < picture.width(); x += 2)
            colours.insert(picture.pixel(x, y));
    }
    return int(colours.size());
}

} // namespace

QString tryLiveView()
{
    const auto detectors = std::make_shared<VisionDetectors>(*VisionDetectors::native());
    const auto rectangles = std::make_shared<WatchedRectangles>();
    detectors->rectangles = rectangles;

    PlatformServices services = PlatformServices::native();
    const auto back = cameraBefore(specimen::Subject::Front, AVCaptureDevicePosition::Back);
    services.cameras = std::make_shared<ReplayCameraProvider>(
        back, cameraBefore(specimen::Subject::Selfie, AVCaptureDevicePosition::Front));
    services.imageAnalysis = detectors;
    services.userDefaults = UserDefaults::inMemory();
    services.nfc = nullptr;

    Delegate delegate;
    QWidget window;
    window.setPalette(QPalette(QColor(0x10, 0x20, 0x2a)));
    window.resize(390, 844);
    QorvelKycView view(services, &window);
    view.setGeometry(window.rect());
    view.setDelegate(&delegate);
    view.setViewTypes({ ViewType::idPhoto });
    window.show();

    QEventLoop loop;
    const QDeadlineTimer deadline(std::chrono::seconds(60));
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if ((rectangles->frames >= 3 && rectangles->cards >= 1) || deadline.hasExpired())
            loop.quit();
    });
    poll.start(20);
    loop.exec();

    if (!view.isScanning())
        return QStringLiteral("The view does not scan.");
    if (rectangles->frames < 3 || rectangles->cards < 1)
        return QStringLiteral("%1 frames came, %2 were analysed, a card was found in %3.")
            .arg(back->deliveredFrames())
            .arg(rectangles->frames)
            .arg(rectangles->cards);
    if (!view.getMyImage(QStringLiteral("cancel")))
        return QStringLiteral("The library has lost its pictures.");
    // A dark window alone has a handful of colours, a photograph thousands.
    if (const int colours = coloursOf(window.grab().toImage()); colours < 1000)
        return QStringLiteral("The window shows no camera picture, only %1 colours.").arg(colours);
    return {};
}
