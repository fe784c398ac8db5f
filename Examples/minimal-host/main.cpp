#include <Kelvara/QorvelKycView.h>
#include <QApplication>

using namespace kelvara;

struct Host final : QorvelKycViewDelegate
{
    using Photo = const UIImage&;
    void didCaptureIdFrontPhoto(QorvelKycView&, Photo, const QString&, Photo, const QString&) override { }
    void didCaptureIdBackPhoto(QorvelKycView&, Photo, const QString&, Photo, const QString&) override { }
    void didCaptureSelfiePhoto(QorvelKycView&, Photo, const QString&, Photo, const QString&) override { }
    void didReadNfc(QorvelKycView&, const NFCPassportModel&) override { }
    void didDetectSdkDataBeforeJitsi(QorvelKycView&, const std::shared_ptr<SdkModel>&) override { }
    void didClose(QorvelKycView& view, const std::shared_ptr<SdkModel>&) override { view.window()->close(); }
};

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    Host host;
    QWidget window;
    window.setPalette(QPalette(QColor(0x10, 0x20, 0x2a))); // the view's own background is clear
    window.resize(390, 844);
    QorvelKycView view(QRectF(QPointF(), window.size()), &window);
    view.setDelegate(&host);
    view.setViewTypes({ ViewType::idPhoto, ViewType::selfie });
    window.show();
    return application.exec();
}
