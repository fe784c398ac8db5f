#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include <chrono>
#include <cstdint>
#include <optional>

namespace kelvara::demo {

/// What the command line asks for. A value.
struct DemoOptions
{
    bool help = false;
    std::uint32_t seed = 1;
    QString out = QStringLiteral("out/demo");
    std::optional<QSize> size; ///< Of the window in points; absent: 390×844, or 844×390 with a webcam.
    double textScale = 1; ///< How much larger than ordinary letters are, 1 to 3.
    bool camera = false; ///< The device's own cameras instead of replayed ones.
    bool scripted = false; ///< The scripted person presses the buttons although a real one could.
    bool byHand = false; ///< A real person presses the buttons although the pictures are replayed.
    bool noCall = false; ///< The flow ends before the video call.
    bool loseCard = false; ///< The card slips away once while its chip is read.
    QString cardFront; ///< Still, folder or video; empty: a specimen.
    QString cardBack;
    QString selfie;
    /// Absent: a minute for the scripted person, for ever by hand.
    std::optional<std::chrono::milliseconds> limit;

    /// What cannot be understood, as one sentence; empty if all was.
    QString problem;

    /// `arguments` without the program's name.
    [[nodiscard]] static DemoOptions parse(const QStringList& arguments);
    [[nodiscard]] static QString usage();
};

} // namespace kelvara::demo
