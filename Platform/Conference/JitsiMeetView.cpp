#include "Platform/Conference/JitsiMeetView.h"

#include "Platform/Conference/ConferenceHall.h"
#include "Platform/Conference/ConferenceService.h"
#include "Platform/Conference/JitsiMeetViewDelegate.h"

namespace kelvara {

struct JitsiMeetView::State
{
    std::shared_ptr<ConferenceService> service;
    JitsiMeetViewDelegate* delegate = nullptr; ///< Borrowed; valid while `delegateLife` has not expired.
    std::weak_ptr<const void> delegateLife;
};

JitsiMeetView::JitsiMeetView(QWidget* parent) : JitsiMeetView(ConferenceService::native(), parent) { }

JitsiMeetView::JitsiMeetView(std::shared_ptr<ConferenceService> service, QWidget* parent)
    : QWidget(parent), d(std::make_unique<State>(State { std::move(service), nullptr, {} }))
{
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

JitsiMeetView::~JitsiMeetView()
{
    ConferenceHall::shared().forget(*this);
}

JitsiMeetViewDelegate* JitsiMeetView::delegate() const
{
    return d->delegateLife.expired() ? nullptr : d->delegate;
}

void JitsiMeetView::setDelegate(JitsiMeetViewDelegate* delegate)
{
    d->delegate = delegate;
    d->delegateLife = delegate ? delegate->lifeToken() : std::weak_ptr<const void>();
}

void JitsiMeetView::join(const JitsiMeetConferenceOptions& options)
{
    ConferenceHall::shared().join(*this, d->service, delegate(), options);
}

void JitsiMeetView::leave()
{
    ConferenceHall::shared().leave(*this);
}

bool JitsiMeetView::isInConference() const
{
    return ConferenceHall::shared().isInConference(*this);
}

void JitsiMeetView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    for (QWidget* filling : findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        filling->setGeometry(rect());
}

void JitsiMeetView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    ConferenceHall::shared().viewShown(*this);
}

void JitsiMeetView::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    ConferenceHall::shared().viewHidden(*this);
}

} // namespace kelvara
