#pragma once

#include "Demo/CallDesk.h"
#include "Demo/DemoHost.h"
#include "Demo/ScreenReader.h"

#include <QElapsedTimer>
#include <QJsonObject>
#include <QTimer>

#include <functional>
#include <memory>

namespace kelvara::demo {

/// The video-call step as a host and its representative run it: the conference is arranged when the view asks for it
/// and opened once the waiting screen shows; the representative talks for some seconds and hangs up. Main thread.
class CallScene final : public QObject
{
    Q_OBJECT
public:
    /// `ownPicture`: what the person looks like, asked when the call begins; null for the device's own camera.
    CallScene(DemoHost& host, std::unique_ptr<CallDesk> desk, std::function<QImage()> ownPicture);

    /// Whether the view waits for the bank to arrange the call, or for those who talk in it.
    [[nodiscard]] bool isPeoplesTurn() const;

    /// For result.json: what the desk saw and how long joining took; empty before the call was joined.
    [[nodiscard]] QJsonObject report() const { return m_report; }

Q_SIGNALS:
    /// A screen worth a picture stands: "call-waiting", "call", "call-ended".
    void screenReached(const QString& name);
    /// The call is over; the sentence says why it failed, and is empty if it did not.
    void finished(const QString& failure);

private:
    enum class Moment { Before, Waiting, Joining, Talking, Ending, Over };

    void look();
    void enter(Moment moment);
    void open();
    void ended(const std::optional<QVariantMap>& data);

    DemoHost& m_host;
    ScreenReader m_screen;
    const std::unique_ptr<CallDesk> m_desk;
    const std::function<QImage()> m_ownPicture;
    QTimer m_timer;
    Moment m_moment = Moment::Before;
    QElapsedTimer m_clock; ///< Since the moment began.
    QJsonObject m_report;
};

} // namespace kelvara::demo
