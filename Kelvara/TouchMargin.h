#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSize>

class QAbstractButton;
class QMouseEvent;
class QWidget;

namespace kelvara {

/// Lets a small button be pressed a little beside itself: presses that reach the button's parent within the margin are
/// handed to the button, with what follows until the release. Child of its button. Main thread.
class TouchMargin final : public QObject
{
public:
    explicit TouchMargin(QAbstractButton* button);

    [[nodiscard]] QSize minimumSize() const { return m_minimumSize; }
    /// Negative lengths count as none.
    void setMinimumSize(const QSize& size) { m_minimumSize = size.expandedTo(QSize(0, 0)); }

    /// Whether a position in the button's coordinates lies on the button or in its margin.
    [[nodiscard]] bool contains(const QPoint& position) const;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void watchParent();
    [[nodiscard]] bool forward(QMouseEvent& event);

    QAbstractButton* const m_button;
    QPointer<QWidget> m_parent;
    QSize m_minimumSize;
    bool m_forwarding = false; ///< From a press in the margin to its release.
    bool m_sending = false;
};

} // namespace kelvara
