#pragma once

#include <QTextDocument>
#include <QWidget>

namespace kelvara::chip::sheet {

/// Centred lines of text that wrap between words, in need inside one, so that nothing is ever cut off; as tall as
/// `heightForWidth` says. Coloured circles among the characters are drawn by the widget itself: not every system has
/// a font with them, and they must be equally large. Main thread.
class SheetText : public QWidget
{
    Q_OBJECT

public:
    explicit SheetText(QWidget* parent = nullptr);
    ~SheetText() override;

    [[nodiscard]] const QString& text() const { return m_text; }
    void setText(const QString& text);
    void setColor(const QColor& color);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    /// The same at another size of letters (pixels), without taking it.
    [[nodiscard]] int heightForWidth(int width, int letterSize) const;
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void set(QTextDocument& document, const QFont& font) const;
    /// Makes the lines about equally long, so that no word stands alone in the last one.
    void balance();

    QString m_text;
    QColor m_color;
    QTextDocument m_document; ///< Set with the widget's own font.
    int m_widthSetFor = -1;
};

/// The text as it is read out: without coloured circles and line ends.
[[nodiscard]] QString spokenText(const QString& text);

} // namespace kelvara::chip::sheet
