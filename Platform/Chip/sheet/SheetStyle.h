#pragma once

#include <QColor>

/// The sheet's colours and lengths (points), shared by its parts.
namespace kelvara::chip::sheet {

inline constexpr QColor kSurface { 0xff, 0xff, 0xff };
inline constexpr QColor kTitleColor { 0x0f, 0x20, 0x2a };
inline constexpr QColor kTextColor { 0x41, 0x53, 0x5d };
inline constexpr QColor kQuiet { 0xe9, 0xf1, 0xf3 }; ///< Tracks and the button.
inline constexpr QColor kAccent { 27, 170, 194 };
inline constexpr QColor kDeepAccent { 0x0a, 0x5f, 0x6e }; ///< The accent where it is text: 6 : 1 on `kQuiet`.
inline constexpr QColor kWarning { 0xe8, 0x9c, 0x1f };
inline constexpr QColor kSuccess { 0x1f, 0xa9, 0x68 };
inline constexpr QColor kFailure { 0xd6, 0x45, 0x45 };

inline constexpr int kWidestPanel = 420;
inline constexpr double kPanelRadius = 26;

/// Sizes of letters at the ordinary system font size, in points.
inline constexpr int kTextSize = 16;
inline constexpr int kTitleSize = 22;
inline constexpr int kButtonTextSize = 17;

} // namespace kelvara::chip::sheet
