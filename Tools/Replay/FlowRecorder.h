#pragma once

#include "Kelvara/QorvelKycViewDelegate.h"
#include "Tools/Replay/FlowLog.h"

#include <QVariantMap>

#include <functional>
#include <optional>

namespace kelvara::replay {

/// The host: logs what the view tells, and does in a call what the script asks. Facts are sizes, verdicts, and whether
/// what was read is what the specimen shows; never a text or picture of a card. Main thread.
class FlowRecorder final : public QorvelKycViewDelegate
{
public:
    /// `seed`: of the specimen; absent where pictures come from files, of which nothing is known.
    FlowRecorder(FlowLog& log, std::optional<std::uint32_t> seed) : m_log(log), m_seed(seed) { }

    /// Called at the end of each call with its name; may delete the view.
    std::function<void(const QString& call)> during;

    void terminated(const std::optional<QVariantMap>& data, bool inJitsi);
    void scanning(bool isScanning);
    /// From now on every word of the view is one too many.
    void viewGone() { m_isViewGone = true; }
    [[nodiscard]] const QStringList& problems() const { return m_problems; }

    void didDetectSdkDataBeforeJitsi(QorvelKycView& view, const std::shared_ptr<SdkModel>& record) override;
    void didCaptureIdFrontPhoto(QorvelKycView& view, const UIImage& image, const QString& text, const UIImage& crop,
        const QString& cropText) override;
    void didCaptureIdBackPhoto(QorvelKycView& view, const UIImage& image, const QString& text, const UIImage& crop,
        const QString& cropText) override;
    void didCaptureSelfiePhoto(QorvelKycView& view, const UIImage& image, const QString& text, const UIImage& crop,
        const QString& cropText) override;
    void didReadNfc(QorvelKycView& view, const NFCPassportModel& passport) override;
    void didClose(QorvelKycView& view, const std::shared_ptr<SdkModel>& record) override;

private:
    void told(const QString& call, const QString& event, const QJsonObject& facts);
    void photo(const QString& call, const UIImage& image, const UIImage& crop);
    [[nodiscard]] QJsonObject factsOf(const SdkModel& record) const;

    FlowLog& m_log;
    const std::optional<std::uint32_t> m_seed;
    bool m_isViewGone = false;
    QStringList m_problems;
};

} // namespace kelvara::replay
