#include "Platform/Capture/AVCaptureDeviceInput.h"

#include "Platform/Capture/AVCaptureDevice.h"

namespace kelvara {

std::shared_ptr<AVCaptureDeviceInput> AVCaptureDeviceInput::make(std::shared_ptr<AVCaptureDevice> device)
{
    if (!device || !device->isConnected())
        return nullptr;
    return std::shared_ptr<AVCaptureDeviceInput>(new AVCaptureDeviceInput(std::move(device)));
}

} // namespace kelvara
