#pragma once

#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QPolygonF>
#include <QString>

#include <optional>
#include <vector>

namespace kelvara::cli {

/// What was seen in one picture.
struct Finding
{
    bool found = false;
    QString reason; ///< Why not, as a sentence.
    QJsonObject facts; ///< What else there is to tell.
    QJsonObject milliseconds; ///< By stage.
    std::vector<QPolygonF> outlines; ///< In pixels, origin top-left, for drawing.
    bool isBroken = false; ///< Looking itself failed.
};

/// One of the program's ways to look at pictures.
class Look
{
public:
    virtual ~Look() = default;
    /// Why no picture can be looked at, as a sentence; absent when all is well.
    [[nodiscard]] virtual std::optional<QString> problem() { return std::nullopt; }
    /// `picture` is upright, `Format_RGB32`.
    [[nodiscard]] virtual Finding at(const QImage& picture) = 0;
};

/// Coordinates to a hundredth of a pixel.
[[nodiscard]] QJsonObject jsonOf(const QPointF& point);
[[nodiscard]] QJsonArray jsonOf(const QPolygonF& corners);
/// To a microsecond.
[[nodiscard]] double rounded(double milliseconds);

} // namespace kelvara::cli
