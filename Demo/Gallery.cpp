#include "Demo/Gallery.h"

#include "Demo/DemoHost.h"
#include "Platform/Capture/ReplayCamera.h"

#include <QEventLoop>
#include <QTimer>

namespace kelvara::demo {

namespace {

constexpr int kSettleMilliseconds = 250;

struct Situation
{
    const char* name;
    bool backCamera;
    bool frontCamera;
    bool forceNfc;
    QList<ViewType> steps;
    bool callsNobody = false; ///< A call is opened without a server.
};

std::shared_ptr<AVCaptureDevice> camera(bool present, AVCaptureDevicePosition position)
{
    if (!present)
        return nullptr;
    QImage dark(QSize(270, 480), QImage::Format_ARGB32_Premultiplied);
    dark.fill(Qt::darkGray);
    ReplayCameraOptions options;
    options.position = position;
    return std::make_shared<ReplayCamera>(ReplaySource::still(dark), options);
}

void settle()
{
    QEventLoop loop;
    QTimer::singleShot(kSettleMilliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

QImage take(const Situation& situation, const QSize& size, double textScale)
{
    PlatformServices services;
    services.cameras
        = std::make_shared<ReplayCameraProvider>(camera(situation.backCamera, AVCaptureDevicePosition::Back),
            camera(situation.frontCamera, AVCaptureDevicePosition::Front));
    DemoHost host(size, services);
    host.setAttribute(Qt::WA_DontShowOnScreen);
    host.view().setTextScale(textScale);
    host.view().setForceNfc(situation.forceNfc);
    host.view().setViewTypes(situation.steps);
    host.show();
    settle();
    if (situation.callsNobody) {
        host.view().setJitsiConference({}, QStringLiteral("room"), {});
        settle();
    }
    return host.screen();
}

} // namespace

void takeGallery(
    const QSize& size, double textScale, const std::function<void(const QString& name, const QImage& screen)>& taken)
{
    const Situation situations[] {
        { "no-back-camera", false, true, false, { ViewType::idPhoto, ViewType::selfie } },
        { "no-front-camera", true, false, false, { ViewType::selfie } },
        { "nfc-required", true, true, true, { ViewType::idPhoto } },
        { "no-steps", true, true, false, {} },
        { "nfc-step-without-nfc", true, true, false, { ViewType::nfcRead } },
        { "waiting-for-the-call", true, true, false, { ViewType::jitsi } },
        { "call-without-a-server", true, true, false, { ViewType::jitsi }, true },
    };
    for (const Situation& situation : situations)
        taken(QLatin1String(situation.name), take(situation, size, textScale));
}

} // namespace kelvara::demo
