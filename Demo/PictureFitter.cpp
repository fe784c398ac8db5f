#include "Demo/PictureFitter.h"

#include <QLineF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kelvara::demo {

namespace {

constexpr double kCardFill = 0.955; ///< A well-held card's width over the cut-out's: its MRZ must span four fifths.
constexpr double kEdgeToEdgeFill = 0.96; ///< A picture that is taken to be the card itself.
constexpr double kTallestCard = 0.97; ///< Its height over the cut-out's, at most.
constexpr double kFaceHeight = 0.6; ///< Over the oval's.
constexpr double kPrintedPart = 0.35; ///< Of a scan's area: what is smaller is not the card.
constexpr QRgb kNeutral = 0xff3c434bU;

constexpr int kWorkingSide = 2000;
constexpr QSize kLook(1000, 704); ///< What the detectors are shown: a cut-out's shape.
constexpr float kSmallestInLook = 0.45F;

/// Parts of a picture that a card may fill, as transforms to the detectors' size; landscape parts as they are,
/// portrait parts turned.
std::vector<QTransform> looks(const QSizeF& picture, double zoom)
{
    std::vector<QTransform> all;
    for (const bool turned : { false, true }) {
        const QSizeF shape = turned ? QSizeF(kLook).transposed() : QSizeF(kLook);
        const QSizeF part = shape.scaled(picture, Qt::KeepAspectRatio) * zoom;
        const double scale = shape.width() / part.width();
        const auto places = [](double spare, double side) { return spare > side * 0.1 ? 3 : 1; };
        const QSizeF spare = picture - part;
        const int columns = places(spare.width(), part.width());
        const int rows = places(spare.height(), part.height());
        for (int i = 0; i < columns * rows; ++i) {
            const double x = spare.width() * (columns == 1 ? 0.5 : (i % columns) / 2.0);
            const int row = i / columns;
            const double y = spare.height() * (rows == 1 ? 0.5 : row / 2.0);
            QTransform look = QTransform::fromTranslate(-x, -y) * QTransform::fromScale(scale, scale);
            if (turned)
                look = look * QTransform().rotate(90) * QTransform::fromTranslate(kLook.width(), 0);
            all.push_back(look);
        }
    }
    return all;
}

double areaOf(const QPolygonF& quad)
{
    double twice = 0;
    for (qsizetype i = 0; i < quad.size(); ++i) {
        const QPointF& a = quad[i];
        const QPointF& b = quad[(i + 1) % quad.size()];
        twice += a.x() * b.y() - b.x() * a.y();
    }
    return std::abs(twice) / 2;
}

double aspectOf(const QSize& size)
{
    return static_cast<double>(std::max(size.width(), size.height()))
        / std::max(1, std::min(size.width(), size.height()));
}

/// ID-1, give or take a scanner's margin.
bool hasCardShape(const QSize& size)
{
    return aspectOf(size) > 1.54 && aspectOf(size) < 1.64;
}

/// A card cut out by hand, more or less along its edges; not a camera's 4:3, 3:2 or 16:9.
bool mayBeCard(const QSize& size)
{
    return aspectOf(size) > 1.51 && aspectOf(size) < 1.70;
}

QPointF middleOf(const QPolygonF& quad)
{
    return (quad[0] + quad[1] + quad[2] + quad[3]) / 4;
}

} // namespace

PictureFitter::PictureFitter(PictureAnalysis analysis, specimen::ScanAreas areas)
    : m_analysis(std::move(analysis)), m_areas(areas)
{ }

