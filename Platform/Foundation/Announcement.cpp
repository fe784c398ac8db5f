#include "Platform/Foundation/Announcement.h"

#include <QAccessible>
#include <QtGlobal>

namespace kelvara {

void announce(QObject& speaker, [[maybe_unused]] const QString& sentence)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
    QAccessibleAnnouncementEvent words(&speaker, sentence);
    QAccessible::updateAccessibility(&words);
#else
    QAccessibleEvent alert(&speaker, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
#endif
}

} // namespace kelvara
