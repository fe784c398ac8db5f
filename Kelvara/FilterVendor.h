#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Imaging/CIFilterConstructor.h"

namespace kelvara {

/// Makes the SDK's own filters for the filter registry. Without state; any thread.
class KELVARA_EXPORT FilterVendor final : public CIFilterConstructor
{
public:
    /// Registers "LuminanceThresholdFilter" in the category "CustomFilters". To be called before the first frame is
    /// processed; calling again is harmless.
    static void registerFilters();

    /// A new `LuminanceThresholdFilter` for exactly that name; otherwise null.
    [[nodiscard]] std::unique_ptr<CIFilter> filter(const QString& withName) const override;
};

} // namespace kelvara
