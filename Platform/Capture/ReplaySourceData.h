#pragma once

#include "Platform/Capture/ReplayCamera.h"

namespace kelvara {

/// One pass through a source's pictures. Internal; used on the camera's own thread.
class ReplayReader
{
public:
    virtual ~ReplayReader() = default;

    /// The next picture; null when the pass has ended. `index` counts the pass's pictures from 0.
    [[nodiscard]] virtual QImage next(std::int64_t index, std::chrono::microseconds time) = 0;
};

/// What stands behind a `ReplaySource`. Internal; any thread.
struct ReplaySource::Data
{
    virtual ~Data() = default;

    /// See `ReplaySource::problem`.
    [[nodiscard]] virtual std::optional<QString> problem() const = 0;

    /// Begins a pass; null when the source cannot be used.
    [[nodiscard]] virtual std::unique_ptr<ReplayReader> open() const = 0;

    /// How many bytes of finished frames are worth keeping, because the same pictures come again.
    [[nodiscard]] virtual std::size_t frameCacheBytes() const { return 0; }
};

/// Sources whose pictures come through a file's decoder. Internal.
[[nodiscard]] std::shared_ptr<const ReplaySource::Data> makeStillSource(const QString& path);
[[nodiscard]] std::shared_ptr<const ReplaySource::Data> makeStillSource(const QImage& image);
[[nodiscard]] std::shared_ptr<const ReplaySource::Data> makeFolderSource(const QString& path);
[[nodiscard]] std::shared_ptr<const ReplaySource::Data> makeVideoSource(const QString& path);

/// Why the path cannot even be opened for reading; absent when it can. Internal.
[[nodiscard]] std::optional<QString> replayFileProblem(const QString& path);

} // namespace kelvara
