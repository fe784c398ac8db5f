// A host and its test in one: an invented person goes through all four steps, without a camera, a card, a server or a
// display. Only the outside is played: cards are found, zone and chip read and the call is held as anywhere else.

#include <Kelvara/QKMRZScanResult.h>
#include <Kelvara/QorvelKycView.h>
#include <Platform/Capture/ReplayCamera.h>
#include <Platform/Chip/NFCPassportModel.h>
#include <Platform/Chip/NFCReaderSession.h>
#include <Platform/Chip/software/SoftwareTerminal.h>
#include <Platform/Conference/local/LocalConference.h>
#include <Platform/Foundation/UserDefaults.h>
#include <Tools/Specimen/ScanAreas.h>

#include <QAbstractButton>
#include <QApplication>
#include <QTimer>

#include <cstdio>

using namespace kelvara;
using namespace kelvara::chip::software;

namespace {

constexpr QSize kView(390, 844); // points
constexpr QSize kPicture(1080, 1920); // pixels

/// What is outside of the app: the person's card and face, and the bank's conference server.
struct World
{
    specimen::SpecimenData card = specimen::SpecimenData::fromSeed(7);
    std::shared_ptr<ReplayCamera> back = camera(specimen::Subject::Front, AVCaptureDevicePosition::Back);
    std::shared_ptr<ReplayCamera> front = camera(specimen::Subject::Selfie, AVCaptureDevicePosition::Front);
    std::shared_ptr<SoftwareTerminal> reader = std::make_shared<SoftwareTerminal>();
    LocalConference bank;

    [[nodiscard]] ReplaySource held(specimen::Subject subject) const
    {
        const auto areas = specimen::ScanAreas::of(kView, kPicture);
        return ReplaySource::still(photograph(card, areas.held(subject)).image);
    }
    [[nodiscard]] std::shared_ptr<ReplayCamera> camera(specimen::Subject subject, AVCaptureDevicePosition position)
    {
        return std::make_shared<ReplayCamera>(held(subject), ReplayCameraOptions { .position = position });
    }
    [[nodiscard]] std::shared_ptr<SoftwareChip> chip() const
    {
        ChipProfile profile;
        profile.zone = card.mrzLines(); // which is the key that opens it
        return std::get<std::shared_ptr<SoftwareChip>>(SoftwareChip::make(profile));
    }
    [[nodiscard]] PlatformServices services() const
    {
        PlatformServices services = PlatformServices::native(); // the detectors and the browser are the real ones
        services.cameras = std::make_shared<ReplayCameraProvider>(back, front);
        services.nfc = NFCReaderSession::of(reader);
        services.userDefaults = UserDefaults::inMemory();
        return services;
    }
};

/// Your host; here it turns the card over as well, as it hears when.
struct Host final : QorvelKycViewDelegate
{
    using Photo = const UIImage&;
    explicit Host(World& outside) : world(outside) { }

    void didCaptureIdFrontPhoto(QorvelKycView&, Photo, const QString&, Photo, const QString&) override
    {
        world.back->setSource(world.held(specimen::Subject::Back));
    }
    void didCaptureIdBackPhoto(QorvelKycView&, Photo, const QString&, Photo, const QString&) override { }
    void didCaptureSelfiePhoto(QorvelKycView&, Photo, const QString&, Photo, const QString&) override { }
    void didReadNfc(QorvelKycView&, const NFCPassportModel& chip) override { documentNumber = chip.documentNumber; }
    void didDetectSdkDataBeforeJitsi(QorvelKycView& view, const std::shared_ptr<SdkModel>&) override
    {
        // A server would answer later; at once would be too early, as the step changes after this call.
        QTimer::singleShot(0, &view, [this, &view] {
            view.setJitsiConference(world.bank.url().toString(), QStringLiteral("room"), QStringLiteral("token"));
        });
    }
    void didClose(QorvelKycView&, const std::shared_ptr<SdkModel>& left) override
    {
        record = left;
        QCoreApplication::quit();
    }

    World& world;
    QString documentNumber; ///< By the chip.
    std::shared_ptr<SdkModel> record;
};

/// Presses the button of that name if it may be pressed.
bool press(const QWidget& view, const QString& name)
{
    for (auto* button : view.findChildren<QAbstractButton*>()) {
        if (button->accessibleName() != name || !button->isVisible() || !button->isEnabled())
            continue;
        button->click();
        return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    World world;
    Host host(world);
    QorvelKycView view(QRectF(QPointF(), kView), world.services());
    view.setDelegate(&host);
    view.setViewTypes({ ViewType::idPhoto, ViewType::selfie, ViewType::nfcRead, ViewType::jitsi });
    view.show();

    // What the person presses, one after the other as it becomes possible: three photographs, then the chip.
    const QString shutter = QString::fromUtf8("Fotoğraf çek");
    QStringList wanted { shutter, shutter, shutter, QStringLiteral("Tara") };
    QTimer person;
    QObject::connect(&person, &QTimer::timeout, &view, [&] {
        if (wanted.isEmpty() || !press(view, wanted.front()))
            return;
        if (wanted.takeFirst() == QLatin1String("Tara"))
            world.reader->place(world.chip()); // holds the card to the reader
    });
    person.start(50);

    // The representative hangs up, and the person leaves.
    bool isCalled = world.bank.listen();
    QObject::connect(&world.bank, &LocalConference::joined, &view, [&] { world.bank.hangUp(); });
    view.setDidConferenceTerminated([&](const std::optional<QVariantMap>& how) {
        isCalled = isCalled && how && !how->contains(QStringLiteral("error"));
        wanted << QStringLiteral("Kapat");
    });

    QTimer::singleShot(std::chrono::seconds(150), &application, &QCoreApplication::quit);
    QApplication::exec();

    const auto& record = host.record;
    const bool isWhole = record && record->idFrontImage && record->idBackImage && record->selfieImage && record->mrzInfo
        && record->mrzInfo->documentNumber == world.card.documentNumber
        && host.documentNumber == world.card.documentNumber && isCalled && world.bank.visits().size() == 1;
    if (isWhole)
        std::puts("All four steps were gone through.");
    else
        std::printf("Something is missing. Still to be pressed: %s\n", qUtf8Printable(wanted.join(u", ")));
    return isWhole ? 0 : 1;
}