PictureFit PictureFitter::fit(const QImage& picture, Subject subject) const
{
    // Whole photographs are searched in part after part: at full size that would take minutes.
    const int side = std::max(picture.width(), picture.height());
    const double reduced = std::min(1.0, static_cast<double>(kWorkingSide) / side);
    const QImage working = reduced < 1
        ? picture.scaled(picture.size() * reduced, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        : picture;
    PictureFit fit = subject == Subject::Selfie ? fitFace(working) : fitCard(working, subject == Subject::CardFront);
    fit.toFrame = QTransform::fromScale(static_cast<double>(working.width()) / picture.width(),
                      static_cast<double>(working.height()) / picture.height())
        * fit.toFrame;
    return fit;
}

PictureFit PictureFitter::fitCard(const QImage& picture, bool front) const
{
    std::vector<QPolygonF> cards = findCards(picture);
    const QPolygonF edges({ QPointF(0, 0), QPointF(picture.width(), 0), QPointF(picture.width(), picture.height()),
        QPointF(0, picture.height()) });
    // A scan has a card's shape; a small rectangle in it is something printed on the card.
    if (!cards.empty() && hasCardShape(picture.size()) && areaOf(cards.front()) < kPrintedPart * areaOf(edges))
        cards.clear();
    if (front) {
        // The portrait tells which way is up, and a card from a rectangle that is none.
        for (const QPolygonF& card : cards) {
            if (const auto toFrame = layUpright(picture, card, kCardFill))
                return { *toFrame, true, false };
        }
        if (const auto toFrame = layUpright(picture, edges, kEdgeToEdgeFill))
            return { *toFrame, false, true };
    }
    if (!cards.empty())
        return { layCard(cards.front(), kCardFill, 0), true, false };
    // On the neutral margin any picture would look like a card: only one that may be a card is laid there.
    if (mayBeCard(picture.size()))
        return { layCard(edges, kEdgeToEdgeFill, 0), false, true };
    return { layWhole(picture), false, false };
}

std::optional<QTransform> PictureFitter::layUpright(const QImage& picture, const QPolygonF& card, double fill) const
{
    for (const double turn : { 0.0, 180.0 }) {
        const QTransform toFrame = layCard(card, fill, turn);
        if (showsFace(picture, toFrame))
            return toFrame;
    }
    return std::nullopt;
}

std::vector<QPolygonF> PictureFitter::findCards(const QImage& picture) const
{
    std::vector<QPolygonF> cards;
    for (const double zoom : { 1.0, 0.75, 0.55 }) {
        for (const QTransform& look : looks(QSizeF(picture.size()), zoom)) {
            const QImage part = laid(picture, look, QRect(QPoint(), kLook));
            if (const auto card = m_analysis.card(part, kSmallestInLook))
                cards.push_back(look.inverted().map(*card));
        }
        if (!cards.empty())
            break;
    }
    std::sort(cards.begin(), cards.end(), [](const auto& a, const auto& b) { return areaOf(a) > areaOf(b); });
    return cards;
}

QTransform PictureFitter::layCard(const QPolygonF& corners, double fill, double turn) const
{
    const QPointF across = (corners[1] - corners[0] + corners[2] - corners[3]) / 2;
    const QPointF down = (corners[3] - corners[0] + corners[2] - corners[1]) / 2;
    const QLineF one(QPointF(), across);
    const QLineF other(QPointF(), down);
    const bool wide = one.length() >= other.length();
    const QLineF& longSide = wide ? one : other;
    const QLineF& shortSide = wide ? other : one;
    double angle = std::atan2(longSide.dy(), longSide.dx()) * 180 / M_PI;
    if (angle > 90)
        angle -= 180;
    else if (angle <= -90)
        angle += 180;
    const double scale = std::min(
        fill * m_areas.card.width() / longSide.length(), kTallestCard * m_areas.card.height() / shortSide.length());
    const QPointF middle = middleOf(corners);
    const QPointF target = m_areas.card.center();
    return QTransform::fromTranslate(-middle.x(), -middle.y()) * QTransform().rotate(turn - angle)
        * QTransform::fromScale(scale, scale) * QTransform::fromTranslate(target.x(), target.y());
}

bool PictureFitter::showsFace(const QImage& picture, const QTransform& toFrame) const
{
    return m_analysis.face(laid(picture, toFrame, m_areas.card.toAlignedRect())).has_value();
}

PictureFit PictureFitter::fitFace(const QImage& picture) const
{
    const QSizeF size(picture.size());
    const QPointF middle(size.width() / 2, size.height() / 2);
    const QPointF target = m_areas.oval.center();
    for (const double turn : { 0.0, 90.0, 270.0 }) {
        const QSizeF turnedSize = turn == 0 ? size : size.transposed();
        const double scale = 1000.0 / std::max(size.width(), size.height());
        const QTransform look = QTransform::fromTranslate(-middle.x(), -middle.y()) * QTransform().rotate(turn)
            * QTransform::fromTranslate(turnedSize.width() / 2, turnedSize.height() / 2)
            * QTransform::fromScale(scale, scale);
        const auto face = m_analysis.face(laid(picture, look, QRect(QPoint(), (turnedSize * scale).toSize())));
        if (!face)
            continue;
        const double toOval = kFaceHeight * m_areas.oval.height() / face->height();
        return { look * QTransform::fromTranslate(-face->center().x(), -face->center().y())
                * QTransform::fromScale(toOval, toOval) * QTransform::fromTranslate(target.x(), target.y()),
            true, false };
    }
    return { layWhole(picture), false, false };
}

QTransform PictureFitter::layWhole(const QImage& picture) const
{
    const QSizeF size(picture.size());
    const double filling = std::max(m_areas.picture.width() / size.width(), m_areas.picture.height() / size.height());
    return QTransform::fromTranslate(-size.width() / 2, -size.height() / 2) * QTransform::fromScale(filling, filling)
        * QTransform::fromTranslate(m_areas.picture.width() / 2.0, m_areas.picture.height() / 2.0);
}

QColor PictureFitter::margin()
{
    return QColor::fromRgb(kNeutral);
}

QImage PictureFitter::laid(const QImage& picture, const QTransform& toFrame, const QRect& area)
{
    QImage image(area.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(kNeutral);
    // Bilinear sampling alone would skip pixels of a picture that becomes much smaller.
    const double scale = std::sqrt(std::abs(toFrame.determinant()));
    const double before = scale < 0.7 ? scale : 1.0;
    const QImage source = before < 1 ? picture.scaled((QSizeF(picture.size()) * before).toSize().expandedTo({ 1, 1 }),
                              Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                     : picture;
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setTransform(QTransform::fromScale(static_cast<double>(picture.width()) / source.width(),
                             static_cast<double>(picture.height()) / source.height())
        * toFrame * QTransform::fromTranslate(-area.x(), -area.y()));
    painter.drawImage(QPointF(), source);
    return image;
}

} // namespace kelvara::demo
