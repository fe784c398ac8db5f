#include "Tools/Cli/Look.h"

#include <cmath>

namespace kelvara::cli {

QJsonObject jsonOf(const QPointF& point)
{
    const auto hundredths = [](double value) { return std::round(value * 100) / 100; };
    return { { QStringLiteral("x"), hundredths(point.x()) }, { QStringLiteral("y"), hundredths(point.y()) } };
}

QJsonArray jsonOf(const QPolygonF& corners)
{
    QJsonArray list;
    for (const QPointF& corner : corners)
        list << jsonOf(corner);
    return list;
}

double rounded(double milliseconds)
{
    return std::round(milliseconds * 1000) / 1000;
}

} // namespace kelvara::cli
