#include "Kelvara/QorvelKycView_p.h"
#include "Platform/Chip/PassportReader.h"

#include <QFontMetrics>

#include <algorithm>
#include <cmath>

namespace kelvara {

namespace {

constexpr double kLargestTextScale = 3;
constexpr double kScaleStep = 0.97;
constexpr int kTitleAir = 16; ///< Above and below the letters of a button together.
constexpr int kTextMargin = 10;
constexpr int kActionMargin = 30;
constexpr int kActionHeight = 50;
/// What larger text keeps from what it must not touch.
constexpr int kLeastGap = 8;
/// Of the cut-out's border, as far as it lies outside.
constexpr int kBorder = 4;

QFont lettersOf(const QWidget* widget, int points, double scale)
{
    QFont letters = widget->font();
    letters.setPixelSize(static_cast<int>(std::lround(points * scale)));
    return letters;
}

} // namespace

void QorvelKycViewPrivate::setTextScale(double scale)
{
    if (std::isnan(scale))
        return;
    textScale = std::clamp(scale, 1.0, kLargestTextScale);
    idCardReader->setSheetTextScale(textScale);
    for (JitsiMeetView* call : callViews())
        call->setTextScale(textScale);
    layoutScreen();
}

int QorvelKycViewPrivate::fitLetters(StatementLabel* label, int points, int width, int highest) const
{
    double scale = textScale;
    QFont letters = lettersOf(label, points, scale);
    while (scale > 1 && label->heightForWidth(width, letters) > highest) {
        scale = std::max(1.0, scale * kScaleStep);
        letters = lettersOf(label, points, scale);
    }
    if (letters != label->font())
        label->setFont(letters);
    return label->heightForWidth(width);
}

void QorvelKycViewPrivate::layoutActionButtons()
{
    for (ActionButton* button : { informationNextButton, nfcReadButton, jitsiButton }) {
        const QFont letters = lettersOf(button, ActionButton::kTitleSize, textScale);
        if (letters != button->font())
            button->setFont(letters);
        const int height = std::max(kActionHeight, QFontMetrics(letters).height() + kTitleAir);
        button->setGeometry(
            kActionMargin, q->height() - kActionMargin - height, std::max(0, q->width() - 2 * kActionMargin), height);
    }
}

void QorvelKycViewPrivate::layoutScreen()
{
    const int width = q->width();
    const int height = q->height();
    const int line = std::max(0, width - 2 * kTextMargin);

    videoPreviewLayer->setFrame(QRectF(q->rect()));
    for (QWidget* filling : { static_cast<QWidget*>(cutoutView), static_cast<QWidget*>(cutoutSelfieView) })
        filling->setGeometry(q->rect());
    for (JitsiMeetView* call : callViews())
        call->setGeometry(q->rect());

    closeButton->setGeometry(width - 20 - 24, 20, 24, 24);
    layoutActionButtons();
    // In the middle, so that the nearer of close button and action button bounds it on both sides.
    const int middle = height / 2;
    const int free = 2 * std::min(middle - closeButton->geometry().bottom(), informationNextButton->y() - middle);
    for (StatementLabel* label : { informationLabel, nfcReadLabel, jitsiLabel }) {
        const int wanted = fitLetters(label, kInformationSize, line, free - 2 * kLeastGap);
        label->setGeometry(kTextMargin, (height - wanted) / 2, line, wanted);
    }

    const QRect shutter((width - 70) / 2, height - 30 - 70, 70, 70);
    takePhotoButton->setGeometry(shutter);
    // Made in code, the button is no circle, and may not spin, until it has been shaped at its final width.
    if (!takePhotoButton->stopRotate)
        takePhotoButton->shapeButton();
    flashButton->setGeometry(shutter.right() + 1 + 30, shutter.top() + (70 - 24) / 2, 24, 24);
    layoutInstruction(line);
    flipImageView->setGeometry((width - 80) / 2, (height - 80) / 2, 80, 80);

    publishGeometry();
}

void QorvelKycViewPrivate::layoutInstruction(int line)
{
    // Its ordinary place ends 30 above the shutter; larger text may come closer before it gets smaller.
    const int lowest = takePhotoButton->y() - kLeastGap;
    const int ordinary = takePhotoButton->y() - 30;
    const QRectF cutout = cutoutView->cutoutRect.value_or(QRectF());
    const int highest = static_cast<int>(std::ceil(cutout.bottom())) + kBorder + kLeastGap;
    const int wanted = fitLetters(idPhotoLabel, kStatementSize, line, lowest - highest);
    const int top = textScale > 1 ? std::min(std::max(ordinary - wanted, highest), lowest - wanted) : ordinary - wanted;
    idPhotoLabel->setGeometry(kTextMargin, top, line, wanted);
}

} // namespace kelvara
