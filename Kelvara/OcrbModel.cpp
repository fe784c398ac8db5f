#include "Kelvara/OcrbModel.h"

#include <QDir>

// Outside of any namespace, as Qt's macro wants it.
static void loadOcrbResource()
{
    Q_INIT_RESOURCE(ocrb);
}

namespace kelvara {

QString ocrbModelFolder()
{
    static const bool loaded = (loadOcrbResource(), true);
    return loaded ? QStringLiteral(":/kelvara") : QString();
}

} // namespace kelvara
