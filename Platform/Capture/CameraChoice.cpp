#include "Platform/Capture/CameraChoice.h"

#include <vector>

namespace kelvara {

namespace {

using Cameras = std::span<const CameraDescription>;

std::optional<std::size_t> named(Cameras cameras, const QString& name)
{
    for (std::size_t i = 0; i < cameras.size(); ++i)
        if (cameras[i].id == name || cameras[i].name == name)
            return i;
    return std::nullopt;
}

/// The camera whose place is certain: by its name, or by what it says of itself.
std::optional<std::size_t> certain(Cameras cameras, AVCaptureDevicePosition position, const QString& name)
{
    if (!name.isEmpty())
        return named(cameras, name);
    for (std::size_t i = 0; i < cameras.size(); ++i)
        if (cameras[i].position == position)
            return i;
    return std::nullopt;
}

} // namespace

std::optional<std::size_t> chooseCamera(
    std::span<const CameraDescription> cameras, AVCaptureDevicePosition position, const CameraAssignment& assignment)
{
    const bool wantsFront = position == AVCaptureDevicePosition::Front;
    const QString& name = wantsFront ? assignment.front : assignment.back;
    const auto own = certain(cameras, position, name);
    if (own || !name.isEmpty())
        return own;

    const auto other = wantsFront ? certain(cameras, AVCaptureDevicePosition::Back, assignment.back)
                                  : certain(cameras, AVCaptureDevicePosition::Front, assignment.front);
    std::vector<std::size_t> unknown;
    for (std::size_t i = 0; i < cameras.size(); ++i)
        if (cameras[i].position == AVCaptureDevicePosition::Unspecified && i != other)
            unknown.push_back(i);
    // Where the other place is taken, the first that is left serves; else back comes before front.
    const std::size_t rank = wantsFront && !other ? 1 : 0;
    if (rank < unknown.size())
        return unknown[rank];
    const bool alone = cameras.size() == 1 && cameras[0].position == AVCaptureDevicePosition::Unspecified;
    return alone ? std::optional<std::size_t>(0) : std::nullopt;
}

} // namespace kelvara
