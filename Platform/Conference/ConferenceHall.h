#pragma once

#include "Platform/Conference/ConferenceError.h"
#include "Platform/Conference/JitsiMeetConferenceOptions.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace kelvara {

class ConferenceCover;
class ConferencePage;
class ConferenceService;
class JitsiMeetView;
class JitsiMeetViewDelegate;

/// The one conference that a process may have, and where it is seen. Knows every conference view that is on the screen,
/// so that the view which joins need not be the one that shows. Internal to this room; main thread.
class ConferenceHall final : public QObject
{
    Q_OBJECT
public:
    [[nodiscard]] static ConferenceHall& shared();

    /// Ends the present conference, if any, and begins another one.
    void join(const JitsiMeetView& view, const std::shared_ptr<ConferenceService>& service,
        JitsiMeetViewDelegate* delegate, const JitsiMeetConferenceOptions& options);
    void leave(const JitsiMeetView& view);
    [[nodiscard]] bool isInConference(const JitsiMeetView& view) const;

    void viewShown(JitsiMeetView& view);
    void viewHidden(JitsiMeetView& view);
    /// The view is being destroyed.
    void forget(JitsiMeetView& view);

private:
    struct Conference;
    ConferenceHall();
    ~ConferenceHall() override;
    void open(const std::shared_ptr<ConferenceService>& service, const JitsiMeetConferenceOptions& options);
    void listen(ConferencePage& page);
    void claimCameras();
    void tell(void (JitsiMeetViewDelegate::*what)(const std::optional<QVariantMap>&), const QVariantMap& data);
    void failLater(const ConferenceError& error);
    void endLater();
    void dismissed();
    /// Ends the conference and tells its delegate.
    void finish(QVariantMap data, const std::optional<ConferenceError>& error = std::nullopt);
    /// Ends the conference; its delegate hears of it from the event loop, if that still runs.
    void abandon();
    void dispose(Conference& conference);
    [[nodiscard]] QVariantMap completed(QVariantMap data) const;

    [[nodiscard]] JitsiMeetView* chooseStage() const;
    /// Shows what there is to show where it belongs.
    void place();
    void leaveStage();
    void removeCover();

    std::unique_ptr<Conference> m_conference;
    const JitsiMeetView* m_owner = nullptr; ///< The view that joined last, while it lives.
    QString m_message; ///< What went wrong, until it is dismissed.
    QList<JitsiMeetView*> m_shown; ///< On the screen, the latest last.
    QPointer<JitsiMeetView> m_stage;
    QPointer<ConferenceCover> m_cover;
};

} // namespace kelvara
