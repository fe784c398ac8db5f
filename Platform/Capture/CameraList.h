#pragma once

#include "Platform/Capture/CameraChoice.h"

#include <map>
#include <vector>

namespace kelvara {

/// Makes a true list of cameras of what Qt Multimedia tells. Its GStreamer back end numbers cameras as it meets them,
/// and meets those that are plugged in at the start twice: once by asking, once by being told. When such a camera is
/// unplugged only one of the two goes. Internal; main thread.
class CameraList
{
public:
    /// The cameras that are really there, given what is told now.
    [[nodiscard]] std::vector<CameraDescription> update(const std::vector<CameraDescription>& told);

private:
    std::map<QString, QString> m_echoes; ///< The second identifier of a camera by its first.
};

} // namespace kelvara
