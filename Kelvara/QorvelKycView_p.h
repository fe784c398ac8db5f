#pragma once

#include "Kelvara/ActionButton.h"
#include "Kelvara/Announcer.h"
#include "Kelvara/CaptureGeometry.h"
#include "Kelvara/CircleButton.h"
#include "Kelvara/FlipImageView.h"
#include "Kelvara/Guarded.h"
#include "Kelvara/IconButton.h"
#include "Kelvara/LinkedListViewType.h"
#include "Kelvara/OcrbModel.h"
#include "Kelvara/OvalOverlayView.h"
#include "Kelvara/QKCutoutView.h"
#include "Kelvara/QorvelKycView.h"
#include "Kelvara/StatementLabel.h"
#include "Kelvara/ToggleButton.h"
#include "Platform/Capture/AVCaptureDeviceInput.h"
#include "Platform/Capture/AVCaptureSession.h"
#include "Platform/Capture/AVCaptureVideoDataOutput.h"
#include "Platform/Capture/AVCaptureVideoPreviewLayer.h"
#include "Platform/Conference/JitsiMeetView.h"
#include "Platform/Conference/JitsiMeetViewDelegate.h"
#include "Platform/Foundation/MainQueue.h"
#include "Platform/Foundation/SerialQueue.h"
#include "Platform/Imaging/CIImage.h"
#include "Platform/Mrz/QKMRZParser.h"
#include "Platform/Mrz/TesseractEngine.h"
#include "Platform/Vision/VNDetectFaceRectanglesRequest.h"
#include "Platform/Vision/VNDetectRectanglesRequest.h"
#include "Platform/Vision/VNDetectTextRectanglesRequest.h"

#include <QColor>
#include <QPointer>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kelvara {

class PassportReader;
struct IDCardModel;

/// The view behind `QorvelKycView`: every stored member and the operations on them, spread over one file a purpose.
///
/// Two threads meet here. The main thread owns all of it but the members under "Shared" and "videoQueue only".
/// Whatever calls out to the host may come back with the view deleted: such operations hold a `QPointer` to the view
/// and touch nothing after it turned null.
class QorvelKycViewPrivate final : public AVCaptureVideoDataOutputSampleBufferDelegate, public JitsiMeetViewDelegate
{
public:
    QorvelKycViewPrivate(QorvelKycView* view, PlatformServices platform);
    ~QorvelKycViewPrivate() override;
    static QorvelKycViewPrivate& of(QorvelKycView& view) { return *view.d; }

    // Surface and start-up: QorvelKycView.cpp
    void initialize();
    void setViewStyle();
    void initiateScreen();
    void addAppObservers();
    [[nodiscard]] QorvelKycViewDelegate* delegate() const;
    /// Queues a block for the main thread that is dropped when the view has died. Any thread.
    void onMain(std::function<void()> block) const;

    // Steps: QorvelKycViewFlow.cpp
    void setViewTypes(const QList<ViewType>& types);
    void showViewType(ViewType viewType);
    void showIdPhotoView();
    void showSelfieView();
    void showNfcView();
    void showJitsiView();
    void getNextViewType();
    void viewChange();
    void showInformation(const QString& text);
    void closeButtonInput();
    void runTimedCode();
    /// A side or a step begins: whatever was detected before no longer counts, on either thread. Where the
    /// shutter was on, who hears that it is off may have the view deleted.
    void startSide();
    /// A step begins, whose screen is composed next.
    void startStep();

    // Controls: QorvelKycViewScreens.cpp
    void initiateStatement();
    void setCardInstruction(const QString& text);
    void initiateFlashButton();
    void initiateTakePhotoButton();
    void initiateNfcReadLabel(const QString& forceText);
    void initiateNfcReadButton();
    void initiateInformationNextButton();
    void initiateInformationLabel(const QString& text);
    void initiateCloseButton();
    void initiateFlipImageView();
    void initiateJitsiLabel();
    void initiateJitsiButton();
    void add_removeInformationView(bool isAdd);
    void add_removeNfcViews(bool isAdd);
    void add_removeJitsiInfoViews(bool isAdd);
    void add_removeJitsiView(bool isAdd);
    void add_removeCloseButton(bool isAdd);
    void add_removeCutoutView(bool isAdd);
    void add_removeCutoutSelfieView(bool isAdd);
    void add_removeTakePhotoButton(bool isAdd);
    void add_removeFlashButton(bool isAdd);
    void add_removeIdPhotoLabel(bool isAdd);
    void add_removeFlipImageView(bool isAdd);
    void watchOverlays();
    void addPreviewLayer();
    void removePreviewLayer();

    // Where they lie, and how large their letters are: QorvelKycViewLayout.cpp
    static constexpr int kStatementSize = 18;
    static constexpr int kInformationSize = 15;
    void layoutScreen();
    void layoutActionButtons();
    void layoutInstruction(int line);
    void setTextScale(double scale);
    /// Makes a label's letters as large as they are wanted and its height allows; gives the height that they need.
    [[nodiscard]] int fitLetters(StatementLabel* label, int points, int width, int highest) const;

