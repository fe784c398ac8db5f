#include "Platform/Conference/JitsiMeetView.h"

#include "Platform/Conference/ConferenceCover.h"
#include "Platform/Conference/ConferenceHall.h"
#include "Platform/Conference/ConferenceService.h"
#include "Platform/Conference/JitsiMeetViewDelegate.h"

#include <algorithm>

namespace kelvara {

struct JitsiMeetView::State
{
    std::shared_ptr<ConferenceService> service;
    JitsiMeetViewDelegate* delegate = nullptr; ///< Borrowed; valid while `delegateLife` has not expired.
    std::weak_ptr<const void> delegateLife;
    double textScale = 1;
};

JitsiMeetView::JitsiMeetView(QWidget* parent) : JitsiMeetView(ConferenceService::native(), parent) { }

JitsiMeetView::JitsiMeetView(std::shared_ptr<ConferenceService> service, QWidget* parent)
    : QWidget(parent), d(std::make_unique<State>(State { std::move(service), nullptr, {}, 1 }))
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

bool JitsiMeetView::isOccupied() const
{
    return !testAttribute(Qt::WA_TransparentForMouseEvents);
}

double JitsiMeetView::textScale() const
{
    return d->textScale;
}

void JitsiMeetView::setTextScale(double scale)
{
    d->textScale = scale > 1 ? std::min(scale, 3.0) : 1; // also what is no number
    for (auto* cover : findChildren<ConferenceCover*>(QString(), Qt::FindDirectChildrenOnly))
        cover->setTextScale(d->textScale);
}

void JitsiMeetView::setOccupied(bool isOccupied)
{
    if (isOccupied == this->isOccupied())
        return;
    setAttribute(Qt::WA_TransparentForMouseEvents, !isOccupied);
    Q_EMIT occupied(isOccupied);
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
