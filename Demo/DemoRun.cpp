#include "Demo/DemoRun.h"

#include "Demo/ChipReport.h"
#include "Demo/Diagnosis.h"
#include "Demo/Gallery.h"
#include "Demo/MrzReport.h"
#include "Demo/Say.h"
#include "Demo/TurnTally.h"
#include "Platform/Capture/CameraProvider.h"
#include "Platform/Chip/NFCReaderSession.h"
#include "Platform/PlatformServices.h"
#include "Platform/Vision/VisionDetectors.h"
#include "Tools/Specimen/ScanAreas.h"

#include <QJsonObject>

#include <algorithm>
#include <cstdio>

namespace kelvara::demo {

namespace {

constexpr QSize kPhone(390, 844);
constexpr QSize kDesktop(844, 390);
constexpr QSize kFrame(1080, 1920);
constexpr std::chrono::milliseconds kScriptedLimit { 60000 };
constexpr int kWatchMilliseconds = 250;
constexpr int kPatienceMilliseconds = 10000;
constexpr int kFarewellMilliseconds = 3000; ///< For a person to read that all is done.

QJsonObject cameraResult(const FrameTap& camera)
{
    return { { QStringLiteral("name"), camera.localizedName() }, { QStringLiteral("frames"), camera.frames() },
        { QStringLiteral("framesPerSecond"), camera.framesPerSecond() },
        { QStringLiteral("width"), std::max(0, camera.frameSize().width()) },
        { QStringLiteral("height"), std::max(0, camera.frameSize().height()) } };
}

/// A contactless reader that nothing is ever held to: with one at hand the view reads the MRZ, chip or not.
struct ContactlessPhone final : NFCReaderSession
{
    [[nodiscard]] bool readingAvailable() const override { return true; }
};

} // namespace

DemoRun::DemoRun(const DemoOptions& options, bool hasDisplay)
    : m_options(options), m_byHand(hasDisplay && (options.byHand || (options.camera && !options.scripted))),
      m_size(options.size.value_or(options.camera ? kDesktop : kPhone)), m_folder(options.out),
      m_services(PlatformServices::native()), m_analysis(m_services.imageAnalysis)
{
    m_services.userDefaults = nullptr; // a demonstration leaves no traces
}

DemoRun::~DemoRun() = default;

int DemoRun::exec()
{
    if (m_options.byHand && !m_byHand)
        return fail(BadInput, QStringLiteral("--by-hand needs a display."));
    for (const QString& path : { m_options.cardFront, m_options.cardBack, m_options.selfie }) {
        if (!path.isEmpty() && m_folder.holds(path)) {
            return fail(BadInput,
                QStringLiteral("\"%1\" lies in the out folder, which this run would empty. Choose another --out.")
                    .arg(path));
        }
    }
    // The cameras first: what cannot be shown must not cost an earlier run's results.
    if (!openCameras())
        return m_exitCode;
    if (const auto problem = m_folder.prepare())
        return fail(BadInput, *problem);
    runFlow();
    return report();
}

int DemoRun::fail(ExitCode code, const QString& sentence)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(sentence));
    m_exitCode = code;
    return code;
}

bool DemoRun::openCameras()
{
    return m_options.camera ? openReal() : openReplay();
}

bool DemoRun::openReplay()
{
    const QSize frame = m_size.height() > m_size.width() ? kFrame : kFrame.transposed();
    auto stage = std::make_unique<ReplayStage>(m_options, specimen::ScanAreas::of(m_size, frame), m_analysis);
    if (const auto problem = stage->open()) {
        fail(BadInput, *problem);
        return false;
    }
    m_back = std::make_shared<FrameTap>(stage->backCamera());
    m_front = std::make_shared<FrameTap>(stage->frontCamera());
    m_services.cameras = std::make_shared<ReplayCameraProvider>(m_back, m_front);
    if (const HeldChip* chip = stage->chip()) {
        m_services.nfc = NFCReaderSession::of(chip->terminal());
        m_services.masterListURL = chip->masterListURL();
        m_steps.append(ViewType::nfcRead);
    } else {
        m_services.nfc = std::make_shared<ContactlessPhone>();
    }
    m_stage = std::move(stage);
    return true;
}

