#include "Tools/Replay/ReplayDevice.h"

#include "Platform/Chip/NFCReaderSession.h"
#include "Platform/Foundation/UserDefaults.h"
#include "Tools/Replay/LookCounter.h"
#include "Tools/Replay/SpecimenPictures.h"
#include "Tools/Specimen/Specimen.h"

#include <algorithm>

namespace kelvara::replay {

namespace {

using namespace chip::software;

constexpr int kPortraitQuality = 70; ///< Some 16 kilobytes, as on real chips.

bool usesChip(const FlowScript& script)
{
    return std::any_of(script.flow.begin(), script.flow.end(), [](const FlowStep& step) {
        return std::holds_alternative<HoldChip>(step.act) || std::holds_alternative<FaultChip>(step.act);
    });
}

std::shared_ptr<ReplayCamera> camera(const FlowScript& script, AVCaptureDevicePosition position)
{
    ReplayCameraOptions options;
    options.name = QStringLiteral("Replayed camera");
    options.position = position;
    options.size = script.frame;
    options.framesPerSecond = script.framesPerSecond;
    options.hasTorch = position == AVCaptureDevicePosition::Back;
    return std::make_shared<ReplayCamera>(ReplaySource(), options);
}

/// The profile with what the script leaves to the specimen.
ChipProfile completed(const FlowScript& script)
{
    const demo::CardContents& contents = specimenContents(script.seed);
    const auto isOpen = [&script](const char* field) { return !script.chipFields.contains(QLatin1String(field)); };
    ChipProfile profile = script.chip;
    if (isOpen("mrz"))
        profile.zone = contents.zone;
    if (isOpen("portrait")) {
        profile.portrait = PortraitOptions {};
        profile.portrait->picture = contents.portrait;
        profile.portrait->kind = chip::ImageKind::Jpeg;
        profile.portrait->quality = kPortraitQuality;
    }
    if (isOpen("details"))
        profile.details = contents.holder;
    if (isOpen("document"))
        profile.document = contents.document;
    return profile;
}

} // namespace

ReplayDevice::ReplayDevice(const FlowScript& script)
    : m_seed(script.seed), m_view(script.view), m_frame(script.frame), m_hasCameras(script.hasCameras),
      m_hasReader(script.hasReader), m_hasCalls(script.hasCalls),
      m_isTold(script.detectors == FlowScript::Detectors::Told), m_back(camera(script, AVCaptureDevicePosition::Back)),
      m_front(camera(script, AVCaptureDevicePosition::Front))
{ }

std::variant<std::unique_ptr<ReplayDevice>, QString> ReplayDevice::make(const FlowScript& script)
{
    if (const QString problem = specimen::printerProblem(); !problem.isEmpty())
        return problem;
    for (const FlowStep& step : script.flow) {
        const auto* shown = std::get_if<Show>(&step.act);
        if (!shown || shown->file.isEmpty())
            continue;
        if (const auto problem = ReplaySource::path(shown->file).problem())
            return *problem;
    }
    std::unique_ptr<ReplayDevice> device(new ReplayDevice(script));
    if (script.hasReader && usesChip(script)) {
        if (const QString problem = device->makeChip(script); !problem.isEmpty())
            return problem;
    }
    device->show(Show {});
    return device;
}

QString ReplayDevice::makeChip(const FlowScript& script)
{
    auto made = SoftwareChip::make(completed(script));
    if (const auto* problem = std::get_if<QString>(&made))
        return QStringLiteral("There can be no such chip: ") + *problem;
    m_chip = std::get<std::shared_ptr<SoftwareChip>>(std::move(made));
    if (script.trust == FlowScript::Trust::Nobody)
        return {};
    const auto trusted
        = script.trust == FlowScript::Trust::Issuer ? m_chip->authority() : std::optional(TestAuthority::make());
    if (!trusted)
        return {}; // a card of another kind was issued by nobody
    const chip::Bytes certificate = trusted->certificatePem();
    const auto size = static_cast<qint64>(certificate.size());
    if (!m_trusted.open() || m_trusted.write(reinterpret_cast<const char*>(certificate.data()), size) != size
        || !m_trusted.flush())
        return QStringLiteral("The authority's certificate cannot be written: %1.").arg(m_trusted.errorString());
    return {};
}

PlatformServices ReplayDevice::services() const
{
    PlatformServices services;
    if (m_hasCameras)
        services.cameras = std::make_shared<ReplayCameraProvider>(m_back, m_front);
    services.imageAnalysis = countingLooks(m_isTold ? toldDetectors(m_told) : VisionDetectors::native(), m_looks);
    services.nfc = m_hasReader ? NFCReaderSession::of(m_terminal) : nullptr;
    services.userDefaults = UserDefaults::inMemory();
    if (!m_trusted.fileName().isEmpty())
        services.masterListURL = QUrl::fromLocalFile(m_trusted.fileName());
    if (m_hasCalls)
        services.conference = m_conference;
    return services;
}

ReplaySource ReplayDevice::pictureOf(Picture picture, bool isFrontCamera) const
{
    return ReplaySource::still(specimenPicture(m_seed, picture, isFrontCamera, m_view, m_frame));
}

void ReplayDevice::show(const Show& shown)
{
    // Told before the picture changes: a frame on its way is judged by what is there now, as a quick eye would.
    m_told->card = shown.picture == Picture::Front || shown.picture == Picture::Back;
    m_told->face = shown.picture == Picture::Front || shown.picture == Picture::Selfie;
    const bool isSelfie = shown.picture == Picture::Selfie;
    if (!shown.file.isEmpty()) {
        (isSelfie ? m_front : m_back)->setSource(ReplaySource::path(shown.file));
        return;
    }
    if (!isSelfie)
        m_back->setSource(pictureOf(shown.picture, false));
    if (isSelfie || shown.picture == Picture::Nothing)
        m_front->setSource(pictureOf(shown.picture, true));
}

void ReplayDevice::plug(const PlugCameras& act)
{
    const bool isIn = act.plug == Plug::In;
    if (act.which != Cameras::Front)
        m_back->setConnected(isIn);
    if (act.which != Cameras::Back)
        m_front->setConnected(isIn);
}

void ReplayDevice::plug(const PlugReader& act)
{
    if (act.plug == Plug::In)
        m_terminal->plugIn();
    else
        m_terminal->unplug();
}

void ReplayDevice::hold()
{
    if (m_chip)
        m_terminal->place(m_chip);
}

void ReplayDevice::take()
{
    m_terminal->remove();
}

void ReplayDevice::setFaults(ChipFaults faults)
{
    if (!m_chip)
        return;
    for (ChipFault& fault : faults.list) {
        if (fault.counting == ChipFault::Counting::ChipLife)
            fault.command += m_terminal->counts().commands;
    }
    m_chip->setFaults(std::move(faults));
}

std::pair<std::int64_t, std::int64_t> ReplayDevice::deliveredFrames() const
{
    return { m_back->deliveredFrames(), m_front->deliveredFrames() };
}

} // namespace kelvara::replay
