#include "Platform/Conference/ConferenceHall.h"

#include "Platform/Conference/ConferenceCover.h"
#include "Platform/Conference/ConferenceInvitation.h"
#include "Platform/Conference/ConferencePage.h"
#include "Platform/Conference/ConferenceService.h"
#include "Platform/Conference/JitsiMeetView.h"
#include "Platform/Conference/JitsiMeetViewDelegate.h"
#include "Platform/Foundation/CameraArbiter.h"

#include <QApplication>
#include <QTimer>

namespace kelvara {

namespace {

constexpr std::chrono::milliseconds kFarewell { 1500 }; ///< For a client that was told to hang up.
/// The browser closes a camera in its own time after its page has gone; who opens it sooner finds it busy.
constexpr std::chrono::milliseconds kCameraHandover { 250 };

using DelegateEvent = void (JitsiMeetViewDelegate::*)(const std::optional<QVariantMap>&);

struct WeakDelegate
{
    JitsiMeetViewDelegate* delegate = nullptr;
    std::weak_ptr<const void> life;

    void tell(DelegateEvent event, const QVariantMap& data) const
    {
        if (!life.expired())
            (delegate->*event)(data.isEmpty() ? std::nullopt : std::optional(data));
    }
};

} // namespace

struct ConferenceHall::Conference
{
    explicit Conference(JitsiMeetViewDelegate* hears)
    {
        if (hears)
            delegate = { hears, hears->lifeToken() };
    }

