#include "Demo/ReplayStage.h"

#include "Demo/PictureFitter.h"
#include "Demo/SpecimenScenes.h"

#include <cstdio>
#include <future>

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
    return std::make_shared<ReplayCamera>(
        ReplaySource::generator([movie](std::int64_t, std::chrono::microseconds time) { return movie->frame(time); }),
        options);
}

} // namespace

ReplayStage::ReplayStage(const DemoOptions& options, ScanAreas areas, PictureAnalysis analysis)
    : m_seed(options.seed), m_paths { options.cardFront, options.cardBack, options.selfie }, m_areas(areas),
      m_analysis(std::move(analysis))
{ }

std::optional<QString> ReplayStage::open()
{
    if (auto problem = openPictures())
        return problem;
    const SpecimenScenes scenes(m_seed, m_areas);
    std::array<std::future<MovieClip>, 3> specimens;
    for (const Subject subject : kSubjects) {
        if (!m_sources[slot(subject)])
            specimens[slot(subject)]
                = std::async(std::launch::async, [&scenes, subject] { return scenes.clip(subject); });
    }
    for (const Subject subject : kSubjects) {
        auto& specimen = specimens[slot(subject)];
        m_clips[slot(subject)] = std::make_shared<const MovieClip>(specimen.valid() ? specimen.get() : fitted(subject));
    }
    const auto shake = [scenes](double seconds) { return scenes.shake(seconds); };
    m_tableMovie = std::make_shared<CardMovie>(m_areas.frame, scenes.backdrop(Subject::CardFront), shake);
    m_roomMovie = std::make_shared<CardMovie>(m_areas.frame, scenes.backdrop(Subject::Selfie), shake);
    m_back = cameraOn(m_tableMovie, QStringLiteral("Replayed back camera"), AVCaptureDevicePosition::Back);
    m_front = cameraOn(m_roomMovie, QStringLiteral("Replayed front camera"), AVCaptureDevicePosition::Front);
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

MovieClip ReplayStage::fitted(Subject subject) const
{
    const auto& source = m_sources[slot(subject)];
    const QImage first = source->latest();
    const PictureFit fit = PictureFitter(m_analysis, m_areas).fit(first, subject);
    const QString outcome = fit.found ? QStringLiteral("was found")
        : fit.takenForCard            ? QStringLiteral("was not found; the picture is taken to be the card itself")
                                      : QStringLiteral("was not found; the picture is shown as a whole");
    std::printf("%s (%d×%d): %s %s.\n", qUtf8Printable(m_paths[slot(subject)]), first.width(), first.height(),
        subject == Subject::Selfie ? "a face" : "the card", qUtf8Printable(outcome));
    std::fflush(stdout);

    MovieClip clip;
    if (source->moves()) {
        clip.live = [source] { return source->latest(); };
        clip.liveToFrame = fit.toFrame;
        clip.margin = PictureFitter::margin();
    } else {
        clip.plate = PictureFitter::laid(first, fit.toFrame,
            QRect(QPoint(), m_areas.frame).adjusted(-kShakeMargin, -kShakeMargin, kShakeMargin, kShakeMargin));
    }
    return clip;
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

bool ReplayStage::settled() const
{
    return m_tableMovie->settled() && m_roomMovie->settled();
}

} // namespace kelvara::demo
