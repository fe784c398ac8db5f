#include "Platform/Capture/AVCaptureConnection.h"

namespace kelvara {

int AVCaptureConnection::rotation() const
{
    const int upright = m_sensorRotation.load();
    if (upright == 0)
        return 0;
    // The sensor's rotation is told for portrait; the other orientations lie quarter turns away from it.
    int turn = 0;
    switch (m_orientation.load()) {
    case AVCaptureVideoOrientation::Portrait:
        break;
    case AVCaptureVideoOrientation::PortraitUpsideDown:
        turn = 180;
        break;
    case AVCaptureVideoOrientation::LandscapeRight:
        turn = 270;
        break;
    case AVCaptureVideoOrientation::LandscapeLeft:
        turn = 90;
        break;
    }
    return (upright + turn) % 360;
}

} // namespace kelvara
