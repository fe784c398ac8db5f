#include "Demo/ReplayStage.h"

#include "Demo/PictureFitter.h"
#include "Demo/SpecimenScenes.h"

#include <cstdio>
#include <future>

namespace kelvara::demo {

namespace {

std::size_t slot(Subject subject)
{
    return static_cast<std::size_t>(subject);
}

const char* nameOf(Subject subject)
{
    return subject == Subject::Selfie ? "a face" : "the card";
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
    : m_options(options), m_areas(areas), m_analysis(std::move(analysis))
{ }

std::optional<QString> ReplayStage::open()
{
    const std::array<QString, 3> paths { m_options.cardFront, m_options.cardBack, m_options.selfie };
    const SpecimenScenes scenes(m_options.seed, m_areas);
    std::array<std::future<MovieClip>, 3> specimens;
    for (const Subject subject : { Subject::CardFront, Subject::CardBack, Subject::Selfie }) {
        if (paths[slot(subject)].isEmpty())
            specimens[slot(subject)]
                = std::async(std::launch::async, [&scenes, subject] { return scenes.clip(subject); });
    }
    std::optional<QString> problem;
    for (const Subject subject : { Subject::CardFront, Subject::CardBack, Subject::Selfie }) {
        if (!problem && !paths[slot(subject)].isEmpty())
            problem = openPicture(subject, paths[slot(subject)]);
    }
    const auto shake = [scenes](double seconds) { return scenes.shake(seconds); };
    m_tableMovie = std::make_shared<CardMovie>(m_areas.frame, scenes.backdrop(Subject::CardFront), shake);
    m_roomMovie = std::make_shared<CardMovie>(m_areas.frame, scenes.backdrop(Subject::Selfie), shake);
    for (std::size_t i = 0; i < specimens.size(); ++i) {
        if (specimens[i].valid())
            m_clips[i] = std::make_shared<const MovieClip>(specimens[i].get());
    }
    if (problem)
        return problem;
    m_back = cameraOn(m_tableMovie, QStringLiteral("Replayed back camera"), AVCaptureDevicePosition::Back);
    m_front = cameraOn(m_roomMovie, QStringLiteral("Replayed front camera"), AVCaptureDevicePosition::Front);
    return std::nullopt;
}

std::optional<QString> ReplayStage::openPicture(Subject subject, const QString& path)
{
    auto source = std::make_shared<PictureSource>(path);
    if (auto problem = source->open())
        return problem;
    const QImage first = source->latest();
    const PictureFit fit = PictureFitter(m_analysis, m_areas).fit(first, subject);
    if (fit.found)
        std::printf("%s: found %s in the picture (%d×%d).\n", qUtf8Printable(path), nameOf(subject), first.width(),
            first.height());
    else
        std::printf("%s: %s was not found in the picture (%d×%d); it is shown %s.\n", qUtf8Printable(path),
            nameOf(subject), first.width(), first.height(),
            subject == Subject::Selfie ? "as a whole" : "as if the card filled it from edge to edge");
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
    m_sources[slot(subject)] = source;
    m_clips[slot(subject)] = std::make_shared<const MovieClip>(std::move(clip));
    return std::nullopt;
}

void ReplayStage::present(Subject subject)
{
    CardMovie& movie = subject == Subject::Selfie ? *m_roomMovie : *m_tableMovie;
    movie.show(m_clips[slot(subject)],
        subject == Subject::CardBack ? CardMovie::Arrival::TurnsOver : CardMovie::Arrival::SlidesIn);
}

bool ReplayStage::settled() const
{
    return m_tableMovie->settled() && m_roomMovie->settled();
}

} // namespace kelvara::demo
