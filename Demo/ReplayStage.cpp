#include "Demo/ReplayStage.h"

#include "Demo/Allocator.h"
#include "Demo/Film.h"
#include "Demo/PictureFitter.h"
#include "Demo/PicturedCard.h"
#include "Demo/Say.h"
#include "Demo/SpecimenCard.h"
#include "Demo/SpecimenScenes.h"
#include "Tools/Specimen/Scene.h"

namespace kelvara::demo {

namespace {

constexpr std::array kSubjects { Subject::CardFront, Subject::CardBack, Subject::Selfie };

std::size_t slot(Subject subject)
{
    return static_cast<std::size_t>(subject);
}

std::shared_ptr<ReplayCamera> cameraOn(
    const std::shared_ptr<CardMovie>& movie, const QString& name, AVCaptureDevicePosition position)
{
    ReplayCameraOptions options;
    options.name = name;
    options.position = position;
    return std::make_shared<ReplayCamera>(ReplaySource::generator(Film(movie)), options);
}

} // namespace

ReplayStage::ReplayStage(const DemoOptions& options, specimen::ScanAreas areas, PictureAnalysis analysis)
    : m_seed(options.seed),
      m_losesCard(options.loseCard), m_paths { options.cardFront, options.cardBack, options.selfie }, m_areas(areas),
      m_analysis(std::move(analysis))
{ }

std::optional<QString> ReplayStage::open()
{
    if (auto problem = openPictures())
        return problem;
    const SpecimenScenes scenes(m_seed, m_areas);
    for (const Subject subject : kSubjects) {
        m_clips[slot(subject)]
            = std::make_shared<const MovieClip>(m_sources[slot(subject)] ? fitted(subject) : scenes.clip(subject));
    }
    const auto shake = [scenes](double seconds) { return scenes.shake(seconds); };
    m_tableMovie = std::make_shared<CardMovie>(m_areas.picture, scenes.backdrop(Subject::CardFront), shake);
    m_roomMovie = std::make_shared<CardMovie>(m_areas.picture, scenes.backdrop(Subject::Selfie), shake);
    m_back = cameraOn(m_tableMovie, QStringLiteral("Replayed back camera"), AVCaptureDevicePosition::Back);
    m_front = cameraOn(m_roomMovie, QStringLiteral("Replayed front camera"), AVCaptureDevicePosition::Front);
    makeChip();
    specimen::forgetPictures(); // none is taken any more
    returnFreedMemory();
    return std::nullopt;
}

std::optional<QString> ReplayStage::openPictures()
{
    for (const Subject subject : kSubjects) {
        const QString& path = m_paths[slot(subject)];
        if (path.isEmpty())
            continue;
        auto source = std::make_shared<PictureSource>(path);
        if (auto problem = source->open())
            return problem;
        m_sources[slot(subject)] = std::move(source);
    }
    return std::nullopt;
}

MovieClip ReplayStage::fitted(Subject subject)
{
    const auto& source = m_sources[slot(subject)];
    const QImage first = source->latest();
    const PictureFit fit = PictureFitter(m_analysis, m_areas).fit(first, subject);
    m_fits[slot(subject)] = fit.toFrame;
    const QString outcome = fit.found ? QStringLiteral("was found")
        : fit.takenForCard            ? QStringLiteral("was not found; the picture is taken to be the card itself")
                                      : QStringLiteral("was not found; the picture is shown as a whole");
    say(QStringLiteral("%1 (%2×%3): %4 %5.")
            .arg(m_paths[slot(subject)])
            .arg(first.width())
            .arg(first.height())
            .arg(subject == Subject::Selfie ? QStringLiteral("a face") : QStringLiteral("the card"), outcome));

    MovieClip clip;
    if (source->moves()) {
        clip.live = [source] { return source->latest(); };
        clip.liveToFrame = fit.toFrame;
        clip.margin = PictureFitter::margin();
    } else {
        clip.plate = PictureFitter::laid(first, fit.toFrame,
            QRect(QPoint(), m_areas.picture).adjusted(-kShakeMargin, -kShakeMargin, kShakeMargin, kShakeMargin));
    }
    return clip;
}

std::optional<CardContents> ReplayStage::contents() const
{
    const auto pictured = [this](Subject side) -> std::optional<PicturedCard> {
        const auto& source = m_sources[slot(side)];
        return source ? std::optional(PicturedCard(source->latest(), m_fits[slot(side)], m_areas)) : std::nullopt;
    };
    CardContents contents = specimenCard(m_seed);
    if (const auto back = pictured(Subject::CardBack)) {
        const auto zone = back->zone();
        if (!zone)
            return std::nullopt;
        contents.zone = *zone;
        contents.holder.reset(); // nobody knows more of this holder than the zone tells
        contents.document.reset();
    }
    if (const auto front = pictured(Subject::CardFront)) {
        contents.portrait = front->portrait(m_analysis);
        contents.isPortraitInvented = false;
    }
    return contents;
}

void ReplayStage::makeChip()
{
    const auto card = contents();
    if (!card) {
        say(QStringLiteral("The chip is not read: the machine-readable zone that would open it cannot be read from "
                           "\"%1\".")
                .arg(m_paths[slot(Subject::CardBack)]));
        return;
    }
    auto made = HeldChip::make(*card, m_losesCard);
    if (const auto* problem = std::get_if<QString>(&made))
        say(QStringLiteral("The chip is not read, as none can be made: %1").arg(*problem));
    else
        m_chip = std::get<std::unique_ptr<HeldChip>>(std::move(made));
}

void ReplayStage::present(Subject subject)
{
    for (const Subject each : kSubjects) {
        if (m_sources[slot(each)])
            m_sources[slot(each)]->setPlaying(each == subject);
    }
    CardMovie& movie = subject == Subject::Selfie ? *m_roomMovie : *m_tableMovie;
    movie.show(m_clips[slot(subject)],
        subject == Subject::CardBack ? CardMovie::Arrival::TurnsOver : CardMovie::Arrival::Comes);
}

void ReplayStage::photographed(Subject subject)
{
    if (subject == Subject::CardFront)
        return; // still seen as the card is turned over
    // What is put away is thirty megabytes; the lens is covered.
    const bool isSelfie = subject == Subject::Selfie;
    m_clips[slot(subject)] = nullptr;
    if (!isSelfie)
        m_clips[slot(Subject::CardFront)] = nullptr;
    (isSelfie ? m_roomMovie : m_tableMovie) = nullptr;
    (isSelfie ? m_front : m_back)
        ->setSource(ReplaySource::generator([size = m_areas.picture](std::int64_t, std::chrono::microseconds) {
            QImage dark(size, QImage::Format_RGB32);
            dark.fill(Qt::black);
            return dark;
        }));
}

bool ReplayStage::settled() const
{
    return (!m_tableMovie || m_tableMovie->settled()) && (!m_roomMovie || m_roomMovie->settled());
}

void ReplayStage::holdToReader()
{
    if (m_chip)
        m_chip->hold();
}

void ReplayStage::takeFromReader()
{
    if (m_chip)
        m_chip->takeAway();
}

} // namespace kelvara::demo
