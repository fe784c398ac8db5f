#pragma once

#include <QJsonValue>

#include <memory>

namespace kelvara {
class SdkModel;
}

namespace kelvara::demo {

/// What the record says of the card's machine-readable zone, with dates as YYYY-MM-DD; null without a reading.
[[nodiscard]] QJsonValue mrzReport(const std::shared_ptr<SdkModel>& record);

} // namespace kelvara::demo
