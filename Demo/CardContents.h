#pragma once

#include "Platform/Chip/lds/DataGroup11.h"
#include "Platform/Chip/lds/DataGroup12.h"

#include <QImage>
#include <QStringList>

#include <optional>

namespace kelvara::demo {

/// What the chip of a card holds. A value.
struct CardContents
{
    QStringList zone; ///< The lines of the card's machine-readable zone.
    QImage portrait; ///< Null: a silhouette takes its place.
    bool isPortraitInvented = false; ///< It shows no real person.
    std::optional<chip::DataGroup11> holder;
    std::optional<chip::DataGroup12> document;
};

} // namespace kelvara::demo
