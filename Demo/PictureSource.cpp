#include "Demo/PictureSource.h"

#include "Demo/FrameImage.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QImageReader>
#include <QThread>

#include <mutex>

namespace kelvara::demo {

namespace {

constexpr int kPatienceMilliseconds = 10000;
/// Of a folder of large photographs; enough to see them change, and little work.
constexpr double kFolderPicturesPerSecond = 4;

} // namespace

struct PictureSource::Shared
{
    mutable std::mutex mutex;
    QImage latest;
};

PictureSource::PictureSource(const QString& path) : m_path(path), m_shared(std::make_shared<Shared>()) { }

PictureSource::~PictureSource()
{
    if (m_player)
        m_player->stop();
}

std::optional<QString> PictureSource::open()
{
    const QFileInfo file(m_path);
    if (!file.exists())
        return QStringLiteral("There is no file or folder \"%1\".").arg(m_path);
    const ReplaySource source = ReplaySource::path(m_path);
    if (auto problem = source.problem())
        return problem;

    m_moves = file.isDir() || !QImageReader(m_path).canRead();
    ReplayCameraOptions options;
    if (file.isDir())
        options.framesPerSecond = kFolderPicturesPerSecond;
    m_player = std::make_unique<ReplayCamera>(source, options);
    const bool started = m_player->start([shared = m_shared](const CMSampleBuffer& delivery) {
        // A copy: the picture outlives its turn in the camera's ring of buffers.
        const QImage picture = frameImage(delivery).copy();
        const std::lock_guard lock(shared->mutex);
        if (!picture.isNull())
            shared->latest = picture;
    });
    const QDeadlineTimer patience(kPatienceMilliseconds);
    while (started && latest().isNull() && !patience.hasExpired()) {
        QCoreApplication::processEvents();
        QThread::msleep(2);
    }
    if (latest().isNull())
        return QStringLiteral("\"%1\" does not show a single picture.").arg(m_path);
    if (m_moves)
        setPlaying(false);
    else
        m_player->stop();
    return std::nullopt;
}

void PictureSource::setPlaying(bool playing)
{
    m_player->setStalled(!playing);
}

QImage PictureSource::latest() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->latest;
}

} // namespace kelvara::demo
