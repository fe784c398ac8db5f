#pragma once

#include <QImage>
#include <QList>
#include <QSize>
#include <QString>

namespace kelvara::demo {

struct GalleryScreen
{
    QString name;
    QImage image;
};

/// The screens that a host meets on lesser devices and with other steps, each from a short-lived view of its own that
/// never appears on the display. Spins the event loop. Main thread.
[[nodiscard]] QList<GalleryScreen> takeGallery(const QSize& size);

} // namespace kelvara::demo
