#pragma once

#include <QString>
#include <QStringList>

namespace kelvara {

/// A torch behind the Linux LED class: every light under the root folder whose name says "torch", or, where there is
/// none, "flash". Internal; main thread.
class LedTorch
{
public:
    explicit LedTorch(const QString& root = QStringLiteral("/sys/class/leds"));

    [[nodiscard]] bool exists() const { return !m_lights.isEmpty(); }
    /// Asks the lights themselves.
    [[nodiscard]] bool isOn() const;
    /// Level 0 < level <= 1 of the lights' full brightness. False when no light could be written.
    [[nodiscard]] bool turnOn(float level);
    void turnOff();

private:
    QStringList m_lights; ///< Their folders.
};

} // namespace kelvara
