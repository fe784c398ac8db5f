#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;
class QPushButton;

namespace kelvara {

/// What stands over a conference view while there is no picture: that it is connecting, or what went wrong. Takes all
/// clicks. Internal to this room; main thread.
class ConferenceCover final : public QWidget
{
    Q_OBJECT
public:
    explicit ConferenceCover(QWidget* parent);

    /// By how much letters are larger than ordinary, where there is room. Initially 1.
    void setTextScale(double scale);
    void showConnecting();
    /// A sentence that stays until it is dismissed.
    void showMessage(const QString& sentence);

Q_SIGNALS:
    /// The person wants to wait no longer, or has read the sentence.
    void dismissed();

protected:
    void paintEvent(QPaintEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void tell(const QString& sentence, const QString& action);
    void fitLetters();
    [[nodiscard]] bool takeLetters(double scale);
    void paintSign(QPainter& painter) const;
    [[nodiscard]] QRectF signRect() const;

    QWidget* m_sign; ///< The place of the turning arc or the warning.
    QLabel* m_sentence;
    QPushButton* m_action;
    QTimer m_turning;
    double m_textScale = 1;
    int m_turn = 0; ///< Degrees.
    bool m_isConnecting = false;
};

} // namespace kelvara