bool DemoRun::openReal()
{
    const auto device = [this](AVCaptureDevicePosition position) {
        return m_services.cameras->defaultDevice(
            AVCaptureDeviceType::BuiltInWideAngleCamera, AVMediaType::Video, position);
    };
    const auto back = device(AVCaptureDevicePosition::Back);
    const auto front = device(AVCaptureDevicePosition::Front);
    if (!back || !front) {
        fail(NoCamera,
            QStringLiteral("No camera was found. Plug one in, or leave out --camera to see the demo with "
                           "replayed pictures."));
        return false;
    }
    m_back = std::make_shared<FrameTap>(back);
    m_front = back == front ? m_back : std::make_shared<FrameTap>(front);
    m_services.cameras = std::make_shared<ReplayCameraProvider>(m_back, m_front);
    m_stage = std::make_unique<RealStage>();
    say(QStringLiteral("Card: camera \"%1\". Selfie: camera \"%2\".")
            .arg(back->localizedName(), front->localizedName()));
    if (m_services.nfc->readingAvailable()) {
        m_steps.append(ViewType::nfcRead);
    } else {
        m_services.nfc = std::make_shared<ContactlessPhone>();
        say(QStringLiteral("The chip is not read: this device has no contactless reader."));
    }
    return true;
}

void DemoRun::openCall()
{
    auto desk = m_options.noCall ? nullptr : CallDesk::make();
    if (!desk) {
        if (m_options.noCall)
            return;
        say(QStringLiteral("There is no video call: the library was built without."));
        return;
    }
    m_steps.append(ViewType::jitsi);
    // Who is seen in the call is who took the selfie; a real camera shows for itself.
    m_call = std::make_unique<CallScene>(
        *m_host, std::move(desk), [this] { return m_options.camera ? QImage() : m_host->selfie(); });
    connect(m_call.get(), &CallScene::screenReached, this, &DemoRun::keepScreen);
    connect(m_call.get(), &CallScene::finished, this, [this](const QString& failure) {
        m_isComplete = failure.isEmpty();
        if (m_isComplete)
            QTimer::singleShot(m_byHand ? kFarewellMilliseconds : 0, m_person.get(), &ScriptedPerson::leave);
        else if (!m_byHand)
            giveUp(QStringLiteral("The call failed: %1").arg(failure));
    });
}

QString DemoRun::keep(const QString& kind, const QString& name, const QImage& screen)
{
    m_sheet.append(sheetEntry(name, screen));
    return m_folder.write(kind, name, screen);
}

void DemoRun::keepScreen(const QString& name)
{
    m_screens.append(keep(QStringLiteral("screen"), name, m_host->screen()));
}

void DemoRun::giveUp(const QString& failure)
{
    m_failure = failure;
    m_loop.quit();
}

void DemoRun::runFlow()
{
    m_host = std::make_unique<DemoHost>(m_size, m_services);
    m_host->view().setTextScale(m_options.textScale);
    openCall();
    m_host->view().setViewTypes(m_steps);
    m_person = std::make_unique<ScriptedPerson>(*m_host, *m_stage, !m_byHand);
    m_nextDiagnosis = kPatienceMilliseconds;

    connect(m_person.get(), &ScriptedPerson::screenReached, this, &DemoRun::keepScreen);
    connect(m_person.get(), &ScriptedPerson::finished, this, [this] {
        m_isComplete = true;
        QTimer::singleShot(m_byHand ? kFarewellMilliseconds : 0, m_person.get(), &ScriptedPerson::leave);
    });
    connect(m_person.get(), &ScriptedPerson::gaveUp, this,
        [this] { giveUp(QStringLiteral("The flow was not completed.")); });
    connect(m_host.get(), &DemoHost::closed, this, [this] {
        giveUp(m_isComplete ? QString() : QStringLiteral("The view was closed before the flow was complete."));
    });
    QTimer limit;
    limit.setSingleShot(true);
    const auto longest = m_options.limit ? m_options.limit : m_byHand ? std::nullopt : std::optional(kScriptedLimit);
    if (longest) {
        connect(&limit, &QTimer::timeout, this, [this, longest] {
            giveUp(QStringLiteral("The flow was not complete within %1 seconds.")
                       .arg(static_cast<double>(longest->count()) / 1000));
        });
        limit.start(*longest);
    }
    QTimer watching;
    connect(&watching, &QTimer::timeout, this, &DemoRun::watch);
    watching.start(kWatchMilliseconds);

    m_host->show();
    TurnTally tally([this] { return m_person->isActing() || (m_call && m_call->isPeoplesTurn()); });
    m_loop.exec();
    m_peoplesMilliseconds = tally.milliseconds();
    m_flowMilliseconds = m_host->elapsedMilliseconds();
}

std::shared_ptr<FrameTap> DemoRun::activeCamera() const
{
    return m_person->awaited() == Subject::Selfie ? m_front : m_back;
}

