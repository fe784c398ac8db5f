#pragma once

#include <QImage>
#include <QTemporaryFile>

namespace kelvara::demo {

/// The browser's settings for the demo, which must be made before its first page: where root may not use the sandbox it
/// is off, and a picture of the person stands in for a camera. Main thread.
class PretendedCamera final
{
public:
    /// A null picture: the device's own camera. Counts when the browser starts and never again.
    void show(const QImage& picture);

private:
    QTemporaryFile m_film; ///< Removed at the end.
};

} // namespace kelvara::demo
