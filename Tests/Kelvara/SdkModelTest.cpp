#include "Kelvara/SdkModel.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace kelvara::test {
namespace {

static_assert(!std::is_copy_constructible_v<SdkModel>, "a record is shared, never copied");

TEST(SdkModel, BeginsWithFifteenAbsentFields)
{
    const SdkModel model;
    int absent = !model.mrzInfo + !model.nfcData;
    for (const auto* image : { &model.idFrontImage, &model.idBackImage, &model.selfieImage, &model.mrzImage,
             &model.autoCropped_idFrontImage, &model.autoCropped_idBackImage, &model.autoCropped_selfieImage })
        absent += !image->has_value();
    for (const auto* text : { &model.base64_idFrontImage, &model.base64_idBackImage, &model.base64_selfieImage,
             &model.base64_autoCropped_idFrontImage, &model.base64_autoCropped_idBackImage,
             &model.base64_autoCropped_selfieImage })
        absent += !text->has_value();
    EXPECT_EQ(absent, 15);
}

} // namespace
} // namespace kelvara::test
