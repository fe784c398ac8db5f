#pragma once

#include "Tools/Cli/Look.h"

namespace kelvara::cli {

/// Looks for faces as the view does.
class FaceLook final : public Look
{
public:
    [[nodiscard]] Finding at(const QImage& picture) override;
};

} // namespace kelvara::cli
