#pragma once

#include "Platform/Conference/JitsiMeetConferenceOptions.h"
#include "Platform/Foundation/Export.h"

#include <QWidget>

#include <memory>

namespace kelvara {

class ConferenceHall;
class ConferenceService;
class JitsiMeetViewDelegate;

/// A view in which a conference takes place.
///
/// A process has one conference at a time: joining another one ends it. It is shown on the view that joined it if that
/// is on the screen, else on the conference view that was put on the screen last. A view without conference or message
/// paints nothing and lets clicks through to what lies beneath.
///
/// What goes wrong (no server, an unreachable or untrusted one, a refused token, a lost connection …) stands on the
/// view in Turkish until the person dismisses it or another conference is joined; the delegate hears of it by
/// `conferenceTerminated`. A conference with video takes the cameras from this process's capture sessions until it is
/// over. The view may be deleted at any time, which ends its conference. Main thread only.
class KELVARA_EXPORT JitsiMeetView final : public QWidget
{
    Q_OBJECT
public:
    /// On the device's own web engine. Cheap: the page is made by `join`.
    explicit JitsiMeetView(QWidget* parent = nullptr);
    /// On a service of the host's choosing; null: a device without video calls.
    explicit JitsiMeetView(std::shared_ptr<ConferenceService> service, QWidget* parent = nullptr);
    ~JitsiMeetView() override;

    /// Borrowed; the view notices when it is destroyed. The delegate of the moment of joining hears of that conference
    /// to its end; when the view itself is destroyed first, of its termination a turn of the event loop later.
    [[nodiscard]] JitsiMeetViewDelegate* delegate() const;
    void setDelegate(JitsiMeetViewDelegate* delegate);

    /// Joins the conference that the options name.
    void join(const JitsiMeetConferenceOptions& options);
    /// Leaves the conference that this view joined, as hanging up does; `conferenceTerminated` follows. Nothing without
    /// one.
    void leave();
    /// From `join` until its termination.
    [[nodiscard]] bool isInConference() const;

    /// Whether a conference or a message stands here, so that nothing beneath is seen or reached by touch.
    [[nodiscard]] bool isOccupied() const;

    /// By how much the letters of what stands over the call are larger than ordinary, 1 (initially) to 3; the call itself is
    /// the server's own page.
    [[nodiscard]] double textScale() const;
    void setTextScale(double scale);

Q_SIGNALS:
    /// `isOccupied` has changed. Comes amid the change, also when the view is destroyed: act on it from the event loop.
    void occupied(bool isOccupied);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    friend class ConferenceHall;
    void setOccupied(bool isOccupied);
    struct State;
    std::unique_ptr<State> d;
};

} // namespace kelvara
