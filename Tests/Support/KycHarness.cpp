#include "Tests/Support/KycHarness.h"

#include "Platform/Vision/VisionImage.h"

#include <QThread>

namespace kelvara::test {

namespace {

struct ToldRectangles final : RectangleDetector
{
    explicit ToldRectangles(std::shared_ptr<ToldDetectors::Told> t) : told(std::move(t)) { }
    std::vector<VNRectangleObservation> detect(const VisionImage& image, const RectangleLimits& limits) const override
    {
        ++told->performed;
        ++told->cardSearches;
        told->limits.store(limits);
        told->lastWidth = image.size().width();
        told->lastHeight = image.size().height();
        if (told->delayMs)
            QThread::msleep(static_cast<unsigned long>(told->delayMs.load()));
        if (!told->card)
            return {};
        VNRectangleObservation card;
        card.topLeft = { 0.1, 0.9 };
        card.topRight = { 0.9, 0.9 };
        card.bottomLeft = { 0.1, 0.1 };
        card.bottomRight = { 0.9, 0.1 };
        card.boundingBox = { 0.1, 0.1, 0.8, 0.8 };
        return { card };
    }
    std::shared_ptr<ToldDetectors::Told> told;
};

struct ToldFaces final : FaceDetector
{
    explicit ToldFaces(std::shared_ptr<ToldDetectors::Told> t) : told(std::move(t)) { }
    std::vector<VNFaceObservation> detect(const VisionImage& image) const override
    {
        ++told->performed;
        ++told->faceSearches;
        told->lastWidth = image.size().width();
        told->lastHeight = image.size().height();
        if (!told->face)
            return {};
        VNFaceObservation first;
        first.boundingBox = { 0.25, 0.5, 0.5, 0.25 };
        VNFaceObservation second;
        second.boundingBox = { 0, 0, 1, 1 };
        return { first, second };
    }
    std::shared_ptr<ToldDetectors::Told> told;
};

} // namespace

std::shared_ptr<const VisionDetectors> ToldDetectors::make(std::shared_ptr<const TextRectangleDetector> text) const
{
    auto detectors = std::make_shared<VisionDetectors>();
    detectors->rectangles = std::make_shared<ToldRectangles>(told);
    detectors->faces = std::make_shared<ToldFaces>(told);
    detectors->text = std::move(text);
    return detectors;
}

std::shared_ptr<ReplayCamera> Device::camera(AVCaptureDevicePosition position, ReplayCameraOptions options)
{
    options.position = position;
    if (options.size.isEmpty())
        options.size = { 270, 480 };
    if (options.framesPerSecond == 30.0)
        options.framesPerSecond = 60;
    const auto picture = [size = options.size](std::int64_t index, std::chrono::microseconds) {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(QColor::fromHsv(static_cast<int>(index * 7 % 360), 90, 200));
        return image;
    };
    return std::make_shared<ReplayCamera>(ReplaySource::generator(picture), options);
}

Device Device::phone()
{
    Device device;
    device.back = camera(AVCaptureDevicePosition::Back);
    device.front = camera(AVCaptureDevicePosition::Front);
    return device;
}

PlatformServices Device::services() const
{
    return { .cameras = std::make_shared<ReplayCameraProvider>(back, front),
        .imageAnalysis = eyes.make(text),
        .nfc = terminal ? NFCReaderSession::of(terminal)
            : hasNfc    ? std::make_shared<NfcPhone>()
                        : nullptr,
        .userDefaults = UserDefaults::inMemory(),
        .masterListURL = {},
        .conference = conference };
}

Stage::Stage(Device made, QSize size)
    : device(std::move(made)), view(new QorvelKycView(QRectF(QPointF(), size), device.services()))
{
    view->setDelegate(&delegate);
    view->show();
}

void Stage::setSteps(const QList<ViewType>& steps)
{
    view->setViewTypes(steps);
    settle();
}

bool Stage::shoot()
{
    QAbstractButton* shutter = d().takePhotoButton;
    if (!spinUntil([&] { return view && shutter->isVisibleTo(view) && shutter->isEnabled(); }))
        return false;
    QTest::mouseClick(shutter, Qt::LeftButton);
    return true;
}

void Stage::show(bool card, bool face)
{
    device.eyes.told->card = card;
    device.eyes.told->face = face;
}

QString Stage::shownText() const
{
    QString text;
    for (const StatementLabel* label : view->findChildren<StatementLabel*>()) {
        if (label->isVisibleTo(view))
            text += label->text();
    }
    return text;
}

} // namespace kelvara::test
