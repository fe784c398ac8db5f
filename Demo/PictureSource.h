#pragma once

#include "Platform/Capture/ReplayCamera.h"

#include <QImage>
#include <QString>

#include <memory>
#include <optional>

namespace kelvara::demo {

/// The pictures of a file or folder, upright, one after the other at their own pace. Main thread unless said otherwise.
class PictureSource
{
public:
    explicit PictureSource(const QString& path);
    ~PictureSource();

    /// One sentence that says why nothing can be shown; absent when there is a first picture. Waits for it.
    [[nodiscard]] std::optional<QString> open();

    /// False when one picture is shown for ever: then `latest` never changes.
    [[nodiscard]] bool moves() const { return m_moves; }
    /// Only what is shown needs to run on; opened, a source stands still.
    void setPlaying(bool playing);
    /// The picture of this moment. Any thread.
    [[nodiscard]] QImage latest() const;

private:
    struct Shared;
    QString m_path;
    bool m_moves = false;
    std::shared_ptr<Shared> m_shared;
    std::unique_ptr<ReplayCamera> m_player;
};

} // namespace kelvara::demo
