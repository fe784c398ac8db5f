#pragma once

#include "Kelvara/QorvelKycView.h"
#include "Tools/Replay/FlowLog.h"
#include "Tools/Replay/FlowRecorder.h"
#include "Tools/Replay/FlowScript.h"
#include "Tools/Replay/ReplayDevice.h"
#include "Tools/Replay/ScreenWatch.h"

#include <QPointer>

#include <memory>
#include <optional>
#include <variant>

namespace kelvara::replay {

/// A whole session of the view, played as its script says: a view in a window of its own, a device of software, and a
/// host that logs. The order of the log's events follows from the script wherever the script waits for what other
/// threads do; its times do not. One session at a time in a process. Main thread, with a `QApplication`.
class ReplaySession
{
public:
    /// A sentence if the script's device cannot be had. The script is checked when it is read.
    [[nodiscard]] static std::variant<std::unique_ptr<ReplaySession>, QString> open(FlowScript script);
    ~ReplaySession();
    ReplaySession(const ReplaySession&) = delete;
    ReplaySession& operator=(const ReplaySession&) = delete;

    /// Plays the script to its end, to the first step that does not come to pass, or until the view is deleted; then
    /// takes the view away and looks whether everything ended as it must. Once.
    void run();

    /// Whether every step came to pass.
    [[nodiscard]] bool isMet() const { return !m_unmet; }
    /// What must never be, in sentences: words after the view's end, a conference that ended twice or never, a camera
    /// that runs though `isScanning` says no, and the like.
    [[nodiscard]] const QStringList& problems() const { return m_problems; }
    [[nodiscard]] const FlowLog& log() const { return m_log; }
    /// All of it. The same on every run but for the times.
    [[nodiscard]] QJsonObject report(bool withTimes) const;

private:
    ReplaySession(FlowScript script, std::unique_ptr<ReplayDevice> device);

    [[nodiscard]] bool play(const FlowStep& step);
    [[nodiscard]] bool await(const Wait& wait, const FlowStep& step);
    [[nodiscard]] bool awaitAndTap(const Tap& tapped, const FlowStep& step);
    [[nodiscard]] bool holds(const QString& state) const;
    void perform(const Act& act);
    void show(const Show& shown);
    void join(const QString& url);
    void setBackground(bool entered);
    void told(const QString& call);
    void destroy();

    // The session's end: SessionChecks.cpp
    void finish();
    void checkCameras();
    void checkConferences(bool isExact);
    void checkAftermath();
    [[nodiscard]] int callViews() const;

    const FlowScript m_script;
    FlowLog m_log;
    std::unique_ptr<ReplayDevice> m_device;
    FlowRecorder m_recorder;
    std::unique_ptr<QWidget> m_window;
    QPointer<QorvelKycView> m_view;
    std::unique_ptr<ScreenWatch> m_watch;
    QStringList m_destroyIn; ///< Calls in which the view is to be deleted.
    bool m_isInBackground = false;
    int m_joined = 0; ///< Conferences that the view took on.
    std::optional<QJsonObject> m_unmet;
    QStringList m_problems;
};

} // namespace kelvara::replay
