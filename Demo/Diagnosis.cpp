#include "Demo/Diagnosis.h"

#include "Tools/Specimen/ScanAreas.h"

#include <QStringList>

namespace kelvara::demo {

namespace {

constexpr float kSmallestCard = 0.5F;
constexpr double kWideLine = 0.8; ///< Of the cut-out.

constexpr double kCardMillimetres = 85.6; // ISO/IEC 7810, ID-1
constexpr double kCapitalMillimetres = 2.54;
constexpr double kWellHeldCard = 0.91; ///< Of the cut-out's width.
constexpr double kReadableCapital = 16; ///< In pixels; lower capitals are not read reliably.

QString cardTrouble(bool front, const QImage& shown, const PictureAnalysis& analysis)
{
    QStringList troubles;
    if (!analysis.card(shown, kSmallestCard))
        troubles << QStringLiteral("no card rectangle is found in the cut-out");
    const bool face = analysis.face(shown).has_value();
    if (front && !face)
        troubles << QStringLiteral("no face is found on the card's front");
    if (!front && face)
        troubles << QStringLiteral("a face is seen, which the card's back must not show");
    if (!front) {
        if (const double width = analysis.textWidth(shown); width <= 0)
            troubles << QStringLiteral("no machine-readable lines are found at the card's foot");
        else if (width <= kWideLine)
            troubles << QStringLiteral("the machine-readable lines span less than four fifths of the cut-out: the card "
                                       "must come nearer");
        else
            troubles << QStringLiteral("the machine-readable lines are seen, but a check digit does not hold, a "
                                       "character is in doubt, or the card is upside down");
    }
    return troubles.isEmpty() ? QStringLiteral("all that is needed is seen at this moment, but not steadily")
                              : troubles.join(QStringLiteral(", and "));
}

} // namespace

QString whatIsMissing(Subject subject, const QImage& frame, const QSizeF& view, const PictureAnalysis& analysis)
{
    const char* name = subject == Subject::CardFront ? "the card's front"
        : subject == Subject::CardBack               ? "the card's back"
                                                     : "the selfie";
    const auto sentence = [name](const QString& reason) {
        return QStringLiteral("Still waiting for %1: %2.").arg(QLatin1String(name), reason);
    };
    if (frame.isNull())
        return sentence(QStringLiteral("the camera has not delivered a picture"));
    const specimen::ScanAreas areas = specimen::ScanAreas::of(view, frame.size());
    const QRectF area = subject == Subject::Selfie ? areas.oval : areas.card;
    const QImage shown = frame.copy(area.toAlignedRect().intersected(frame.rect()));
    if (subject != Subject::Selfie)
        return sentence(cardTrouble(subject == Subject::CardFront, shown, analysis));
    return sentence(analysis.face(shown) ? QStringLiteral("a face is seen at this moment, but not steadily")
                                         : QStringLiteral("no face is found in the oval"));
}

std::optional<QString> tooSmallPrint(const QSize& frame, const QSizeF& view)
{
    const double card = specimen::ScanAreas::of(view, frame).card.width() * kWellHeldCard;
    const double capital = card * kCapitalMillimetres / kCardMillimetres;
    if (capital >= kReadableCapital)
        return std::nullopt;
    return QStringLiteral("Note: this camera's pictures (%1×%2) show the machine-readable zone's capitals only %3 "
                          "pixels high; from %4 on they can be read. A camera of more pixels, or a window of another "
                          "shape (--size), helps.")
        .arg(frame.width())
        .arg(frame.height())
        .arg(capital, 0, 'f', 1)
        .arg(kReadableCapital);
}

} // namespace kelvara::demo