    WeakDelegate delegate;
    std::unique_ptr<ConferencePage> page; ///< Null: it could not even be opened.
    std::unique_ptr<CameraClaim> cameras;
    QString url;
    bool isPresented = false;
    bool isJoined = false;
    LifeToken life;
};

ConferenceHall& ConferenceHall::shared()
{
    // Never destroyed: views that a host keeps in static objects may die after the last of `main`.
    static auto* const hall = new ConferenceHall;
    return *hall;
}

ConferenceHall::ConferenceHall() = default;
ConferenceHall::~ConferenceHall() = default;

void ConferenceHall::join(const JitsiMeetView& view, const std::shared_ptr<ConferenceService>& service,
    JitsiMeetViewDelegate* delegate, const JitsiMeetConferenceOptions& options)
{
    // A browser does not bear its pages to outlive the application, but hosts leave windows behind.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &ConferenceHall::abandon, Qt::UniqueConnection);
    abandon();
    leaveStage(); // the view that was put on the screen last is the one that is meant
    m_message.clear();
    m_conference = std::make_unique<Conference>(delegate);
    m_owner = &view;
    open(service, options);
    place();
}

void ConferenceHall::open(const std::shared_ptr<ConferenceService>& service, const JitsiMeetConferenceOptions& options)
{
    const auto invitation = ConferenceInvitation::from(options);
    if (const auto* error = std::get_if<ConferenceError>(&invitation)) {
        failLater(*error);
        return;
    }
    const auto& accepted = std::get<ConferenceInvitation>(invitation);
    m_conference->url = accepted.roomURL().toString(QUrl::FullyEncoded);
    m_conference->page = service ? service->makePage() : nullptr;
    if (!m_conference->page) {
        failLater({ ConferenceErrorKind::Unavailable });
        return;
    }
    listen(*m_conference->page);
    const auto life = m_conference->life.token();
    if (accepted.startsWithVideo())
        claimCameras();
    if (life.expired())
        return;
    m_conference->page->open(accepted);
}

void ConferenceHall::listen(ConferencePage& page)
{
    // From a turn of the event loop of their own: whatever a delegate does then, be it a dialog's nested loop, nothing
    // of the page is on the stack, and it can be destroyed, camera and all, at once.
    const auto later
        = [life = m_conference->life.token()](const std::function<void()>& block) { MainQueue::async(life, block); };
    connect(&page, &ConferencePage::willJoin, this, [this, later](const QVariantMap& data) {
        later([this, data] { tell(&JitsiMeetViewDelegate::conferenceWillJoin, data); });
    });
    connect(&page, &ConferencePage::presented, this, [this, later] {
        later([this] {
            m_conference->isPresented = true;
            place();
        });
    });
    // At once, as the camera is opened next.
    connect(&page, &ConferencePage::wantsCamera, this, &ConferenceHall::claimCameras);
    connect(&page, &ConferencePage::joined, this, [this, later](const QVariantMap& data) {
        later([this, data] {
            m_conference->isPresented = true;
            m_conference->isJoined = true;
            place();
            tell(&JitsiMeetViewDelegate::conferenceJoined, data);
        });
    });
    connect(&page, &ConferencePage::ended, this,
        [this, later](const QVariantMap& data) { later([this, data] { finish(data); }); });
    connect(&page, &ConferencePage::failed, this, [this, later](const ConferenceError& error, const QVariantMap& data) {
        later([this, error, data] { finish(data, error); });
    });
}

void ConferenceHall::claimCameras()
{
    if (m_conference->cameras)
        return;
    // Whoever hears that the cameras have stopped may end the conference.
    const auto life = m_conference->life.token();
    auto claim = CameraArbiter::shared().claim();
    if (!life.expired())
        m_conference->cameras = std::move(claim);
}

void ConferenceHall::tell(DelegateEvent what, const QVariantMap& data)
{
    if (!m_conference) // showing it made somebody end it
        return;
    const WeakDelegate to = m_conference->delegate;
    to.tell(what, completed(data));
}

void ConferenceHall::failLater(const ConferenceError& error)
{
    MainQueue::async(m_conference->life.token(), [this, error] { finish({}, error); });
}

void ConferenceHall::endLater()
{
    MainQueue::async(m_conference->life.token(), [this] { finish({}); });
}

void ConferenceHall::leave(const JitsiMeetView& view)
{
    if (!isInConference(view))
        return;
    if (!m_conference->isJoined) {
        endLater();
        return;
    }
    m_conference->page->hangUp();
    QTimer::singleShot(kFarewell, m_conference->page.get(), [this] { endLater(); });
}

bool ConferenceHall::isInConference(const JitsiMeetView& view) const
{
    return m_conference && m_owner == &view;
}

QVariantMap ConferenceHall::completed(QVariantMap data) const
{
    if (!m_conference->url.isEmpty())
        data.insert(QStringLiteral("url"), m_conference->url);
    return data;
}

void ConferenceHall::finish(QVariantMap data, const std::optional<ConferenceError>& error)
{
    data = completed(std::move(data));
    const std::unique_ptr<Conference> over = std::move(m_conference);
    if (error) {
        m_message = error->message();
        data.insert(QStringLiteral("error"), error->name());
        data.insert(QStringLiteral("message"), m_message);
        if (!error->origin.isEmpty())
            data.insert(QStringLiteral("origin"), error->origin);
    }
    dispose(*over);
    place();
    over->delegate.tell(&JitsiMeetViewDelegate::conferenceTerminated, data);
}

void ConferenceHall::dispose(Conference& conference)
{
    if (!conference.page)
        return;
    disconnect(conference.page.get(), nullptr, this, nullptr);
    if (QWidget* widget = conference.page->widget()) {
        // Else hiding passes the keyboard on, as if the person had gone to the next control.
        if (QWidget* focused = QApplication::focusWidget();
            focused && (focused == widget || widget->isAncestorOf(focused)))
            focused->clearFocus();
        widget->hide();
        widget->setParent(nullptr);
    }
    conference.page.reset(); // now, as the person is not to be seen any longer
    if (conference.cameras) {
        std::shared_ptr<CameraClaim> claim = std::move(conference.cameras);
        QTimer::singleShot(kCameraHandover, this, [claim = std::move(claim)]() mutable { claim.reset(); });
    }
}

void ConferenceHall::viewShown(JitsiMeetView& view)
{
    m_shown.removeAll(&view);
    m_shown.append(&view);
    place();
}

void ConferenceHall::viewHidden(JitsiMeetView& view)
{
    m_shown.removeAll(&view);
    if (m_stage == &view && view.isHidden() && !m_conference)
        m_message.clear();
    place();
}

void ConferenceHall::forget(JitsiMeetView& view)
{
    m_shown.removeAll(&view);
    if (m_stage == &view || (m_owner == &view && !m_stage)) // else it would stand there for whoever comes next
        m_message.clear();
    if (m_stage == &view)
        leaveStage();
    if (isInConference(view))
        abandon();
    if (m_owner == &view)
        m_owner = nullptr;
    place();
}

void ConferenceHall::abandon()
{
    if (!m_conference)
        return;
    const QVariantMap data = completed({});
    const auto over = std::move(m_conference);
    MainQueue::async(over->delegate.life,
        [to = over->delegate, data] { to.tell(&JitsiMeetViewDelegate::conferenceTerminated, data); });
    dispose(*over);
    place();
}

void ConferenceHall::dismissed()
{
    m_message.clear();
    if (m_conference)
        endLater();
    else
        place();
}

JitsiMeetView* ConferenceHall::chooseStage() const
{
    for (JitsiMeetView* view : m_shown)
        if (m_conference && view == m_owner)
            return view;
    // Once shown somewhere it stays there, also while its window is hidden for a moment.
    if (m_stage && !m_stage->isHidden())
        return m_stage;
    // Beside the one that joined, lest it be seen in another window.
    for (auto view = m_shown.crbegin(); view != m_shown.crend(); ++view)
        if (m_owner && m_owner->parentWidget() && (*view)->parentWidget() == m_owner->parentWidget())
            return *view;
    return m_shown.isEmpty() ? nullptr : m_shown.back();
}

void ConferenceHall::leaveStage()
{
    if (m_conference && m_conference->page) {
        if (QWidget* widget = m_conference->page->widget())
            widget->setParent(nullptr);
    }
    removeCover();
    if (m_stage)
        m_stage->setOccupied(false);
    m_stage = nullptr;
}

void ConferenceHall::removeCover()
{
    if (!m_cover)
        return;
    m_cover->hide();
    m_cover->deleteLater(); // it may be the one that reports
    m_cover = nullptr;
}

void ConferenceHall::place()
{
    JitsiMeetView* const stage = m_conference || !m_message.isEmpty() ? chooseStage() : nullptr;
    if (stage != m_stage)
        leaveStage();
    m_stage = stage;
    if (!stage)
        return;
    stage->setOccupied(true);
    if (QWidget* widget = m_conference && m_conference->page ? m_conference->page->widget() : nullptr;
        widget && widget->parentWidget() != stage) {
        widget->setParent(stage);
        widget->setGeometry(stage->rect());
        widget->show();
    }
    const bool isCovered = !m_conference || !m_conference->isPresented;
    if (isCovered && !m_cover) {
        m_cover = new ConferenceCover(stage);
        m_cover->setTextScale(stage->textScale());
        m_cover->setGeometry(stage->rect());
        connect(m_cover, &ConferenceCover::dismissed, this, &ConferenceHall::dismissed);
    }
    if (!isCovered && m_cover) {
        removeCover();
        if (QWidget* widget = m_conference->page->widget())
            widget->setFocus();
    }
    if (!m_cover)
        return;
    if (m_conference)
        m_cover->showConnecting();
    else
        m_cover->showMessage(m_message);
}

} // namespace kelvara
