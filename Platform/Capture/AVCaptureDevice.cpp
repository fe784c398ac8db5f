#include "Platform/Capture/AVCaptureDevice.h"

namespace kelvara {

bool AVCaptureDevice::setTorchModeOn(float)
{
    return false;
}

} // namespace kelvara