    // Assistive technology and keyboard: QorvelKycViewAccess.cpp
    void initiateAccess();
    /// Says what the present screen is about.
    void announceScreen();
    /// Says, once a side, that the shutter can be pressed.
    void announceReady();
    /// Which control has the keyboard, while a screen goes; null when it is not one of the view's own.
    [[nodiscard]] ControlButton* focusedControl() const;
    /// Gives the keyboard to the new screen's main control, in case the one that had it is gone.
    void settleFocus(ControlButton* before, bool showsFocus);
    /// What lies beneath a call cannot be seen, and so must not be pressed by Tab and Enter.
    void watchCall(JitsiMeetView* call);
    void settleFocusOfCall();

    // Camera: QorvelKycViewCapture.cpp
    void setupAndStartCaptureSession();
    void setupInputs();
    void setupPreviewLayer();
    void setupOutput();
    void switchCamera(const std::shared_ptr<AVCaptureInput>& input, bool mirrored);
    void startScanning();
    void stopScanning();
    void appDidEnterBackground();
    void appWillEnterForeground();
    void setScanning(bool running);
    void flashState();
    void publishGeometry();

    // Per frame: QorvelKycViewFrames.cpp (videoQueue)
    void captureOutput(
        AVCaptureVideoDataOutput& output, const CMSampleBuffer& sampleBuffer, AVCaptureConnection& connection) override;
    void performVisionRequest(const QImage& image, CGImagePropertyOrientation orientation);
    [[nodiscard]] std::vector<std::shared_ptr<VNRequest>> createVisionRequests();
    [[nodiscard]] std::shared_ptr<VNRequest> rectanglesRequest();
    [[nodiscard]] std::shared_ptr<VNRequest> mrzRequest();
    [[nodiscard]] std::shared_ptr<VNRequest> facesRequest();
    /// Hands a result of the frame in analysis to the main thread, where it counts only if the side is still the one
    /// it was seen on.
    void onMainForThisSide(std::function<void()> block);

    // Card and readiness: QorvelKycViewCard.cpp
    void handleRectanglesRequest(const VNRequest& request, const std::optional<VNError>& error);
    void didDetectCardImage(const QImage& image);
    void updateScanArea();
    void updateOverlay(ShapeLayer* border, bool ready);
    [[nodiscard]] static QRectF cutoutRect(const CaptureGeometry& geometry, const QImage& image);
    [[nodiscard]] static QImage documentImage(const CaptureGeometry& geometry, const QImage& image);
    [[nodiscard]] static UIImage enlargedDocumentImage(const CaptureGeometry& geometry, const QImage& image);

    // Faces and selfie: QorvelKycViewFace.cpp
    void handleFacesRequest(const VNRequest& request, const std::optional<VNError>& error);
    void didDetectFaceImage(const CIImage& image, const QRectF& rect);
    [[nodiscard]] static UIImage getUIImage(const CIImage& image);
    [[nodiscard]] static QRectF cutoutSelfieRect(const CaptureGeometry& geometry, const QImage& image);
    [[nodiscard]] static QImage selfieImage(const CaptureGeometry& geometry, const QImage& image);
    [[nodiscard]] static UIImage enlargedSelfieImage(const CaptureGeometry& geometry, const QImage& image);

    // MRZ: QorvelKycViewMrz.cpp (videoQueue, but for the last)
    void handleMrzRequest(const VNRequest& request, const std::optional<VNError>& error);
    /// Where the long lines lie together, in pixels of a frame of that size (origin top-left). Null when there are
    /// none, or when they stand too far apart to be a zone.
    [[nodiscard]] static QRectF mrzBand(const std::vector<VNTextObservation>& lines, const QSizeF& frame);
    [[nodiscard]] std::optional<QKMRZResult> mrz(const QImage& from);
    [[nodiscard]] static std::optional<std::vector<MrzLineReading>> mrzLines(const TesseractText& from);
    void didDetectMrzData(const CIImage& image, const QRectF& rect, const std::shared_ptr<QKMRZScanResult>& scanResult);

    // Shutter: QorvelKycViewCommit.cpp
    void analyzeCard();
    void commit();
    void commitSelfie();
    void commitFront();
    void commitBack();

    // Chip: QorvelKycViewNfc.cpp
    void setupReader();
    void nfcReadInput();
    void readCard(const std::optional<IDCardModel>& model);
    /// Five circles, as many of them filled as there are whole fifths in the percentage. Fatal from 120 on. Any thread.
    [[nodiscard]] static QString handleProgress(int percentualProgress);
    void setIDCard(const std::shared_ptr<IDCardUtil>& holder);
    void callResultScreen(const std::shared_ptr<IDCardUtil>& holder);

    // Video call: QorvelKycViewCall.cpp
    void setJitsiConference(const QString& url, const QString& room, const QString& token);
    void openJitsiMeet(const QString& url, const QString& room, const QString& token);
    void conferenceWillJoin(const std::optional<QVariantMap>& data) override;
    void conferenceJoined(const std::optional<QVariantMap>& data) override;
    void conferenceTerminated(const std::optional<QVariantMap>& data) override;
    void cleanUp();
    /// The one on the screen and all that were joined.
    [[nodiscard]] QList<JitsiMeetView*> callViews() const;
    /// The screen changes: a call belongs to its step, and nothing that earlier calls left may cover the next screen.
    void settleCall();
    /// A call that goes on lies over whatever screen was composed for its step.
    void raiseCall();

