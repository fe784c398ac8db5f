#include "Tests/Support/KycHarness.h"

#include <gtest/gtest.h>

namespace kelvara::test {
namespace {

using enum ViewType;

QString tr8(const char* text)
{
    return QString::fromUtf8(text);
}

constexpr auto kNoFront = "Cihazınızda ön kamera bulunmamaktadır. Devam butonuna basarak sürece devam edebilirsiniz.";
constexpr auto kNoBack = "Cihazınızda arka kamera bulunmamaktadır. Devam butonuna basarak sürece devam edebilirsiniz.";
constexpr auto kForced
    = "Cihazınızda NFC desteği bulunmamaktadır. Bu kontrol zorunlu tutulduğu için ilerleme yapılamamaktadır.";
constexpr auto kEmpty = "Sdk içerisine işlem listesi boş gönderilmiştir.";
constexpr auto kDone = "Süreç tamamlanmıştır.";
constexpr auto kNoNfc = "Cihazınızda Nfc desteği bulunmamaktadır. Devam butonuna basarak sürece devam edebilirsiniz.";
constexpr auto kFrontSide = "T.C Kimlik Kartınızın ön yüzünü yukarıda belirtilen alan içerisine yerleştiriniz.";

struct ScreenRow
{
    const char* name;
    QList<ViewType> steps;
    bool back;
    bool front;
    bool forceNfc;
    const char* text;
    const char* afterDevam; ///< null: there is no "Devam"
};

void PrintTo(const ScreenRow& row, std::ostream* out)
{
    *out << row.name;
}

class Screens : public testing::TestWithParam<ScreenRow>
{ };

TEST_P(Screens, TellWhatStandsInTheWay)
{
    const ScreenRow& row = GetParam();
    Device device = Device::phone();
    if (!row.back)
        device.back.reset();
    if (!row.front)
        device.front.reset();
    Stage stage(device);
    stage.view->setForceNfc(row.forceNfc);
    stage.setSteps(row.steps);
    EXPECT_EQ(stage.shownText(), tr8(row.text));
    EXPECT_TRUE(stage.isShown(stage.d().closeButton));
    QWidget* devam = stage.d().informationNextButton;
    if (stage.isShown(stage.d().nfcReadButton))
        devam = stage.d().nfcReadButton;
    ASSERT_EQ(stage.isShown(devam), row.afterDevam != nullptr);
    if (row.afterDevam) {
        QTest::mouseClick(devam, Qt::LeftButton);
        settle();
        EXPECT_EQ(stage.shownText(), tr8(row.afterDevam));
    }
}

INSTANTIATE_TEST_SUITE_P(All, Screens,
    testing::Values(ScreenRow { "noSteps", {}, true, true, false, kEmpty, kEmpty },
        ScreenRow { "noFrontCamera", { selfie, nfcRead }, true, false, false, kNoFront, kNoNfc },
        ScreenRow { "noFrontCameraAsLast", { selfie }, true, false, false, kNoFront, kNoFront },
        ScreenRow { "noBackCamera", { idPhoto, nfcRead }, false, true, false, kNoBack, kNoNfc },
        ScreenRow { "noCameraAtAll", { idPhoto }, false, false, false, kNoBack, kNoBack },
        ScreenRow { "cardNeedsOnlyTheBackCamera", { idPhoto }, true, false, false, kFrontSide, nullptr },
        ScreenRow { "forcedNfc", { idPhoto }, true, true, true, kForced, kForced },
        ScreenRow { "cameraBeforeForcedNfc", { selfie }, true, false, true, kNoFront, kNoFront },
        ScreenRow { "nfcStepWithoutNfc", { nfcRead }, true, true, false, kNoNfc, kDone },
        ScreenRow { "call", { jitsi }, true, true, false,
            "Birazdan müşteri temsilcisine bağlanacaksınız. \nLütfen bekleyiniz.", nullptr },
        ScreenRow { "card", { idPhoto }, true, true, false, kFrontSide, nullptr },
        ScreenRow { "selfieHasNoText", { selfie }, true, true, false, "", nullptr }),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Flow, StepsSetInTheTurnOfCreationNeverShowTheEmptyList)
{
    Device device = Device::phone();
    QorvelKycView view(QRectF(0, 0, 390, 844), device.services());
    view.setViewTypes({ nfcRead });
    view.show();
    QStringList seen;
    for (int round = 0; round < 6; ++round) {
        QCoreApplication::processEvents();
        for (const StatementLabel* label : view.findChildren<StatementLabel*>())
            if (label->isVisibleTo(&view) && !seen.contains(label->text()))
                seen << label->text();
    }
    EXPECT_EQ(seen, QStringList(tr8(kNoNfc)));
}

TEST(Flow, AnEmptyListKeepsTheScreenUntilTheNextChange)
{
    Stage stage;
    stage.setSteps({ nfcRead });
    stage.setSteps({});
    EXPECT_EQ(stage.shownText(), tr8(kNoNfc));
    EXPECT_TRUE(stage.view->viewTypeLinkedList().isEmpty());
    stage.view->showNfcView();
    settle();
    EXPECT_EQ(stage.shownText(), tr8(kEmpty));
}

struct NextRow
{
    const char* name;
    QList<ViewType> steps;
    ViewType current;
    ViewType next;
    bool finish;
};

void PrintTo(const NextRow& row, std::ostream* out)
{
    *out << row.name;
}

class Next : public testing::TestWithParam<NextRow>
{ };

TEST_P(Next, FollowsTheFirstNodeThatHoldsTheStep)
{
    const NextRow& row = GetParam();
    Stage stage;
    stage.setSteps(row.steps);
    stage.d().showViewType(row.current);
    settle();
    stage.d().getNextViewType();
    settle();
    EXPECT_EQ(stage.d().selectedViewType, row.next);
    EXPECT_EQ(stage.d().isFinish, row.finish);
    EXPECT_EQ(stage.shownText() == tr8(kDone), row.finish);
}

INSTANTIATE_TEST_SUITE_P(All, Next,
    testing::Values(NextRow { "first", { idPhoto, selfie }, idPhoto, selfie, false },
        NextRow { "last", { idPhoto, selfie }, selfie, selfie, true },
        NextRow { "sameStepTwiceStays", { selfie, selfie }, selfie, selfie, false },
        NextRow { "aRepeatedStepGoesOnAfterItsFirstPlace", { idPhoto, selfie, idPhoto }, idPhoto, selfie, false },
        NextRow { "stepOutsideTheListEndsIt", { idPhoto, selfie }, nfcRead, nfcRead, true },
        NextRow { "noList", {}, selfie, selfie, false }),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Flow, CompletionIsForGood)
{
    Stage stage;
    stage.setSteps({ nfcRead });
    stage.d().getNextViewType();
    settle();
    stage.setSteps({ idPhoto });
    EXPECT_EQ(stage.shownText(), tr8(kDone));
}

TEST(Flow, TheCallStepIsToldBeforeItBegins)
{
    Stage stage;
    stage.setSteps({ nfcRead, jitsi });
    ViewType during = jitsi;
    stage.delegate.during = [&](QorvelKycView&, const QString&) { during = stage.d().selectedViewType; };
    stage.d().getNextViewType();
    EXPECT_EQ(during, nfcRead);
    EXPECT_EQ(stage.delegate.record, stage.d().sdkModel);
    settle();
    EXPECT_TRUE(stage.isShown(stage.d().jitsiButton));
    QTest::mouseClick(stage.d().jitsiButton, Qt::LeftButton);
    EXPECT_EQ(stage.delegate.calls, (QStringList { "jitsi", "close" }));
    EXPECT_TRUE(stage.isShown(stage.d().jitsiButton)) << "cancelling only tells the delegate";
}

TEST(Flow, ChipStepWithoutAnMrzSaysSo)
{
    Device device = Device::phone();
    device.hasNfc = true;
    Stage stage(device);
    stage.view->setForceNfc(true);
    stage.setSteps({ nfcRead, selfie });
    EXPECT_TRUE(stage.shownText().contains(tr8("Tara butonuna basın.")));
    QTest::mouseClick(stage.d().nfcReadButton, Qt::LeftButton);
    settle();
    EXPECT_TRUE(stage.shownText().startsWith(tr8("Kimlik mrz bilgisi bulunamamıştır.")));
    EXPECT_EQ(stage.d().selectedViewType, nfcRead);
}

} // namespace
} // namespace kelvara::test
