#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QProgressBar>

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
    /// Has the percentage read out.
    void announceValue();

    [[nodiscard]] QSize sizeHint() const override { return { 100, kThickness }; }
    [[nodiscard]] QSize minimumSizeHint() const override { return { kThickness, kThickness }; }

    static constexpr int kThickness = 6;

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    /// On to where it is by now.
    void glide();

    QColor m_color;
    double m_shown = 0; ///< Percent.
    QBasicTimer m_timer; ///< Active while it glides.
    QElapsedTimer m_clock; ///< Since it was where `m_shown` says.
};

} // namespace kelvara::chip::sheet
