#pragma once

#include "Tools/Cli/Look.h"

namespace kelvara::cli {

/// Looks for a card as the view does.
class CardLook final : public Look
{
public:
    [[nodiscard]] Finding at(const QImage& picture) override;
};

} // namespace kelvara::cli
