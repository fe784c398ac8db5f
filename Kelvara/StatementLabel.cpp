#include "Kelvara/StatementLabel.h"

#include "Kelvara/PaintScale.h"
#include "Kelvara/TextSeam.h"

#include <QEvent>
#include <QFontInfo>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr int kUnlimitedWidth = QWIDGETSIZE_MAX;
constexpr int kSeamAlpha = 200;

/// How far the seam reaches, in points.
double seamRadius(const QFont& font)
{
    return std::max(1.5, QFontInfo(font).pixelSize() / 11.0);
}

/// Room for the seam on every side.
int seamMargin(const QFont& font)
{
    return static_cast<int>(std::ceil(2 * seamRadius(font)));
}

/// A text set in lines of a width, ready to be drawn.
class Setting
{
public:
    Setting(const QString& text, const QFont& font, Qt::Alignment alignment, int maximumLines, double width)
    {
        QString plain = text;
        plain.replace(QLatin1Char('\n'), QChar::LineSeparator);
        m_layout.setFont(font);
        QTextOption option(alignment & Qt::AlignHorizontal_Mask);
        option.setWrapMode(maximumLines == 1 ? QTextOption::NoWrap : QTextOption::WrapAtWordBoundaryOrAnywhere);
        m_layout.setTextOption(option);
        setLines(plain, width);
        if (maximumLines <= 0 || m_layout.lineCount() == 0)
            return;
        const QTextLine last = m_layout.lineAt(std::min(maximumLines, m_layout.lineCount()) - 1);
        if (m_layout.lineCount() <= maximumLines && last.naturalTextWidth() <= width)
            return;
        QString rest = plain.mid(last.textStart());
        rest.replace(QChar::LineSeparator, QLatin1Char(' '));
        // An ellipsis also where only a further line was dropped, so make the rest too long in any case.
        if (m_layout.lineCount() > maximumLines)
            rest = plain.mid(last.textStart(), last.textLength()).trimmed() + QChar(0x2026);
        setLines(plain.left(last.textStart()) + QFontMetrics(font).elidedText(rest, Qt::ElideRight, int(width)), width);
    }

    [[nodiscard]] QSizeF size() const { return m_size; }
    void draw(QPainter& painter, const QPointF& topLeft) const { m_layout.draw(&painter, topLeft); }

private:
    void setLines(const QString& text, double width)
    {
        m_layout.setText(text);
        m_size = QSizeF(0, 0);
        m_layout.beginLayout();
        for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
            line.setLineWidth(width);
            line.setPosition(QPointF(0, m_size.height()));
            m_size = QSizeF(std::max(m_size.width(), line.naturalTextWidth()), m_size.height() + line.height());
        }
        m_layout.endLayout();
    }

    QTextLayout m_layout;
    QSizeF m_size;
};

} // namespace

StatementLabel::StatementLabel(QWidget* parent) : QLabel(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setTextFormat(Qt::PlainText);
}

StatementLabel::StatementLabel(const QRect& frame, QWidget* parent) : StatementLabel(parent)
{
    setGeometry(frame);
}

void StatementLabel::shape(const QString& text, const QFont& font)
{
    setFont(font);
    setText(text);
    QPalette colors = palette();
    colors.setColor(foregroundRole(), Qt::white);
    setPalette(colors);
    setAlignment(Qt::AlignCenter);
}

void StatementLabel::setNumberOfLines(int lines)
{
    m_numberOfLines = std::max(0, lines);
    m_painted = QImage();
    setWordWrap(m_numberOfLines != 1); // Tells layouts that the height depends on the width.
    updateGeometry();
    update();
}

QColor StatementLabel::textColor() const
{
    return palette().color(foregroundRole());
}

QSize StatementLabel::sizeHint() const
{
    const int margins = 2 * seamMargin(font());
    const QSizeF text = Setting(this->text(), font(), alignment(), m_numberOfLines, kUnlimitedWidth).size();
    return { static_cast<int>(std::ceil(text.width())) + margins,
        static_cast<int>(std::ceil(text.height())) + margins };
}

QSize StatementLabel::minimumSizeHint() const
{
    const int margins = 2 * seamMargin(font());
    return QSize(fontMetrics().height(), fontMetrics().height()) + QSize(margins, margins);
}

int StatementLabel::heightForWidth(int width) const
{
    return heightForWidth(width, font());
}

int StatementLabel::heightForWidth(int width, const QFont& letters) const
{
    const int margins = 2 * seamMargin(letters);
    const Setting setting(text(), letters, alignment(), m_numberOfLines, std::max(1, width - margins));
    return static_cast<int>(std::ceil(setting.size().height())) + margins;
}

QImage StatementLabel::renderedText(double devicePixelRatio) const
{
    QImage letters((QSizeF(size()) * devicePixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
    letters.setDevicePixelRatio(devicePixelRatio);
    letters.fill(Qt::transparent);
    const int margin = seamMargin(font());
    const double available = std::max(1, width() - 2 * margin);
    const double room = height() - 2 * margin;
    const Setting setting(text(), font(), alignment(), m_numberOfLines, available);
    double top = margin;
    if (alignment() & Qt::AlignVCenter)
        top += (room - setting.size().height()) / 2;
    else if (alignment() & Qt::AlignBottom)
        top += room - setting.size().height();
    {
        QPainter painter(&letters);
        painter.setPen(textColor());
        setting.draw(painter, QPointF(margin, top));
    }
    QColor seam = seamColor(textColor());
    seam.setAlpha(kSeamAlpha);
    return withSeam(letters, seamRadius(font()) * devicePixelRatio, seam);
}

void StatementLabel::paintEvent(QPaintEvent*)
{
    if (text().isEmpty() || size().isEmpty())
        return;
    QPainter painter(this);
    // The label lies over the camera preview and is painted with every frame: set the text only when something changed.
    const double ratio = pixelsPerPoint(painter);
    if (m_painted.size() != (QSizeF(size()) * ratio).toSize() || m_painted.devicePixelRatio() != ratio
        || m_paintedText != text() || m_paintedAlignment != alignment()) {
        m_painted = renderedText(ratio);
        m_paintedText = text();
        m_paintedAlignment = alignment();
    }
    painter.setOpacity(isEnabled() ? 1.0 : 0.5);
    painter.drawImage(0, 0, m_painted);
}

void StatementLabel::changeEvent(QEvent* event)
{
    m_painted = QImage();
    QLabel::changeEvent(event);
}

} // namespace kelvara
