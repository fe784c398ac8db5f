#include "Platform/Chip/sheet/SheetText.h"

#include "Platform/Chip/sheet/SheetStyle.h"

#include <QAbstractTextDocumentLayout>
#include <QEvent>
#include <QPainter>
#include <QTextCursor>
#include <QTextObjectInterface>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace kelvara::chip::sheet {

namespace {

constexpr int kCircleObject = QTextFormat::UserObject + 1;
constexpr int kCircleColor = QTextFormat::UserProperty + 1;
constexpr char16_t kColorfulVariant = 0xfe0f; ///< Asks for the colourful form of the character before it.
constexpr double kDiameter = 0.84; ///< Of the font's ascent.
constexpr double kAdvance = 1.06;
constexpr int kRimDarkening = 118;
constexpr double kLineHeight = 116; ///< Percent.

/// The colour of a character that is a filled circle.
std::optional<QColor> circleColor(char32_t character)
{
    struct Circle
    {
        char32_t character;
        QColor color;
    };
    static constexpr std::array kCircles {
        Circle { 0x26aa, { 0xdd, 0xe7, 0xea } }, // white, which must be seen on white
        Circle { 0x26ab, { 0x2b, 0x37, 0x3d } },
        Circle { 0x1f534, kFailure },
        Circle { 0x1f535, { 0x2f, 0x80, 0xd8 } },
        Circle { 0x1f7e0, kWarning },
        Circle { 0x1f7e1, { 0xf2, 0xc8, 0x3a } },
        Circle { 0x1f7e2, kSuccess },
        Circle { 0x1f7e3, { 0x8e, 0x5b, 0xc4 } },
        Circle { 0x1f7e4, { 0x8a, 0x5a, 0x3c } },
    };
    for (const Circle& circle : kCircles) {
        if (circle.character == character)
            return circle.color;
    }
    return {};
}

/// Stands in the text where a circle is.
class CirclePainter final : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    using QObject::QObject;

    QSizeF intrinsicSize(QTextDocument* document, int, const QTextFormat&) override
    {
        const double ascent = QFontMetricsF(document->defaultFont()).ascent();
        return { ascent * kAdvance, ascent };
    }

    void drawObject(QPainter* painter, const QRectF& area, QTextDocument*, int, const QTextFormat& format) override
    {
        const double diameter = area.height() * kDiameter;
        QRectF circle(0, 0, diameter, diameter);
        circle.moveCenter(area.center());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const auto color = format.property(kCircleColor).value<QColor>();
        painter->setPen(QPen(color.darker(kRimDarkening), 1));
        painter->setBrush(color);
        painter->drawEllipse(circle);
        painter->restore();
    }
};

template<typename Plain, typename Circle> void forEachPart(const QString& text, Plain plain, Circle circle)
{
    QString run;
    bool isAfterCircle = false;
    for (const char32_t character : text.toUcs4()) {
        if (std::exchange(isAfterCircle, false) && character == kColorfulVariant)
            continue;
        const auto color = circleColor(character);
        if (!color) {
            run += QString::fromUcs4(&character, 1);
            continue;
        }
        if (!run.isEmpty())
            plain(std::exchange(run, {}));
        circle(*color);
        isAfterCircle = true;
    }
    if (!run.isEmpty())
        plain(run);
}

int heightAt(QTextDocument& document, int width)
{
    document.setTextWidth(std::max(1, width));
    return static_cast<int>(std::ceil(document.size().height()));
}

} // namespace

SheetText::SheetText(QWidget* parent) : QWidget(parent), m_color(kTextColor)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    set(m_document, font());
}

SheetText::~SheetText() = default;

void SheetText::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    m_widthSetFor = -1;
    setAccessibleName(spokenText(text));
    set(m_document, font());
    updateGeometry();
    update();
}

void SheetText::setColor(const QColor& color)
{
    m_color = color;
    update();
}

void SheetText::set(QTextDocument& document, const QFont& font) const
{
    document.clear();
    document.setUndoRedoEnabled(false);
    document.setDocumentMargin(0);
    document.setDefaultFont(font);
    QTextOption option(Qt::AlignHCenter);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document.setDefaultTextOption(option);
    if (!document.documentLayout()->handlerForObject(kCircleObject))
        document.documentLayout()->registerHandler(kCircleObject, new CirclePainter(&document));
    QTextCursor cursor(&document);
    QTextBlockFormat lines;
    lines.setLineHeight(kLineHeight, QTextBlockFormat::ProportionalHeight);
    cursor.setBlockFormat(lines);
    forEachPart(
        m_text, [&](const QString& plain) { cursor.insertText(plain, QTextCharFormat()); },
        [&](const QColor& color) {
            QTextCharFormat format;
            format.setObjectType(kCircleObject);
            format.setProperty(kCircleColor, color);
            cursor.insertText(QString(QChar::ObjectReplacementCharacter), format);
        });
}

int SheetText::heightForWidth(int width) const
{
    return heightForWidth(width, font().pixelSize());
}

int SheetText::heightForWidth(int width, int letterSize) const
{
    if (m_text.isEmpty())
        return 0;
    QFont letters = font();
    if (letterSize > 0)
        letters.setPixelSize(letterSize);
    QTextDocument document;
    set(document, letters);
    return heightAt(document, width);
}

QSize SheetText::sizeHint() const
{
    return { static_cast<int>(std::ceil(m_document.idealWidth())),
        static_cast<int>(std::ceil(m_document.size().height())) };
}

void SheetText::balance()
{
    m_widthSetFor = width();
    const int height = heightAt(m_document, width());
    int narrowest = std::max(1, width() / 2);
    int widest = std::max(1, width());
    while (narrowest < widest) {
        const int middle = (narrowest + widest) / 2;
        if (heightAt(m_document, middle) > height)
            narrowest = middle + 1;
        else
            widest = middle;
    }
    // A word that is wider than the line breaks inside rather than be balanced.
    if (heightAt(m_document, widest) > height)
        m_document.setTextWidth(width());
}

void SheetText::paintEvent(QPaintEvent*)
{
    if (m_text.isEmpty())
        return;
    if (m_widthSetFor != width())
        balance();
    QPainter painter(this);
    painter.translate(
        (width() - m_document.textWidth()) / 2, std::max(0.0, (height() - m_document.size().height()) / 2));
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, m_color);
    m_document.documentLayout()->draw(&painter, context);
}

void SheetText::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::FontChange) {
        m_widthSetFor = -1;
        set(m_document, font());
        updateGeometry();
    }
    QWidget::changeEvent(event);
}

QString spokenText(const QString& text)
{
    QString spoken;
    forEachPart(
        text, [&](const QString& plain) { spoken += plain; }, [](const QColor&) {});
    return spoken.simplified();
}

} // namespace kelvara::chip::sheet

#include "SheetText.moc"
