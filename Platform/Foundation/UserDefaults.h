#pragma once

#include "Platform/Foundation/Export.h"

#include <QString>

#include <memory>
#include <optional>

namespace kelvara {

/// A persistent store of strings per application, as the platform's user defaults. Main thread.
class KELVARA_EXPORT UserDefaults
{
public:
    virtual ~UserDefaults() = default;

    /// The stored string; absent when nothing was stored under the key.
    [[nodiscard]] virtual std::optional<QString> string(const QString& key) const = 0;

    /// Stores a string; it is on disk at the latest when the application ends in good order.
    virtual void set(const QString& value, const QString& key) = 0;

    virtual void remove(const QString& key) = 0;

    /// The application's own store: an INI file in the user's configuration folder, named after the application's
    /// organisation and name.
    [[nodiscard]] static std::shared_ptr<UserDefaults> standard();

    /// A store kept in memory only, for tests and for hosts that must leave nothing on disk.
    [[nodiscard]] static std::shared_ptr<UserDefaults> inMemory();
};

} // namespace kelvara
