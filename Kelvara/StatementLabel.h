#pragma once

#include "Platform/Foundation/Export.h"

#include <QImage>
#include <QLabel>

namespace kelvara {

/// The instruction label: white text, readable over whatever the camera shows, because every letter has a dark seam.
/// It lets every mouse and touch event through. Wraps between words, in need inside one. Main thread.
class KELVARA_EXPORT StatementLabel : public QLabel
{
    Q_OBJECT

public:
    explicit StatementLabel(QWidget* parent = nullptr);
    explicit StatementLabel(const QRect& frame, QWidget* parent = nullptr);

    /// Takes font and text; makes it white and centred. The font is never shrunk to fit.
    void shape(const QString& text, const QFont& font);

    /// 0: as many as the text needs. What does not fit into the last line ends in an ellipsis. Initially 1.
    [[nodiscard]] int numberOfLines() const { return m_numberOfLines; }
    void setNumberOfLines(int lines);

    [[nodiscard]] QColor textColor() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    /// Of all lines at this width, with their seams.
    [[nodiscard]] int heightForWidth(int width) const override;
    /// The same with other letters, without taking them.
    [[nodiscard]] int heightForWidth(int width, const QFont& letters) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] QImage renderedText(double devicePixelRatio) const;

    int m_numberOfLines = 1;

    // As last painted, and what it was painted from.
    QImage m_painted;
    QString m_paintedText;
    Qt::Alignment m_paintedAlignment;
};

} // namespace kelvara
