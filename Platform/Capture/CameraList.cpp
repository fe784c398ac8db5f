#include "Platform/Capture/CameraList.h"

#include <algorithm>

namespace kelvara {

namespace {

bool hasId(const std::vector<CameraDescription>& cameras, const QString& id)
{
    return std::any_of(
        cameras.begin(), cameras.end(), [&](const CameraDescription& camera) { return camera.id == id; });
}

/// True for the list of a start: numbered from 0, the second half repeating the first.
bool isDoubled(const std::vector<CameraDescription>& cameras)
{
    const std::size_t half = cameras.size() / 2;
    if (half == 0 || cameras.size() % 2 != 0)
        return false;
    for (std::size_t i = 0; i < cameras.size(); ++i)
        if (cameras[i].id != QString::number(i) || cameras[i].name != cameras[i % half].name
            || cameras[i].position != AVCaptureDevicePosition::Unspecified)
            return false;
    return true;
}

} // namespace

std::vector<CameraDescription> CameraList::update(const std::vector<CameraDescription>& told)
{
    if (isDoubled(told)) {
        const std::size_t half = told.size() / 2;
        for (std::size_t i = 0; i < half; ++i)
            m_echoes.emplace(told[i].id, told[i + half].id);
    }
    std::vector<CameraDescription> present = told;
    for (const auto& [first, second] : m_echoes) {
        const bool gone = !hasId(told, first) || !hasId(told, second);
        std::erase_if(present, [&, &one = first, &other = second](const CameraDescription& camera) {
            return camera.id == other || (gone && camera.id == one);
        });
    }
    return present;
}

} // namespace kelvara
