#include "Kelvara/ImageCatalog.h"

#include <QCache>
#include <QDir>
#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <memory>
#include <utility>

// A static library's resources are only there once they were named outside of any namespace.
static void registerKelvaraResources()
{
    Q_INIT_RESOURCE(kelvara);
}

namespace kelvara {

namespace {

constexpr int kKeptBytes = 8 << 20;
/// Larger than any control on any screen; keeps a senseless size from exhausting the memory.
constexpr int kLargestSide = 4096;

/// Which drawing a rendered image shows. An image that was painted on has another key: it is no drawing any more.
QHash<qint64, QString>& namesByKey()
{
    static QHash<qint64, QString> names;
    return names;
}

QDir folder()
{
    [[maybe_unused]] static const bool registered = (registerKelvaraResources(), true);
    return QDir(QStringLiteral(":/kelvara/images"));
}

QSvgRenderer* drawing(const QString& name)
{
    static QHash<QString, std::shared_ptr<QSvgRenderer>> drawings;
    if (const auto known = drawings.constFind(name); known != drawings.constEnd())
        return known->get();
    if (!ImageCatalog::contains(name))
        return nullptr;
    const auto loaded = std::make_shared<QSvgRenderer>(folder().filePath(name + QStringLiteral(".svg")));
    return (drawings[name] = loaded).get();
}

} // namespace

QStringList ImageCatalog::names()
{
    QStringList names = folder().entryList({ QStringLiteral("*.svg") }, QDir::Files, QDir::Name);
    for (QString& name : names)
        name.chop(4);
    return names;
}

bool ImageCatalog::contains(const QString& name)
{
    static const QStringList known = names();
    return known.contains(name);
}

QSizeF ImageCatalog::naturalSize(const QString& name)
{
    const QSvgRenderer* svg = drawing(name);
    return svg ? QSizeF(svg->defaultSize()) : QSizeF();
}

QImage ImageCatalog::render(const QString& name, const QSize& pixels)
{
    static QCache<std::pair<QString, quint64>, QImage> kept(kKeptBytes);
    if (pixels.isEmpty() || pixels.width() > kLargestSide || pixels.height() > kLargestSide)
        return {};
    const std::pair key(name, (quint64(pixels.width()) << 32) | quint64(pixels.height()));
    if (const QImage* known = kept.object(key))
        return *known;
    QSvgRenderer* svg = drawing(name);
    if (!svg)
        return {};
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        svg->render(&painter, QRectF(image.rect()));
    }
    namesByKey().insert(image.cacheKey(), name);
    kept.insert(key, new QImage(image), static_cast<int>(image.sizeInBytes()));
    return image;
}

QString ImageCatalog::nameOf(const QImage& image)
{
    return namesByKey().value(image.cacheKey());
}

std::optional<UIImage> getMyImage(const QString& named, double devicePixelRatio)
{
    const QSizeF natural = ImageCatalog::naturalSize(named);
    if (natural.isEmpty())
        return std::nullopt;
    const double ratio = std::max(1.0, devicePixelRatio > 0 ? devicePixelRatio : qGuiApp->devicePixelRatio());
    const QImage image = ImageCatalog::render(named, (natural * ratio).toSize());
    if (image.isNull())
        return std::nullopt;
    return UIImage(image, ratio);
}

} // namespace kelvara
