#pragma once

#include "Platform/Chip/NFCPassportModel.h"

#include <QJsonValue>

#include <optional>

namespace kelvara::demo {

/// What was read from the card's chip: fields, files with their sizes, the portrait's size, and every proof's outcome;
/// null without a read.
[[nodiscard]] QJsonValue chipReport(const std::optional<NFCPassportModel>& passport);

} // namespace kelvara::demo
