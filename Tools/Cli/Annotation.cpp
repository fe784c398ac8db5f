#include "Tools/Cli/Annotation.h"

#include <QPainter>

#include <algorithm>

namespace kelvara::cli {

QImage annotated(const QImage& picture, const std::vector<QPolygonF>& outlines)
{
    QImage drawn = picture;
    QPainter painter(&drawn);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(230, 20, 120), std::max(1.5, std::max(picture.width(), picture.height()) / 400.0)));
    for (const QPolygonF& outline : outlines)
        painter.drawPolygon(outline);
    return drawn;
}

} // namespace kelvara::cli
