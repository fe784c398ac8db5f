#include "Platform/Chip/lds/Portrait.h"

#include <opencv2/core/utils/logger.hpp>

#include <cstdlib>

using namespace kelvara::chip;

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const ByteView encoded(data, size);
    const auto expected = imageSizeOf(encoded);
    if (expected && expected->width() * qint64 { expected->height() } > 500'000)
        return 0; // larger ones are only slower
    const auto decoded = decodePortrait(encoded);
    const auto* picture = std::get_if<QImage>(&decoded);
    if (picture != nullptr && (!expected || picture->isNull() || picture->size() != *expected))
        std::abort();
    return 0;
}
