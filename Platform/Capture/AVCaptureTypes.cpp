#include "Platform/Capture/AVCaptureTypes.h"

namespace kelvara {

AVCaptureVideoOrientation videoOrientation(UIInterfaceOrientation interfaceOrientation)
{
    switch (interfaceOrientation) {
    case UIInterfaceOrientation::PortraitUpsideDown:
        return AVCaptureVideoOrientation::PortraitUpsideDown;
    case UIInterfaceOrientation::LandscapeRight:
        return AVCaptureVideoOrientation::LandscapeRight;
    case UIInterfaceOrientation::LandscapeLeft:
        return AVCaptureVideoOrientation::LandscapeLeft;
    case UIInterfaceOrientation::Portrait:
    case UIInterfaceOrientation::Unknown:
        break;
    }
    return AVCaptureVideoOrientation::Portrait;
}

} // namespace kelvara
