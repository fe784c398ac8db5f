#include "Kelvara/FilterVendor.h"

#include "Kelvara/LuminanceThresholdFilter.h"

namespace kelvara {

namespace {

constexpr QLatin1String kThresholdName("LuminanceThresholdFilter");

}

void FilterVendor::registerFilters()
{
    CIFilter::registerFilterName(kThresholdName, std::make_shared<const FilterVendor>(),
        { { QLatin1String(kCIAttributeFilterCategories), QStringLiteral("CustomFilters") } });
}

std::unique_ptr<CIFilter> FilterVendor::filter(const QString& withName) const
{
    return withName == kThresholdName ? std::make_unique<LuminanceThresholdFilter>() : nullptr;
}

} // namespace kelvara
