#define QT_STATICPLUGIN
#include "Tests/Support/AccessWatch.h"

#include <QAccessible>
#include <QAccessibleBridge>
#include <QPointer>
#include <QtPlugin>

namespace kelvara::test {

namespace {

AccessWatch* s_watch = nullptr;

struct Bridge final : QAccessibleBridge
{
    void setRootObject(QAccessibleInterface*) override { }
    void notifyAccessibilityUpdate(QAccessibleEvent* event) override
    {
        if (s_watch)
            s_watch->hear(*event);
    }
};

} // namespace

AccessWatch::AccessWatch()
{
    s_watch = this;
}

AccessWatch::~AccessWatch()
{
    s_watch = nullptr;
}

void AccessWatch::hear(QAccessibleEvent& event)
{
    const QPointer<QObject> object(event.object());
    if (const auto action = during)
        action(event);
    if (!object)
        return;
    if (event.type() != QAccessible::Alert && event.type() != QAccessible::StateChanged)
        return;
    QAccessibleInterface* const speaker = event.accessibleInterface();
    if (!speaker)
        return;
    const QString name = speaker->text(QAccessible::Name);
    if (event.type() == QAccessible::StateChanged) {
        stateChanges << name;
        return;
    }
    const QString more = speaker->text(QAccessible::Description);
    said << (more.isEmpty() ? name : more);
}

} // namespace kelvara::test

class AccessWatchPlugin final : public QAccessibleBridgePlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QAccessibleBridgeFactoryInterface_iid FILE "AccessWatch.json")

public:
    QAccessibleBridge* create(const QString&) override { return new kelvara::test::Bridge; }
};

Q_IMPORT_PLUGIN(AccessWatchPlugin)

#include "AccessWatch.moc"
