#pragma once

#include "Platform/Foundation/Export.h"
#include "Platform/Imaging/UIImage.h"

#include <QSize>
#include <QString>

#include <optional>

class QPainter;
class QPainterPath;
class QRectF;

namespace kelvara {

/// A picture on a control: a bitmap, or one of the library's drawings, which is rendered sharp at whatever size and
/// pixel ratio it is painted at. An image that came from `getMyImage` is such a drawing too. A value. Main thread.
class KELVARA_EXPORT ControlImage
{
public:
    ControlImage(const UIImage& image);
    ControlImage(const QImage& image);

    /// One of the library's own drawings (see `ImageCatalog`); absent for an unknown name.
    [[nodiscard]] static std::optional<ControlImage> named(const QString& name);

    /// The drawing's name; empty for a bitmap.
    [[nodiscard]] const QString& name() const { return m_name; }
    /// In points.
    [[nodiscard]] QSizeF size() const { return m_size; }
    [[nodiscard]] bool isNull() const { return m_size.isEmpty(); }

    /// Paints the picture stretched to `target`, clipped softly by `clip` if that is not empty.
    void paint(QPainter& painter, const QRectF& target, const QPainterPath& clip) const;

    /// The same drawing, or the very same bitmap.
    friend bool operator==(const ControlImage& a, const ControlImage& b)
    {
        return a.m_name == b.m_name && a.m_size == b.m_size && a.m_bitmap.cacheKey() == b.m_bitmap.cacheKey();
    }

private:
    ControlImage() = default;
    [[nodiscard]] const QImage& rendered(const QSize& pixels) const;

    QString m_name;
    QImage m_bitmap; ///< Null for a drawing.
    QSizeF m_size;
    mutable QImage m_rendered; ///< As last painted.
};

} // namespace kelvara
