#include "Kelvara/QorvelKycView.h"

#include "Kelvara/FilterVendor.h"
#include "Kelvara/ImageCatalog.h"
#include "Kelvara/QorvelKycView_p.h"
#include "Platform/Chip/PassportReader.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPainter>

namespace kelvara {

namespace {

constexpr std::chrono::milliseconds kRefreshInterval { 2000 };

} // namespace

QorvelKycViewPrivate::QorvelKycViewPrivate(QorvelKycView* view, PlatformServices platform)
    : q(view), services(std::move(platform)), closeButton(new IconButton(view)),
      informationNextButton(new ActionButton(view)), nfcReadButton(new ActionButton(view)),
      jitsiButton(new ActionButton(view)), takePhotoButton(new CircleButton(view)), flashButton(new ToggleButton(view)),
      cutoutView(new QKCutoutView(view)), cutoutSelfieView(new OvalOverlayView(view)),
      idPhotoLabel(new StatementLabel(view)), nfcReadLabel(new StatementLabel(view)),
      jitsiLabel(new StatementLabel(view)), informationLabel(new StatementLabel(view)),
      flipImageView(new FlipImageView(view)), jitsiMeetView(new JitsiMeetView(services.conference, view))
{
    // Controls belong to no screen until one is composed.
    const auto controls = view->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget* control : controls)
        control->hide();
    announcer = new Announcer(view);
}

QorvelKycViewPrivate::~QorvelKycViewPrivate()
{
    // First nothing new may come, then what is under way must end; only then may members go.
    if (refreshTimer)
        refreshTimer->stop();
    QObject::disconnect(observer);
    captureSession->stopRunning();
    videoDataOutput->setSampleBufferDelegate(nullptr, nullptr);
    videoQueue.drain();
    idCardReader.reset();
    life.end();
}

void QorvelKycViewPrivate::initialize()
{
    FilterVendor::registerFilters();
    setupReader();
    setupAndStartCaptureSession();
    setViewStyle();
    initiateScreen();
    refreshTimer = new QTimer(q);
    QObject::connect(refreshTimer, &QTimer::timeout, q, &QorvelKycView::runTimedCode);
    refreshTimer->start(kRefreshInterval);
    addAppObservers();
}

void QorvelKycViewPrivate::setViewStyle()
{
    q->setAutoFillBackground(false);
    q->setAttribute(Qt::WA_NoSystemBackground);
}

void QorvelKycViewPrivate::initiateScreen()
{
    watchOverlays();
    initiateAccess();
    // Queued, so that a host that creates the view and sets its steps in one turn has them before the first screen.
    onMain([this] {
        initiateStatement();
        initiateFlashButton();
        initiateTakePhotoButton();
        initiateNfcReadLabel({});
        initiateNfcReadButton();
        initiateInformationNextButton();
        initiateCloseButton();
        initiateFlipImageView();
        initiateJitsiLabel();
        initiateJitsiButton();
        viewChange();
    });
}

void QorvelKycViewPrivate::addAppObservers()
{
    QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, q, [this](Qt::ApplicationState state) {
        switch (state) {
        case Qt::ApplicationSuspended:
        case Qt::ApplicationHidden:
            q->appDidEnterBackground();
            break;
        case Qt::ApplicationActive:
            q->appWillEnterForeground();
            break;
        case Qt::ApplicationInactive: // another window has the focus, ours is still seen
            break;
        }
    });
}

QorvelKycViewDelegate* QorvelKycViewPrivate::delegate() const
{
    return delegateLife.expired() ? nullptr : delegateObject;
}

void QorvelKycViewPrivate::onMain(std::function<void()> block) const
{
    MainQueue::async(life.token(), std::move(block));
}

QorvelKycView::QorvelKycView(const QRectF& frame, PlatformServices services, QWidget* parent)
    : QWidget(parent), d(std::make_unique<QorvelKycViewPrivate>(this, std::move(services)))
{
    if (!frame.isNull())
        setGeometry(frame.toAlignedRect());
    d->initialize();
}