void DemoRun::watch()
{
    warnAboutSmallPrint();
    const auto subject = m_person->awaited();
    const qint64 waited = m_person->unreadyMilliseconds();
    if (!subject || waited < kPatienceMilliseconds) {
        m_nextDiagnosis = kPatienceMilliseconds;
    } else if (waited >= m_nextDiagnosis) {
        m_nextDiagnosis = waited + kPatienceMilliseconds;
        say(whatIsMissing(*subject, activeCamera()->lastFrame(), m_host->size(), m_analysis));
    }
}

void DemoRun::warnAboutSmallPrint()
{
    const QImage frame = m_warned ? QImage() : m_back->lastFrame();
    if (frame.isNull())
        return;
    m_warned = true;
    if (const auto note = tooSmallPrint(frame.size(), m_host->size()))
        say(*note);
}

int DemoRun::report()
{
    if (!m_failure.isEmpty()) {
        keepScreen(QStringLiteral("given-up"));
        if (const auto subject = m_person->awaited())
            m_failure += QLatin1Char(' ')
                + (m_person->unreadyMilliseconds() == 0
                        ? QStringLiteral("The shutter was ready to be pressed.")
                        : whatIsMissing(*subject, activeCamera()->lastFrame(), m_host->size(), m_analysis));
        else if (const QString trouble = m_person->chipTrouble(); !trouble.isEmpty())
            m_failure += QLatin1Char(' ') + trouble;
    }
    m_host->view().stopScanning();
    QJsonArray gallery;
    takeGallery(m_size, m_options.textScale, [&](const QString& name, const QImage& screen) {
        gallery.append(keep(QStringLiteral("gallery"), name, screen));
    });
    m_folder.writeSheet(contactSheet(QStringLiteral("Kelvara, seed %1: %2 s")
                                         .arg(m_options.seed)
                                         .arg(static_cast<double>(m_flowMilliseconds) / 1000, 0, 'f', 1),
        m_sheet));
    const QJsonArray deliveries = m_folder.write(m_host->deliveries());
    if (m_failure.isEmpty() && !allSound(deliveries))
        m_failure = QStringLiteral("A base64 text does not hold the picture it was given with; see result.json.");

    QJsonArray stepNames;
    for (const ViewType step : m_steps)
        stepNames.append(description(step));
    m_folder.writeResult(
        { { QStringLiteral("completed"), m_failure.isEmpty() }, { QStringLiteral("failure"), m_failure },
            { QStringLiteral("seed"), static_cast<qint64>(m_options.seed) }, { QStringLiteral("steps"), stepNames },
            { QStringLiteral("width"), m_size.width() }, { QStringLiteral("height"), m_size.height() },
            { QStringLiteral("byHand"), m_byHand }, { QStringLiteral("flowMilliseconds"), m_flowMilliseconds },
            { QStringLiteral("waitedForPeopleMilliseconds"), m_peoplesMilliseconds },
            { QStringLiteral("delegateCalls"), deliveries }, { QStringLiteral("mrz"), mrzReport(m_host->record()) },
            { QStringLiteral("chip"), chipReport(m_host->passport()) },
            { QStringLiteral("call"), m_call ? QJsonValue(m_call->report()) : QJsonValue() },
            { QStringLiteral("backCamera"), cameraResult(*m_back) },
            { QStringLiteral("frontCamera"), cameraResult(*m_front) }, { QStringLiteral("screens"), m_screens },
            { QStringLiteral("gallery"), gallery } });
    if (!m_folder.problem().isEmpty())
        return fail(BadInput, m_folder.problem());
    if (!m_failure.isEmpty())
        return fail(NotCompleted, m_failure);

    say(QStringLiteral("Complete after %1 s, %10 s of which the view waited for people: %2 photographs, %8%9, %3 "
                       "screens, %4 more in the gallery.\n"
                       "Cameras: %5 frames a second at the back, %6 at the front.\n"
                       "See %7/report.html")
            .arg(static_cast<double>(m_flowMilliseconds) / 1000, 0, 'f', 1)
            .arg(m_host->photographs())
            .arg(m_screens.size())
            .arg(gallery.size())
            .arg(m_back->framesPerSecond(), 0, 'f', 1)
            .arg(m_front->framesPerSecond(), 0, 'f', 1)
            .arg(m_folder.path(), m_host->passport() ? QStringLiteral("the chip read") : QStringLiteral("no chip read"),
                m_call ? QStringLiteral(", the call held") : QString())
            .arg(static_cast<double>(m_peoplesMilliseconds) / 1000, 0, 'f', 1));
    return Completed;
}

} // namespace kelvara::demo
