#include "Platform/Conference/web/ConferenceWebView.h"

#include <QChildEvent>
#include <QDialog>

namespace kelvara {

ConferenceWebView::ConferenceWebView()
{
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);
}

void ConferenceWebView::childEvent(QChildEvent* event)
{
    QWebEngineView::childEvent(event);
    if (!event->polished()) // what is only just added does not know yet what it will be
        return;
    if (auto* dialog = qobject_cast<QDialog*>(event->child())) { // clazy:exclude=child-event-qobject-cast (it knows)
        dialog->setAttribute(Qt::WA_DontShowOnScreen); // it is about to be shown
        QMetaObject::invokeMethod(dialog, &QDialog::reject, Qt::QueuedConnection);
    }
}

} // namespace kelvara
