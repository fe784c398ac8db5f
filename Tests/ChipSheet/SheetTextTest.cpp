#include "Platform/Chip/sheet/SheetText.h"
#include "Platform/Chip/sheet/SheetProgress.h"
#include "Platform/Chip/sheet/SheetStyle.h"
#include "Tests/ChipSheet/SheetRig.h"
#include "Tests/Support/AccessWatch.h"

#include <QAccessible>
#include <QFontInfo>
#include <QProgressBar>
#include <QScrollArea>
#include <QScrollBar>
#include <QThread>

#include <cmath>
#include <numeric>
#include <set>

namespace kelvara::chip {
namespace {

using sheet::SheetText;

const QString kCircles
    = QString::fromUtf8("Kimliğiniz okunuyor…\n🟢 🟢 🟢 ⚪️ ⚪️ ⚪️ ⚪️ ⚪️ ⚪️ ⚪️ ");
const QString kLongWord = QString::fromUtf8("Çekoslovakyalılaştıramadıklarımızdanmışsınızcasına yaklaştırın");

/// Every text that the reader has of its own, and what hosts may show.
std::vector<std::pair<NFCViewDisplayMessage, QString>> everyText()
{
    std::vector<std::pair<NFCViewDisplayMessage, QString>> all;
    for (const Kind kind :
        { Kind::requestPresentCard, Kind::authenticating, Kind::readingDataGroup, Kind::successfulRead })
        all.emplace_back(message(kind), message(kind).text());
    all.emplace_back(message(Kind::requestPresentCard, 30, true), message(Kind::requestPresentCard, 30, true).text());
    for (int kind = 0; kind <= int(Failure::ConnectionFailed); ++kind)
        all.emplace_back(failed(Failure(kind)), failed(Failure(kind)).text());
    all.emplace_back(message(Kind::readingDataGroup), kCircles);
    all.emplace_back(message(Kind::readingDataGroup), kLongWord);
    return all;
}

struct Screen
{
    QSize size;
    int letters; ///< Of the system, pixels.
    bool fits; ///< All is to be seen at once, without scrolling.
};

class SheetRigScreens : public SheetRig, public testing::WithParamInterface<Screen>
{ };

/// Ink on the outermost lines of pixels of a widget that should have air there.
bool touchesEdge(QWidget* widget)
{
    const QImage seen = widget->grab().toImage().convertToFormat(QImage::Format_Grayscale8);
    for (int y = 0; y < seen.height(); ++y) {
        if (qGray(seen.pixel(0, y)) < 128 || qGray(seen.pixel(seen.width() - 1, y)) < 128)
            return true;
    }
    return false;
}

TEST_P(SheetRigScreens, NoTextIsCutOff)
{
    QFont letters = window->font();
    letters.setPixelSize(GetParam().letters);
    window->setFont(letters);
    window->resize(GetParam().size);
    Motion still(false);
    for (const auto& [shown, text] : everyText()) {
        if (shown.failure && shown.failure->kind == Failure::UserCancelled)
            continue; // takes the sheet away
        SCOPED_TRACE(text.toStdString());
        const std::unique_ptr<ReaderSheet> sheet(newSheet());
        sheet->setStyle(&still);
        sheet->present();
        sheet->display(shown, text);

        const QWidget* const panel = button(sheet.get())->parentWidget();
        EXPECT_GT(panel->y(), 0);
        EXPECT_EQ(panel->geometry().bottom(), sheet->rect().bottom());
        EXPECT_TRUE(panel->rect().contains(button(sheet.get())->geometry()));
        EXPECT_GE(button(sheet.get())->width(),
            button(sheet.get())->fontMetrics().horizontalAdvance(button(sheet.get())->text()));

        auto* const title = sheet->findChild<SheetText*>("title");
        EXPECT_GE(title->height(), title->heightForWidth(title->width()));
        auto* const label = sheet->findChild<SheetText*>("message");
        EXPECT_GE(label->height(), label->heightForWidth(label->width()));
        EXPECT_FALSE(touchesEdge(title));
        EXPECT_FALSE(touchesEdge(label));
        auto* const area = sheet->findChild<QScrollArea*>();
        EXPECT_LE(label->width(), area->viewport()->width());
        if (GetParam().fits)
            EXPECT_GE(area->viewport()->height(), label->height());
        else
            EXPECT_GE(area->viewport()->height() + area->verticalScrollBar()->maximum(), label->height());
        EXPECT_GE(QFontInfo(label->font()).pixelSize(), 16);
    }
}

INSTANTIATE_TEST_SUITE_P(All, SheetRigScreens,
    testing::Values(Screen { { 320, 568 }, 13, true }, Screen { { 320, 568 }, 26, true },
        Screen { { 320, 568 }, 32, true }, Screen { { 390, 844 }, 32, true }, Screen { { 390, 844 }, 52, true },
        Screen { { 568, 320 }, 16, true }, Screen { { 320, 240 }, 32, false }));

TEST_F(SheetRig, LettersGrowWithTheSystems)
{
    const auto size = [&](int letters) {
        QFont font = window->font();
        font.setPixelSize(letters);
        window->setFont(font);
        const std::unique_ptr<ReaderSheet> sheet(newSheet());
        sheet->present();
        return QFontInfo(sheet->findChild<SheetText*>("message")->font()).pixelSize();
    };
    EXPECT_EQ(size(12), 16);
    EXPECT_EQ(size(17), 17);
    EXPECT_EQ(size(32), 32);
}

TEST(SheetTextTest, DrawsCirclesWithoutAFontForThem)
{
    const auto seen = [](const char* text, QRgb color) {
        SheetText label;
        QFont letters = label.font();
        letters.setPixelSize(40);
        label.setFont(letters);
        label.setText(QString::fromUtf8(text));
        label.resize(200, label.heightForWidth(200));
        const QImage image = label.grab().toImage();
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                count += image.pixel(x, y) == color;
        }
        return count;
    };
    const QRgb green = qRgb(0x1f, 0xa9, 0x68);
    const int one = seen("🟢", green);
    EXPECT_GT(one, 500);
    EXPECT_NEAR(seen("🟢 🟢\n🟢", green), 3 * one, one / 20) << "equally large, whole, on lines of their own";
    EXPECT_EQ(seen("⚪️", green), 0);
    EXPECT_EQ(sheet::spokenText(kCircles), QString::fromUtf8("Kimliğiniz okunuyor…"));
}

TEST(SheetProgressTest, IsWhereItShouldBeHoweverBusyTheMachine)
{
    sheet::SheetProgress bar;
    bar.resize(200, sheet::SheetProgress::kThickness);
    bar.show();
    const auto filled = [&bar] {
        const QImage drawn = bar.grab().toImage();
        int columns = 0;
        for (int x = 0; x < drawn.width(); ++x)
            columns += drawn.pixelColor(x, drawn.height() / 2) == sheet::kAccent;
        return 100.0 * columns / drawn.width();
    };
    bar.advance(20, true);
    EXPECT_LT(filled(), 19) << "it glides";
    // Piece after piece, and no time for a frame in between.
    for (int percent = 21; percent <= 60; ++percent) {
        QThread::msleep(10);
        bar.advance(percent, true);
    }
    EXPECT_GT(filled(), 40);
    QThread::msleep(600);
    EXPECT_NEAR(filled(), 60, 1);
}

TEST_F(SheetRig, TellsAssistiveTechnology)
{
    const std::unique_ptr<ReaderSheet> sheet(newSheet());
    sheet->present();
    EXPECT_EQ(sheet->accessibleDescription(), message(Kind::requestPresentCard).text());
    sheet->display(message(Kind::readingDataGroup, 20), kCircles);
    EXPECT_EQ(sheet->accessibleDescription(), QString::fromUtf8("Kimliğiniz okunuyor…"));
    sheet->display(failed(Failure::TagLost), QStringLiteral("lost"));
    EXPECT_EQ(sheet->accessibleDescription(), QStringLiteral("lost"));

    const auto* const dialog = QAccessible::queryAccessibleInterface(sheet.get());
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->role(), QAccessible::Dialog);
    EXPECT_TRUE(dialog->state().modal);
    EXPECT_EQ(dialog->text(QAccessible::Name), QString::fromUtf8("Okuma başarısız"));
    const auto* const label = QAccessible::queryAccessibleInterface(sheet->findChild<SheetText*>("message"));
    ASSERT_TRUE(label);
    EXPECT_EQ(label->role(), QAccessible::StaticText);
    EXPECT_EQ(label->text(QAccessible::Name), QStringLiteral("lost"));
    EXPECT_EQ(sheet->findChild<QProgressBar*>()->value(), 40);
}

