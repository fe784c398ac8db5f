#pragma once

#include <QProgressBar>
#include <QVariantAnimation>

namespace kelvara::chip::sheet {

/// A thin bar from 0 to 100 that glides to where it should be. Main thread.
class SheetProgress final : public QProgressBar
{
    Q_OBJECT

public:
    explicit SheetProgress(QWidget* parent = nullptr);

    /// To this percentage, at once or gliding.
    void advance(int percent, bool glides);
    void setColor(const QColor& color);

    [[nodiscard]] QSize sizeHint() const override { return { 100, kThickness }; }
    [[nodiscard]] QSize minimumSizeHint() const override { return { kThickness, kThickness }; }

    static constexpr int kThickness = 6;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color;
    double m_shown = 0; ///< Percent.
    QVariantAnimation m_glide;
};

} // namespace kelvara::chip::sheet
