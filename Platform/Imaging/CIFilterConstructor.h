#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Imaging/CIFilter.h"

#include <QString>

#include <memory>

namespace kelvara {

/// Makes filters by name, for the filter registry. Any thread.
class KELVARA_EXPORT CIFilterConstructor
{
public:
    virtual ~CIFilterConstructor() = default;

    /// A new filter of that name; null when it knows none.
    [[nodiscard]] virtual std::unique_ptr<CIFilter> filter(const QString& withName) const = 0;
};

} // namespace kelvara
