#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <functional>

namespace kelvara::demo {

/// Hands over the screens that a host meets on lesser devices and with other steps, each from a short-lived view of its
/// own that never appears on the display. Spins the event loop. Main thread.
void takeGallery(
    const QSize& size, double textScale, const std::function<void(const QString& name, const QImage& screen)>& taken);

} // namespace kelvara::demo
