#include "Platform/Imaging/CIFilter.h"

#include "Platform/Imaging/BuiltInFilters.h"
#include "Platform/Imaging/CIFilterConstructor.h"

#include <map>
#include <mutex>

namespace kelvara {

namespace {

struct Registration
{
    CIFilter::Constructor constructor;
    QVariantMap attributes;
};

class Registry
{
public:
    static Registry& instance()
    {
        static Registry registry;
        return registry;
    }

    void set(const QString& name, Registration registration)
    {
        const std::lock_guard lock(m_mutex);
        m_registrations[name] = std::move(registration);
    }

    [[nodiscard]] Registration get(const QString& name) const
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_registrations.find(name);
        return found == m_registrations.end() ? Registration {} : found->second;
    }

private:
    mutable std::mutex m_mutex;
    std::map<QString, Registration> m_registrations;
};

} // namespace

bool CIFilter::takesImage(const QVariant& value, const QString& key)
{
    if (key != QLatin1String(kCIInputImageKey))
        return false;
    if (value.metaType() == QMetaType::fromType<CIImage>())
        inputImage = *static_cast<const CIImage*>(value.constData());
    else
        inputImage.reset();
    return true;
}

std::unique_ptr<CIFilter> CIFilter::filter(const QString& name)
{
    // The constructor runs outside the registry's lock: it may look up filters itself.
    const Registration registration = Registry::instance().get(name);
    return registration.constructor ? registration.constructor(name) : imaging::makeBuiltInFilter(name);
}

std::unique_ptr<CIFilter> CIFilter::filter(const QString& name, const QVariantMap& parameters)
{
    std::unique_ptr<CIFilter> made = filter(name);
    if (!made)
        return nullptr;
    for (auto parameter = parameters.begin(); parameter != parameters.end(); ++parameter)
        made->setValue(parameter.value(), parameter.key());
    return made;
}

void CIFilter::registerFilterName(const QString& name, Constructor constructor, QVariantMap classAttributes)
{
    Registry::instance().set(name, { std::move(constructor), std::move(classAttributes) });
}

void CIFilter::registerFilterName(
    const QString& name, std::shared_ptr<const CIFilterConstructor> constructor, QVariantMap classAttributes)
{
    Constructor function;
    if (constructor)
        function = [kept = std::move(constructor)](const QString& wanted) { return kept->filter(wanted); };
    registerFilterName(name, std::move(function), std::move(classAttributes));
}

QVariantMap CIFilter::classAttributes(const QString& name)
{
    return Registry::instance().get(name).attributes;
}

} // namespace kelvara
