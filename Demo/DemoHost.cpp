#include "Demo/DemoHost.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>

namespace kelvara::demo {

namespace {

constexpr double kPixelsPerPoint = 2;

QList<DeliveredPicture> pair(
    const UIImage& image, const QString& imageBase64, const UIImage& cropImage, const QString& cropImageBase64)
{
    return { { QStringLiteral("image"), image, imageBase64 },
        { QStringLiteral("cropImage"), cropImage, cropImageBase64 } };
}

} // namespace

DemoHost::DemoHost(const QSize& size, PlatformServices services)
    : m_view(new QorvelKycView(QRectF(QPointF(), size), std::move(services), this))
{
    m_clock.start();
    setWindowTitle(QStringLiteral("Kelvara"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    resize(size);
    m_view->setDelegate(this);
}

qsizetype DemoHost::photographs() const
{
    return std::count_if(m_deliveries.begin(), m_deliveries.end(),
        [](const Delivery& delivery) { return delivery.method.startsWith(QLatin1String("didCapture")); });
}

QImage DemoHost::selfie() const
{
    const auto taken = std::find_if(m_deliveries.rbegin(), m_deliveries.rend(),
        [](const Delivery& delivery) { return delivery.method == QLatin1String("didCaptureSelfiePhoto"); });
    return taken == m_deliveries.rend() ? QImage() : QImage(taken->pictures.front().image);
}

QImage DemoHost::screen()
{
    QImage image(size() * kPixelsPerPoint, QImage::Format_RGB32);
    image.setDevicePixelRatio(kPixelsPerPoint);
    render(&image);
    return image;
}

void DemoHost::note(const QString& method, const QList<DeliveredPicture>& pictures)
{
    m_deliveries.append({ method, m_clock.elapsed(), pictures });
}

void DemoHost::didDetectSdkDataBeforeJitsi(QorvelKycView&, const std::shared_ptr<SdkModel>&)
{
    note(QStringLiteral("didDetectSdkDataBeforeJitsi"));
    Q_EMIT callWanted();
}

void DemoHost::didCaptureIdFrontPhoto(QorvelKycView&, const UIImage& image, const QString& imageBase64,
    const UIImage& cropImage, const QString& cropImageBase64)
{
    note(QStringLiteral("didCaptureIdFrontPhoto"), pair(image, imageBase64, cropImage, cropImageBase64));
}

void DemoHost::didCaptureIdBackPhoto(QorvelKycView&, const UIImage& image, const QString& imageBase64,
    const UIImage& cropImage, const QString& cropImageBase64)
{
    note(QStringLiteral("didCaptureIdBackPhoto"), pair(image, imageBase64, cropImage, cropImageBase64));
}

void DemoHost::didCaptureSelfiePhoto(QorvelKycView&, const UIImage& image, const QString& imageBase64,
    const UIImage& cropImage, const QString& cropImageBase64)
{
    note(QStringLiteral("didCaptureSelfiePhoto"), pair(image, imageBase64, cropImage, cropImageBase64));
}

void DemoHost::didReadNfc(QorvelKycView&, const NFCPassportModel& didRead)
{
    m_passport = didRead;
    note(QStringLiteral("didReadNfc"), { { QStringLiteral("faceImage"), UIImage(didRead.faceImage), QString() } });
}

void DemoHost::didClose(QorvelKycView&, const std::shared_ptr<SdkModel>& didDetect)
{
    m_record = didDetect;
    note(QStringLiteral("didClose"));
    Q_EMIT closed();
}

void DemoHost::paintEvent(QPaintEvent*)
{
    QLinearGradient slate(0, 0, 0, height());
    slate.setColorAt(0, QColor(0x26, 0x2f, 0x3a));
    slate.setColorAt(1, QColor(0x0f, 0x13, 0x19));
    QPainter(this).fillRect(rect(), slate);
}

void DemoHost::resizeEvent(QResizeEvent*)
{
    m_view->setGeometry(rect());
}

void DemoHost::closeEvent(QCloseEvent* event)
{
    QWidget::closeEvent(event);
    Q_EMIT closed();
}

} // namespace kelvara::demo
