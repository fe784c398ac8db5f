#pragma once

#include "Platform/Imaging/UIImage.h"

#include <QList>
#include <QString>

namespace kelvara::demo {

/// One picture as the delegate got it.
struct DeliveredPicture
{
    QString argument; ///< The name of the call's argument: "image", "cropImage" or "faceImage".
    UIImage image;
    QString base64; ///< Null where the call brings the image alone.
};

/// One call of the delegate.
struct Delivery
{
    QString method;
    qint64 atMilliseconds = 0; ///< Since the host was made.
    QList<DeliveredPicture> pictures;
};

} // namespace kelvara::demo