TEST_F(SheetRig, SaysTheProgressAtEveryFifthAndEveryMessageOnce)
{
    const auto bar = [](int percent) {
        return QString::fromUtf8("Okunuyor\n") + QString::fromUtf8("🟢 ").repeated(percent / 20)
            + QString::fromUtf8("⚪️ ").repeated(5 - percent / 20);
    };
    struct Row
    {
        const char* name;
        std::vector<int> percents;
        QStringList said;
    };
    std::vector<int> every(101);
    std::iota(every.begin(), every.end(), 0);
    for (const Row& row : {
             Row { "every piece", every,
                 { "Okunuyor", "Yüzde 20", "Yüzde 40", "Yüzde 60", "Yüzde 80", "Yüzde 100", "Bitti" } },
             Row { "leaps", { 0, 0, 19, 55, 55, 81 }, { "Okunuyor", "Yüzde 55", "Yüzde 81", "Yüzde 100", "Bitti" } },
             Row { "nothing but the end", {}, { "Yüzde 100", "Bitti" } },
         }) {
        const std::unique_ptr<ReaderSheet> sheet(newSheet());
        sheet->present();
        test::AccessWatch watch;
        for (const int percent : row.percents)
            sheet->display(message(Kind::readingDataGroup, percent), bar(percent));
        sheet->display(message(Kind::successfulRead, 100), QStringLiteral("Bitti"));
        EXPECT_EQ(watch.said, row.said) << row.name << ": " << watch.said.join('|').toStdString();
    }
    const std::unique_ptr<ReaderSheet> sheet(newSheet());
    test::AccessWatch watch;
    sheet->present();
    sheet->display(message(Kind::readingDataGroup, 40), bar(40));
    sheet->display(message(Kind::requestPresentCard, 40, true), QStringLiteral("again"));
    sheet->display(message(Kind::readingDataGroup, 41), bar(41));
    sheet->display(failed(Failure::TagLost), QStringLiteral("lost"));
    EXPECT_EQ(watch.said.mid(1), QStringList({ "Yüzde 40", "Okunuyor", "again", "Okunuyor", "lost" }))
        << watch.said.join('|').toStdString();
}

TEST_F(SheetRig, LettersGrowWithTheScaleAsWell)
{
    const std::unique_ptr<ReaderSheet> sheet(newSheet());
    sheet->present();
    const auto size = [&] { return QFontInfo(sheet->findChild<SheetText*>("message")->font()).pixelSize(); };
    const int ordinary = size();
    for (const auto& [scale, letters] :
        { std::pair(2.0, 32), std::pair(0.5, ordinary), std::pair(std::nan(""), ordinary) }) {
        sheet->setTextScale(scale);
        EXPECT_EQ(size(), letters) << scale;
    }
}

} // namespace
} // namespace kelvara::chip