QorvelKycView::QorvelKycView(PlatformServices services, QWidget* parent)
    : QorvelKycView(QRectF(), std::move(services), parent)
{ }

QorvelKycView::QorvelKycView(const QRectF& frame, QWidget* parent)
    : QorvelKycView(frame, PlatformServices::native(), parent)
{ }

QorvelKycView::QorvelKycView(QWidget* parent) : QorvelKycView(PlatformServices::native(), parent) { }

QorvelKycView::~QorvelKycView() = default;

bool QorvelKycView::forceNfc() const
{
    return d->forceNfc;
}

void QorvelKycView::setForceNfc(bool force)
{
    d->forceNfc = force;
}

double QorvelKycView::textScale() const
{
    return d->textScale;
}

void QorvelKycView::setTextScale(double scale)
{
    d->setTextScale(scale);
}

QorvelKycViewDelegate* QorvelKycView::delegate() const
{
    return d->delegate();
}

void QorvelKycView::setDelegate(QorvelKycViewDelegate* delegate)
{
    d->delegateObject = delegate;
    d->delegateLife = delegate ? delegate->lifeToken() : std::weak_ptr<const void>();
}

QList<ViewType> QorvelKycView::viewTypes() const
{
    return d->_viewTypes;
}

void QorvelKycView::setViewTypes(const QList<ViewType>& types)
{
    d->setViewTypes(types);
}

const LinkedListViewType<ViewType>& QorvelKycView::viewTypeLinkedList() const
{
    return d->viewTypeLinkedList;
}

bool QorvelKycView::isScanning() const
{
    return d->isScanning;
}

void QorvelKycView::startScanning()
{
    d->startScanning();
}

void QorvelKycView::stopScanning()
{
    d->stopScanning();
}

void QorvelKycView::showIdPhotoView()
{
    d->showIdPhotoView();
}

void QorvelKycView::showSelfieView()
{
    d->showSelfieView();
}

void QorvelKycView::showNfcView()
{
    d->showNfcView();
}

void QorvelKycView::showJitsiView()
{
    d->showJitsiView();
}

void QorvelKycView::setJitsiConference(const QString& url, const QString& room, const QString& token)
{
    d->setJitsiConference(url, room, token);
}

bool QorvelKycView::inJitsi() const
{
    return d->inJitsi;
}

void QorvelKycView::setDidConferenceTerminated(std::function<void(const std::optional<QVariantMap>&)> callback)
{
    d->didConferenceTerminated = std::move(callback);
}

std::optional<UIImage> QorvelKycView::getMyImage(const QString& named) const
{
    return kelvara::getMyImage(named, devicePixelRatioF());
}

void QorvelKycView::runTimedCode()
{
    d->runTimedCode();
}

void QorvelKycView::closeButtonInput()
{
    d->closeButtonInput();
}

void QorvelKycView::informationNextButtonInput()
{
    d->getNextViewType();
}

void QorvelKycView::nfcReadInput()
{
    d->nfcReadInput();
}

void QorvelKycView::analyzeCard()
{
    d->analyzeCard();
}

void QorvelKycView::flashState()
{
    d->flashState();
}

void QorvelKycView::appWillEnterForeground()
{
    d->appWillEnterForeground();
}

void QorvelKycView::appDidEnterBackground()
{
    d->appDidEnterBackground();
}

void QorvelKycView::paintEvent(QPaintEvent*)
{
    if (!d->isPreviewAdded)
        return;
    QPainter painter(this);
    d->videoPreviewLayer->paint(painter);
}

void QorvelKycView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    d->layoutScreen();
}

void QorvelKycView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    // The overlays have been drawn by now and know their cut-outs.
    d->layoutScreen();
}

void QorvelKycView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        d->layoutScreen();
}

} // namespace kelvara
