#include "Kelvara/StatementLabel.h"
#include "Kelvara/ActionButton.h"
#include "Tests/Kelvara/Contrast.h"
#include "Tests/Kelvara/WidgetTools.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kelvara::test {
namespace {

QFont boldFont(int pixels)
{
    QFont font;
    font.setPixelSize(pixels);
    font.setBold(true);
    return font;
}

const QString kInstruction
    = QString::fromUtf8("T.C Kimlik Kartınızın ön yüzünü yukarıda belirtilen alan içerisine yerleştiriniz.");

struct LookRow
{
    int fontPixels;
    double ratio;
};

class Statements : public testing::TestWithParam<LookRow>
{
protected:
    Statements()
    {
        label.setNumberOfLines(0);
        label.shape(kInstruction, boldFont(GetParam().fontPixels));
        label.resize(370, label.heightForWidth(370));
    }
    StatementLabel label;
};

TEST_P(Statements, StandOutFromAWhitePreviewAlongEveryEdge)
{
    const double ratio = GetParam().ratio;
    const EdgeContrast measured
        = edgeContrast(painted(label, ratio, Qt::white), painted(label, ratio, Qt::black), ratio);
    ASSERT_GT(measured.places, 1000U);
    EXPECT_GE(measured.hundredth, 4.5) << "99 of 100 pixels; least " << measured.least;
}

TEST(ActionButton, HasATitleThatStandsOutFromTheAccentColour)
{
    ActionButton button;
    button.setTitle(QString::fromUtf8("İptal Et"));
    button.resize(330, 50);
    for (const double ratio : { 1.0, 3.0 }) {
        button.setBackgroundColor(Qt::black);
        const QImage letters = painted(button, ratio, Qt::black);
        button.setBackgroundColor({ 27, 170, 194 });
        const EdgeContrast measured = edgeContrast(painted(button, ratio, Qt::black), letters, ratio);
        ASSERT_GT(measured.places, 200U);
        RecordProperty("actionTitle", QString::number(measured.hundredth, 'f', 2).toStdString());
        RecordProperty("actionTitleLeast", QString::number(measured.least, 'f', 2).toStdString());
        EXPECT_GE(measured.hundredth, 4.5) << "99 of 100 pixels; least " << measured.least;
    }
}

TEST_P(Statements, HaveRoomForEverySeam)
{
    const QImage look = painted(label, GetParam().ratio, Qt::white);
    int darkest = 255;
    for (int x = 0; x < look.width(); ++x)
        darkest = std::min({ darkest, qGray(look.pixel(x, 0)), qGray(look.pixel(x, look.height() - 1)) });
    for (int y = 0; y < look.height(); ++y)
        darkest = std::min({ darkest, qGray(look.pixel(0, y)), qGray(look.pixel(look.width() - 1, y)) });
    EXPECT_GT(darkest, 240);
}

INSTANTIATE_TEST_SUITE_P(Label, Statements,
    testing::Values(LookRow { 15, 1 }, LookRow { 18, 1 }, LookRow { 15, 3 }, LookRow { 18, 2.75 }, LookRow { 60, 2 }));

/// How many lines of letters there are.
int paintedLines(StatementLabel& label)
{
    const QImage look = painted(label, 1, Qt::black);
    int lines = 0;
    bool inLine = false;
    for (int y = 0; y < look.height(); ++y) {
        int brightest = 0;
        for (int x = 0; x < look.width(); ++x)
            brightest = std::max(brightest, qGray(look.pixel(x, y)));
        lines += brightest > 60 && !inLine;
        inLine = brightest > 60;
    }
    return lines;
}

TEST(StatementLabel, SetsAsManyLinesAsItMay)
{
    struct Row
    {
        const char* text;
        int allowed;
        int width;
        int lines;
    };
    for (const Row& row : { Row { "MMM", 0, 200, 1 }, Row { "MMM \nMMM", 0, 200, 2 }, Row { "MMM MMM MMM", 0, 80, 3 },
             Row { "MMMMMMMMM", 0, 80, 3 }, Row { "MMM MMM MMM", 1, 80, 1 }, Row { "MMM MMM MMM", 2, 80, 2 },
             Row { "MMM\nMMM", 1, 200, 1 }, Row { "", 0, 100, 0 } }) {
        StatementLabel label;
        label.setNumberOfLines(row.allowed);
        label.shape(QString::fromUtf8(row.text), boldFont(18));
        label.resize(row.width, std::max(1, label.heightForWidth(row.width)));
        EXPECT_EQ(paintedLines(label), row.lines) << row.text << " in " << row.allowed;
        // What is wider than its line ends in an ellipsis inside it.
        const QImage look = painted(label, 1, Qt::black);
        for (int y = 0; y < look.height(); ++y)
            EXPECT_LT(qGray(look.pixel(look.width() - 1, y)), 30);
    }
}

TEST(StatementLabel, IsWhiteAndCentredWhateverItWas)
{
    StatementLabel label(QRect(0, 0, 200, 100));
    QPalette colors = label.palette();
    colors.setColor(QPalette::WindowText, Qt::red);
    label.setPalette(colors);
    label.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label.shape(QStringLiteral("<b>I</b>"), boldFont(18));
    EXPECT_EQ(label.textColor(), QColor(Qt::white));
    const QImage look = painted(label, 1, Qt::black);
    QRect letters;
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 200; ++x) {
            if (qGray(look.pixel(x, y)) > 128)
                letters |= QRect(x, y, 1, 1);
        }
    }
    EXPECT_NEAR(letters.center().x(), 100, 2);
    EXPECT_NEAR(letters.center().y(), 50, 4);
    EXPECT_GT(letters.width(), 50) << "markup is text here";

    QWidget window;
    window.resize(300, 300);
    StatementLabel over(QRect(0, 0, 300, 300), &window);
    EXPECT_EQ(window.childAt(100, 100), nullptr) << "touches pass through";
}

} // namespace
} // namespace kelvara::test
