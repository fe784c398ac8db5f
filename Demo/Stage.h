#pragma once

#include "Demo/Subject.h"

namespace kelvara::demo {

/// Where things are held before the cameras and the contactless reader. Main thread.
class Stage
{
public:
    virtual ~Stage() = default;
    virtual void present(Subject subject) = 0;
    /// The photograph has been taken: it will not be presented again.
    virtual void photographed(Subject subject) = 0;
    /// Whether what was presented last has come to rest.
    [[nodiscard]] virtual bool settled() const = 0;
    /// Holds the card to the contactless reader, again if it is there; or takes it away.
    virtual void holdToReader() = 0;
    virtual void takeFromReader() = 0;
};

/// The real world: a person of flesh and blood is asked.
class RealStage final : public Stage
{
public:
    void present(Subject) override { }
    void photographed(Subject) override { }
    [[nodiscard]] bool settled() const override { return true; }
    void holdToReader() override { }
    void takeFromReader() override { }
};

} // namespace kelvara::demo
