#include "Platform/Capture/ReplaySourceData.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>

#include <mutex>
#include <utility>

namespace kelvara {

namespace {

/// A folder's pictures are kept decoded up to this much; what is beyond is read again on every pass.
constexpr std::size_t kKeptBytes = 128U * 1024 * 1024;

/// Pictures larger than any camera's are refused before memory is taken for them.
constexpr qint64 kLargestPicture = 64LL * 1024 * 1024;

/// The upright picture of a file, whatever its suffix says; null, with the reason, when there is none.
QImage readPicture(const QString& path, QString& reason)
{
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (qint64 { size.width() } * size.height() > kLargestPicture) {
        reason = QStringLiteral("it is too large");
        return {};
    }
    QImage image = reader.read();
    if (image.isNull())
        reason = reader.errorString();
    return image;
}

struct StillSource final : ReplaySource::Data
{
    struct Reader final : ReplayReader
    {
        explicit Reader(QImage picture) : image(std::move(picture)) { }
        QImage next(std::int64_t, std::chrono::microseconds) override { return image; }
        QImage image;
    };

    explicit StillSource(QString file) : path(std::move(file)) { }
    explicit StillSource(const QImage& picture) : image(picture)
    {
        if (picture.isNull())
            trouble = QStringLiteral("The picture is empty.");
    }

    void load() const
    {
        std::call_once(loaded, [this] {
            if (!image.isNull() || trouble || (trouble = replayFileProblem(path)))
                return;
            QString reason;
            image = readPicture(path, reason);
            if (image.isNull())
                trouble = QStringLiteral("\"%1\" cannot be read as a picture: %2.").arg(path, reason);
        });
    }

    std::optional<QString> problem() const override
    {
        load();
        return trouble;
    }

    std::unique_ptr<ReplayReader> open() const override
    {
        load();
        return image.isNull() ? nullptr : std::make_unique<Reader>(image);
    }

    const QString path;
    mutable std::once_flag loaded;
    mutable QImage image;
    mutable std::optional<QString> trouble;
};

/// A folder's pictures, decoded as they are asked for.
class Album
{
public:
    explicit Album(const QStringList& paths)
    {
        for (const QString& path : paths)
            m_pages.push_back({ path, {}, false });
    }

    [[nodiscard]] std::size_t count() const { return m_pages.size(); }

    /// Null for a file that looked like a picture and is none after all.
    [[nodiscard]] QImage picture(std::size_t number)
    {
        const std::lock_guard lock(m_mutex);
        Page& page = m_pages[number];
        if (page.broken || !page.kept.isNull())
            return page.kept;
        QString reason;
        QImage image = readPicture(page.path, reason);
        page.broken = image.isNull();
        const auto bytes = static_cast<std::size_t>(image.sizeInBytes());
        if (m_keptBytes + bytes <= kKeptBytes) {
            m_keptBytes += bytes;
            page.kept = image;
        }
        return image;
    }

private:
    struct Page
    {
        QString path;
        QImage kept;
        bool broken;
    };
    std::mutex m_mutex;
    std::vector<Page> m_pages;
    std::size_t m_keptBytes = 0;
};

struct FolderSource final : ReplaySource::Data
{
    struct Reader final : ReplayReader
    {
        explicit Reader(std::shared_ptr<Album> pictures) : album(std::move(pictures)) { }

        QImage next(std::int64_t, std::chrono::microseconds) override
        {
            while (position < album->count())
                if (QImage image = album->picture(position++); !image.isNull())
                    return image;
            return {};
        }

        std::shared_ptr<Album> album;
        std::size_t position = 0;
    };

    explicit FolderSource(QString folder) : path(std::move(folder)) { }

    void load() const
    {
        std::call_once(loaded, [this] {
            if ((trouble = replayFileProblem(path)))
                return;
            QStringList pictures;
            for (const QFileInfo& file : QDir(path).entryInfoList(QDir::Files | QDir::Readable, QDir::Name)) {
                QImageReader reader(file.filePath());
                reader.setDecideFormatFromContent(true);
                if (reader.canRead())
                    pictures << file.filePath();
            }
            if (pictures.isEmpty())
                trouble = QStringLiteral("There are no pictures in the folder \"%1\".").arg(path);
            else
                album = std::make_shared<Album>(pictures);
        });
    }

    std::optional<QString> problem() const override
    {
        load();
        return trouble;
    }

    std::unique_ptr<ReplayReader> open() const override
    {
        load();
        return album ? std::make_unique<Reader>(album) : nullptr;
    }

    std::size_t frameCacheBytes() const override { return kKeptBytes; }

    const QString path;
    mutable std::once_flag loaded;
    mutable std::shared_ptr<Album> album;
    mutable std::optional<QString> trouble;
};

} // namespace

std::shared_ptr<const ReplaySource::Data> makeStillSource(const QString& path)
{
    return std::make_shared<StillSource>(path);
}

std::shared_ptr<const ReplaySource::Data> makeStillSource(const QImage& image)
{
    return std::make_shared<StillSource>(image);
}

std::shared_ptr<const ReplaySource::Data> makeFolderSource(const QString& path)
{
    return std::make_shared<FolderSource>(path);
}

} // namespace kelvara