    QorvelKycView* const q;
    const PlatformServices services;

    // What the host set.
    bool forceNfc = false;
    double textScale = 1;
    QorvelKycViewDelegate* delegateObject = nullptr; ///< Borrowed; valid while `delegateLife` has not expired.
    std::weak_ptr<const void> delegateLife;
    LinkedListViewType<ViewType> viewTypeLinkedList;
    QList<ViewType> _viewTypes;

    // Flow.
    ViewType selectedViewType = ViewType::idPhoto;
    std::shared_ptr<SdkModel> sdkModel = std::make_shared<SdkModel>();
    bool isFinish = false;
    bool isFront = true;
    bool hasNfc = false;
    std::uint64_t side = 0; ///< See `CaptureGeometry::side`.
    QTimer* refreshTimer = nullptr;

    // Capture.
    QSizeF bufferSize { 0, 0 };
    SerialQueue videoDataOutputQueue { QStringLiteral("videoDataOutputQueue"), QualityOfService::UserInitiated };
    SerialQueue videoQueue { QStringLiteral("videoQueue"), QualityOfService::UserInteractive };
    std::shared_ptr<AVCaptureSession> captureSession = std::make_shared<AVCaptureSession>();
    std::shared_ptr<AVCaptureVideoDataOutput> videoDataOutput = std::make_shared<AVCaptureVideoDataOutput>();
    std::shared_ptr<AVCaptureVideoPreviewLayer> videoPreviewLayer = std::make_shared<AVCaptureVideoPreviewLayer>();
    std::shared_ptr<AVCaptureDevice> backCamera;
    std::shared_ptr<AVCaptureDevice> frontCamera;
    std::shared_ptr<AVCaptureInput> backInput;
    std::shared_ptr<AVCaptureInput> frontInput;
    QMetaObject::Connection observer;
    bool isScanning = false;
    bool isScanningPaused = false;
    bool isCommitting = false; ///< From a tap until the delegate has been told and the flow has moved on.
    bool isPreviewAdded = false;
    QString noCameraText;
    const QColor cameraColor { 27, 170, 194 };

    // Controls, owned by the view; made at once, configured by the `initiate…` block. Buttons are made in the order in
    // which they lie on the screen from top to bottom, as that is the way Tab goes.
    IconButton* closeButton;
    ActionButton* informationNextButton;
    ActionButton* nfcReadButton;
    ActionButton* jitsiButton;
    CircleButton* takePhotoButton;
    ToggleButton* flashButton;
    QKCutoutView* cutoutView;
    OvalOverlayView* cutoutSelfieView;
    StatementLabel* idPhotoLabel;
    StatementLabel* nfcReadLabel;
    StatementLabel* jitsiLabel;
    StatementLabel* informationLabel;
    FlipImageView* flipImageView;
    Announcer* announcer = nullptr;
    std::uint64_t readySaid = 0; ///< The side whose readiness was announced.

    // Call.
    JitsiMeetView* jitsiMeetView; ///< Owned by the view, like those that were joined before.
    bool inJitsi = false;
    std::optional<bool> focusBeforeCall; ///< Whether the ring showed, where a control had the focus as a call came.
    int joinedCalls = 0;
    std::function<void(const std::optional<QVariantMap>&)> didConferenceTerminated;

    // What was captured last.
    std::optional<UIImage> capturedImage;
    std::optional<UIImage> capturedFace;
    std::optional<UIImage> capturedMrz;

    // Shared between the main thread and videoQueue.
    std::atomic<bool> checkFace { false };
    std::atomic<bool> checkMrz { false };
    std::atomic<bool> checkRectangle { false };
    Guarded<std::optional<QImage>> inputCGImage; ///< The frame in analysis, cut to the scan area.
    Guarded<std::optional<CIImage>> inputCIImage; ///< The same as a filter image, when it was cut.
    Guarded<std::shared_ptr<const CaptureGeometry>> geometry;

    // videoQueue only.
    std::shared_ptr<const CaptureGeometry> frameGeometry; ///< Of the frame in analysis.
    std::uint64_t queueSide = 0; ///< Frames of other sides were taken before the present one began.
    std::shared_ptr<VNDetectFaceRectanglesRequest> lazyFacesRequest;
    std::shared_ptr<VNDetectTextRectanglesRequest> lazyMrzRequest;
    std::shared_ptr<VNDetectRectanglesRequest> lazyRectanglesRequest;
    TesseractEngine tesseract { QStringLiteral("ocrb"), ocrbModelFolder(), TesseractEngineMode::TesseractOnly };
    QKMRZParser mrzParser { true };

    /// Lives as long as the view. Its thread is the third one that meets here: what it calls only builds texts and
    /// queues blocks for the main thread.
    std::unique_ptr<PassportReader> idCardReader;

    LifeToken life;
};

} // namespace kelvara
