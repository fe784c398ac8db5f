#pragma once

#include "Kelvara/QorvelKycView.h"
#include "Kelvara/QorvelKycView_p.h"
#include "Platform/Capture/ReplayCamera.h"
#include "Platform/Chip/NFCReaderSession.h"
#include "Platform/Conference/ConferenceService.h"
#include "Platform/Foundation/UserDefaults.h"
#include "Platform/Vision/VNDetectRectanglesRequest.h"
#include "Platform/Vision/VisionDetectors.h"

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace kelvara::test {

inline QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

/// Runs the event loop until the condition holds; false when it never did within the limit.
inline bool spinUntil(const std::function<bool()>& condition, int limit = 5000)
{
    return QTest::qWaitFor(condition, limit);
}

/// Runs what is queued for the main thread, and what that queues in turn.
inline void settle()
{
    for (int round = 0; round < 6; ++round)
        QCoreApplication::processEvents();
}

/// Finds what it is told to find: the flow is tested apart from the detectors' eyesight.
struct ToldDetectors
{
    struct Told
    {
        std::atomic<bool> card { false };
        std::atomic<bool> face { false };
        std::atomic<int> delayMs { 0 };
        std::atomic<int> performed { 0 }; ///< Both searches together.
        std::atomic<int> cardSearches { 0 };
        std::atomic<int> faceSearches { 0 };
        Guarded<std::optional<RectangleLimits>> limits; ///< Of the last search for a card.
        std::atomic<int> lastWidth { 0 };
        std::atomic<int> lastHeight { 0 };
    };
    std::shared_ptr<Told> told = std::make_shared<Told>();

    [[nodiscard]] std::shared_ptr<const VisionDetectors> make(
        std::shared_ptr<const TextRectangleDetector> text = nullptr) const;
};

struct NfcPhone final : NFCReaderSession
{
    [[nodiscard]] bool readingAvailable() const override { return true; }
};

/// Writes down every call, and does in it what the test asks.
struct RecordingDelegate : QorvelKycViewDelegate
{
    struct Photo
    {
        UIImage image;
        QString text;
        UIImage crop;
        QString cropText;
    };
    QStringList calls;
    std::vector<Photo> photos;
    std::shared_ptr<SdkModel> record;
    const NFCPassportModel* passport = nullptr; ///< Borrowed from the view's record.
    std::function<void(QorvelKycView&, const QString&)> during;

    void note(QorvelKycView& view, const QString& call)
    {
        calls << call;
        if (const auto action = during) // a copy: the action may delete this delegate
            action(view, call);
    }
    void photo(QorvelKycView& view, const QString& call, Photo photo)
    {
        photos.push_back(std::move(photo));
        note(view, call);
    }
    void didDetectSdkDataBeforeJitsi(QorvelKycView& view, const std::shared_ptr<SdkModel>& model) override
    {
        record = model;
        note(view, QStringLiteral("jitsi"));
    }
    void didCaptureIdFrontPhoto(QorvelKycView& view, const UIImage& image, const QString& text, const UIImage& crop,
        const QString& cropText) override
    {
        photo(view, QStringLiteral("front"), { image, text, crop, cropText });
    }
    void didCaptureIdBackPhoto(QorvelKycView& view, const UIImage& image, const QString& text, const UIImage& crop,
        const QString& cropText) override
    {
        photo(view, QStringLiteral("back"), { image, text, crop, cropText });
    }
    void didCaptureSelfiePhoto(QorvelKycView& view, const UIImage& image, const QString& text, const UIImage& crop,
        const QString& cropText) override
    {
        photo(view, QStringLiteral("selfie"), { image, text, crop, cropText });
    }
    void didReadNfc(QorvelKycView& view, const NFCPassportModel& didRead) override
    {
        passport = &didRead;
        note(view, QStringLiteral("nfc"));
    }
    void didClose(QorvelKycView& view, const std::shared_ptr<SdkModel>& model) override
    {
        record = model;
        note(view, QStringLiteral("close"));
    }
};

/// A device with two replay cameras that show a moving pattern.
struct Device
{
    std::shared_ptr<ReplayCamera> back;
    std::shared_ptr<ReplayCamera> front;
    ToldDetectors eyes;
    std::shared_ptr<const TextRectangleDetector> text; ///< Null: no text is seen.
    bool hasNfc = false;
    std::shared_ptr<ConferenceService> conference; ///< Null: no video calls.
    std::shared_ptr<chip::CardTerminal> terminal; ///< Where cards come from; implies NFC.

    static std::shared_ptr<ReplayCamera> camera(AVCaptureDevicePosition position, ReplayCameraOptions options = {});
    static Device phone();
    static Device withoutCameras() { return {}; }
    [[nodiscard]] PlatformServices services() const;
};

/// A view on a device, shown, with a delegate.
struct Stage
{
    Device device;
    RecordingDelegate delegate;
    QPointer<QorvelKycView> view;

    explicit Stage(Device made = Device::phone(), QSize size = { 390, 844 });
    ~Stage() { delete view.data(); }

    [[nodiscard]] QorvelKycViewPrivate& d() const { return QorvelKycViewPrivate::of(*view); }
    void setSteps(const QList<ViewType>& steps);
    /// Waits until the shutter is on, and presses it with the mouse. False when it never was.
    bool shoot();
    /// Card and face as the present step wants them.
    void show(bool card, bool face);
    /// The texts of the visible labels, joined.
    [[nodiscard]] QString shownText() const;
    [[nodiscard]] bool isShown(const QWidget* control) const { return control->isVisibleTo(view); }
};

} // namespace kelvara::test
