#include "KycItem.h"

#include <QHash>
#include <QQuickWidget>
#include <QQuickWindow>

using namespace kelvara;

namespace {

/// The widget that shows the scene, told to its engine by `main`.
QWidget* sceneWidget(const QQuickItem& item)
{
    return item.window() ? item.window()->property("sceneWidget").value<QWidget*>() : nullptr;
}

QList<ViewType> stepsNamed(const QStringList& names)
{
    static const QHash<QString, ViewType> known { { QStringLiteral("idPhoto"), ViewType::idPhoto },
        { QStringLiteral("selfie"), ViewType::selfie }, { QStringLiteral("nfcRead"), ViewType::nfcRead },
        { QStringLiteral("jitsi"), ViewType::jitsi } };
    QList<ViewType> steps;
    for (const QString& name : names) {
        if (known.contains(name))
            steps.append(known.value(name));
        else
            qWarning("KycItem: there is no step \"%s\".", qPrintable(name));
    }
    return steps;
}

} // namespace

KycItem::KycItem(QQuickItem* parent) : QQuickItem(parent) { }

KycItem::~KycItem()
{
    delete m_view.data();
}

void KycItem::setSteps(const QStringList& steps)
{
    if (m_steps == steps)
        return;
    m_steps = steps;
    if (m_view)
        m_view->setViewTypes(stepsNamed(m_steps));
    Q_EMIT stepsChanged();
}

void KycItem::componentComplete()
{
    QQuickItem::componentComplete();
    place();
}

void KycItem::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickItem::geometryChange(now, before);
    place();
}

void KycItem::itemChange(ItemChange change, const ItemChangeData& data)
{
    QQuickItem::itemChange(change, data);
    if (change == ItemSceneChange || change == ItemVisibleHasChanged)
        place();
}

void KycItem::place()
{
    QWidget* const scene = sceneWidget(*this);
    if (!isComponentComplete() || !scene)
        return;
    if (!m_view) {
        m_view = new QorvelKycView(scene);
        m_view->setDelegate(this);
        m_view->setViewTypes(stepsNamed(m_steps));
    }
    m_view->setGeometry(mapRectToScene(boundingRect()).toAlignedRect());
    m_view->setVisible(isVisible());
}

void KycItem::didCaptureIdFrontPhoto(QorvelKycView&, Photo, const QString&, Photo, const QString&)
{
    Q_EMIT captured(QStringLiteral("front"));
}

void KycItem::didCaptureIdBackPhoto(QorvelKycView&, Photo, const QString&, Photo, const QString&)
{
    Q_EMIT captured(QStringLiteral("back"));
}

void KycItem::didCaptureSelfiePhoto(QorvelKycView&, Photo, const QString&, Photo, const QString&)
{
    Q_EMIT captured(QStringLiteral("selfie"));
}

void KycItem::didReadNfc(QorvelKycView&, const NFCPassportModel&)
{
    Q_EMIT captured(QStringLiteral("chip"));
}

void KycItem::didDetectSdkDataBeforeJitsi(QorvelKycView&, const Record&)
{
    Q_EMIT callAwaited();
}

void KycItem::didClose(QorvelKycView&, const Record&)
{
    Q_EMIT closed();
}
