#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Foundation/MainQueue.h"
#include "Platform/Imaging/UIImage.h"

#include <QString>

#include <memory>

namespace kelvara {

class NFCPassportModel;
class QorvelKycView;
class SdkModel;

/// Receives a view's results. Every method is called on the main thread, and every one may delete the view, set new
/// steps or take itself away. The view never owns its delegate and notices when it is destroyed.
///
/// For the three `didCapture…` methods `image` is the photograph as taken (cut to the scan area), `cropImage` the card
/// with its perspective corrected or the face, and the texts are the base64 of exactly these images' PNG encodings:
/// the values just stored in the view's `SdkModel`.
class KELVARA_EXPORT QorvelKycViewDelegate
{
public:
    QorvelKycViewDelegate() = default;
    virtual ~QorvelKycViewDelegate() = default;
    QorvelKycViewDelegate(const QorvelKycViewDelegate&) { }
    QorvelKycViewDelegate& operator=(const QorvelKycViewDelegate&) { return *this; }

    /// The video-call step begins: all that was collected so far. The step itself changes only after this call, so
    /// `QorvelKycView::setJitsiConference` is ignored in here (unless the call is the flow's first step), and steps set
    /// in here give way to the call: arrange the conference, and call it later.
    virtual void didDetectSdkDataBeforeJitsi(QorvelKycView& view, const std::shared_ptr<SdkModel>& didDetect) = 0;

    /// The card's front was photographed.
    virtual void didCaptureIdFrontPhoto(QorvelKycView& view, const UIImage& image, const QString& imageBase64,
        const UIImage& cropImage, const QString& cropImageBase64)
        = 0;

    /// The card's back was photographed. The flow moves on right after this call: steps set inside it lose their
    /// first one. Set them a turn of the event loop later instead.
    virtual void didCaptureIdBackPhoto(QorvelKycView& view, const UIImage& image, const QString& imageBase64,
        const UIImage& cropImage, const QString& cropImageBase64)
        = 0;

    /// The selfie was taken. As with the back, the flow moves on right after this call.
    virtual void didCaptureSelfiePhoto(QorvelKycView& view, const UIImage& image, const QString& imageBase64,
        const UIImage& cropImage, const QString& cropImageBase64)
        = 0;

    /// The card's chip was read. As with the back, the flow moves on right after this call; from the step that
    /// the screen shows by then, should the host have left this one while the card was read.
    virtual void didReadNfc(QorvelKycView& view, const NFCPassportModel& didRead) = 0;

    /// The person pressed the close button. The view does nothing else: taking it away is the host's.
    virtual void didClose(QorvelKycView& view, const std::shared_ptr<SdkModel>& didDetect) = 0;

    /// Expires with the delegate; how a view notices that it has gone.
    [[nodiscard]] std::weak_ptr<const void> lifeToken() const { return m_life.token(); }

private:
    LifeToken m_life;
};

} // namespace kelvara
