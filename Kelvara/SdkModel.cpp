#include "Kelvara/SdkModel.h"

namespace kelvara {

SdkModel::SdkModel() = default;
SdkModel::~SdkModel() = default;

} // namespace kelvara
