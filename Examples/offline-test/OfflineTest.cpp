// A host's own test of its way through the flow, without a camera, a card or a display: an invented card before
// replayed cameras, and its chip in software.

#include <Kelvara/QorvelKycView.h>
#include <Platform/Capture/ReplayCamera.h>
#include <Platform/Chip/NFCPassportModel.h>
#include <Platform/Chip/NFCReaderSession.h>
#include <Platform/Chip/software/SoftwareTerminal.h>
#include <Platform/Foundation/UserDefaults.h>
#include <QAbstractButton>
#include <QTest>
#include <Tools/Specimen/ScanAreas.h>

using namespace kelvara;
using namespace kelvara::chip::software;

namespace {

constexpr int kPatience = 60000;

/// What a camera of 1080 × 1920 pixels sees when the card lies in the cut-out of a view of 390 × 844 points.
ReplaySource cardInTheCutout(const specimen::SpecimenData& card, specimen::Subject side)
{
    const auto areas = specimen::ScanAreas::of({ 390, 844 }, { 1080, 1920 });
    return ReplaySource::still(specimen::photograph(card, areas.held(side)).image);
}

/// Your host; here it only counts.
struct Host final : QorvelKycViewDelegate
{
    using Photo = const UIImage&;
    void didCaptureIdFrontPhoto(QorvelKycView&, Photo, const QString&, Photo crop, const QString&) override
    {
        front = crop;
    }
    void didCaptureIdBackPhoto(QorvelKycView&, Photo, const QString&, Photo crop, const QString&) override
    {
        back = crop;
    }
    void didCaptureSelfiePhoto(QorvelKycView&, Photo, const QString&, Photo, const QString&) override { }
    void didReadNfc(QorvelKycView&, const NFCPassportModel& read) override { surname = read.surname; }
    void didDetectSdkDataBeforeJitsi(QorvelKycView&, const std::shared_ptr<SdkModel>&) override { }
    void didClose(QorvelKycView&, const std::shared_ptr<SdkModel>&) override { }

    QImage front;
    QImage back;
    QString surname;
};

} // namespace

class OfflineTest final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void photographsTheCardAndReadsItsChip()
    {
        const auto card = specimen::SpecimenData::fromSeed(7);
        const auto camera = std::make_shared<ReplayCamera>(cardInTheCutout(card, specimen::Subject::Front));
        const auto reader = std::make_shared<SoftwareTerminal>();
        PlatformServices services = PlatformServices::native();
        services.cameras = std::make_shared<ReplayCameraProvider>(camera,
            // A view wants both cameras, also for the card alone.
            std::make_shared<ReplayCamera>(ReplaySource::still(QImage(100, 100, QImage::Format_RGB32)),
                ReplayCameraOptions { .position = AVCaptureDevicePosition::Front }));
        services.nfc = NFCReaderSession::of(reader);
        services.userDefaults = UserDefaults::inMemory();
        services.conference = nullptr;

        Host host;
        QorvelKycView view(QRectF(0, 0, 390, 844), services);
        view.setDelegate(&host);
        view.setViewTypes({ ViewType::idPhoto, ViewType::nfcRead });
        view.show();

        press(view, QString::fromUtf8("Fotoğraf çek"));
        QVERIFY(!host.front.isNull());

        camera->setSource(cardInTheCutout(card, specimen::Subject::Back)); // the person turns the card over
        press(view, QString::fromUtf8("Fotoğraf çek")); // ready only when the zone has been read
        QVERIFY(!host.back.isNull());

        ChipProfile profile;
        profile.zone = card.mrzLines();
        press(view, QStringLiteral("Tara"));
        reader->place(std::get<std::shared_ptr<SoftwareChip>>(SoftwareChip::make(profile)));
        QTRY_VERIFY_WITH_TIMEOUT(!host.surname.isEmpty(), kPatience);
        QVERIFY(card.mrzLines().at(2).startsWith(host.surname));
    }

private:
    /// Waits for a button of that name that may be pressed, and presses it.
    static void press(QWidget& view, const QString& name)
    {
        const auto button = [&]() -> QAbstractButton* {
            for (auto* candidate : view.findChildren<QAbstractButton*>())
                if (candidate->accessibleName() == name && candidate->isVisible() && candidate->isEnabled())
                    return candidate;
            return nullptr;
        };
        QTRY_VERIFY_WITH_TIMEOUT(button(), kPatience);
        QTest::mouseClick(button(), Qt::LeftButton);
    }
};

QTEST_MAIN(OfflineTest)
#include "OfflineTest.moc"
