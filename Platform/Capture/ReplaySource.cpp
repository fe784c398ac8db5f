#include "Platform/Capture/ReplaySourceData.h"

#include <QFileInfo>
#include <QImageReader>

#include <utility>

namespace kelvara {

namespace {

struct GeneratorSource final : ReplaySource::Data
{
    struct Reader final : ReplayReader
    {
        explicit Reader(ReplayGenerator function) : generator(std::move(function)) { }
        QImage next(std::int64_t index, std::chrono::microseconds time) override { return generator(index, time); }
        ReplayGenerator generator;
    };

    explicit GeneratorSource(ReplayGenerator function) : generator(std::move(function)) { }

    std::optional<QString> problem() const override
    {
        if (!generator)
            return QStringLiteral("There is no generator function.");
        return std::nullopt;
    }

    std::unique_ptr<ReplayReader> open() const override
    {
        return generator ? std::make_unique<Reader>(generator) : nullptr;
    }

    ReplayGenerator generator;
};

} // namespace

std::optional<QString> replayFileProblem(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return QStringLiteral("There is no file or folder \"%1\".").arg(path);
    // To open a pipe is to wait for whoever writes into it.
    if (!info.isFile() && !info.isDir())
        return QStringLiteral("\"%1\" is neither a file nor a folder.").arg(path);
    if (!info.isReadable())
        return QStringLiteral("\"%1\" may not be read.").arg(path);
    return std::nullopt;
}

ReplaySource ReplaySource::still(const QString& path)
{
    return ReplaySource(makeStillSource(path));
}

ReplaySource ReplaySource::still(const QImage& image)
{
    return ReplaySource(makeStillSource(image));
}

ReplaySource ReplaySource::folder(const QString& path)
{
    return ReplaySource(makeFolderSource(path));
}

ReplaySource ReplaySource::video(const QString& path)
{
    return ReplaySource(makeVideoSource(path));
}

ReplaySource ReplaySource::path(const QString& path)
{
    if (QFileInfo(path).isDir())
        return folder(path);
    if (replayFileProblem(path))
        return still(path);
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    if (reader.canRead())
        return still(path);
    return video(path);
}

ReplaySource ReplaySource::generator(ReplayGenerator generator)
{
    return ReplaySource(std::make_shared<GeneratorSource>(std::move(generator)));
}

std::optional<QString> ReplaySource::problem() const
{
    if (!m_data)
        return QStringLiteral("There is no source.");
    return m_data->problem();
}

} // namespace kelvara
