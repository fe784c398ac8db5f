#include "Platform/Capture/ReplaySourceData.h"

#include <QFile>

#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

#include <mutex>
#include <utility>

namespace kelvara {

namespace {

std::optional<cv::VideoCapture> openVideo(const QString& path)
{
    if (replayFileProblem(path))
        return std::nullopt;
    try {
        cv::VideoCapture capture(QFile::encodeName(path).toStdString(), cv::CAP_FFMPEG);
        if (!capture.isOpened())
            return std::nullopt;
        capture.set(cv::CAP_PROP_ORIENTATION_AUTO, 1);
        return capture;
    } catch (const cv::Exception&) {
        return std::nullopt;
    }
}

/// Frames of changing size simply come in their own size: each picture stands for itself.
QImage nextFrame(cv::VideoCapture& capture, cv::Mat& frame)
{
    try {
        if (!capture.read(frame) || frame.empty() || frame.type() != CV_8UC3)
            return {};
        QImage image(frame.cols, frame.rows, QImage::Format_RGB32);
        if (image.isNull())
            return {};
        cv::Mat pixels(frame.rows, frame.cols, CV_8UC4, image.bits(), static_cast<std::size_t>(image.bytesPerLine()));
        cv::cvtColor(frame, pixels, cv::COLOR_BGR2BGRA);
        return image;
    } catch (const cv::Exception&) {
        return {};
    }
}

struct VideoSource final : ReplaySource::Data
{
    struct Reader final : ReplayReader
    {
        explicit Reader(const cv::VideoCapture& video) : capture(video) { }
        QImage next(std::int64_t, std::chrono::microseconds) override { return nextFrame(capture, frame); }
        cv::VideoCapture capture;
        cv::Mat frame;
    };

    explicit VideoSource(QString file) : path(std::move(file)) { }

    std::optional<QString> problem() const override
    {
        // Asked at every start, on the main thread; opening takes tens of milliseconds.
        std::call_once(m_asked, [this] {
            if ((m_problem = replayFileProblem(path)))
                return;
            auto capture = openVideo(path);
            cv::Mat frame;
            if (!capture || nextFrame(*capture, frame).isNull())
                m_problem = QStringLiteral("\"%1\" cannot be read as a picture or a video.").arg(path);
        });
        return m_problem;
    }

    std::unique_ptr<ReplayReader> open() const override
    {
        auto capture = openVideo(path);
        return capture ? std::make_unique<Reader>(std::move(*capture)) : nullptr;
    }

    const QString path;

private:
    mutable std::once_flag m_asked;
    mutable std::optional<QString> m_problem;
};

} // namespace

std::shared_ptr<const ReplaySource::Data> makeVideoSource(const QString& path)
{
    return std::make_shared<VideoSource>(path);
}

} // namespace kelvara
