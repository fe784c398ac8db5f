#include "Platform/Chip/DataGroup.h"

namespace kelvara::chip {

namespace {

template<typename Group> DataGroup parsed(ByteView file)
{
    if (auto group = Group::parse(file))
        return std::move(*group);
    return UnparsedGroup { bytes(file) };
}

} // namespace

DataGroup parseDataGroup(DataGroupId id, ByteView file)
{
    switch (id) {
    case DataGroupId::COM:
        return parsed<COM>(file);
    case DataGroupId::DG1:
        return parsed<DataGroup1>(file);
    case DataGroupId::DG2:
        return parsed<DataGroup2>(file);
    case DataGroupId::DG7:
        return parsed<DataGroup7>(file);
    case DataGroupId::DG11:
        return parsed<DataGroup11>(file);
    case DataGroupId::DG12:
        return parsed<DataGroup12>(file);
    case DataGroupId::DG14:
        return parsed<DataGroup14>(file);
    case DataGroupId::DG15:
        return parsed<DataGroup15>(file);
    case DataGroupId::DG16:
        return parsed<DataGroup16>(file);
    case DataGroupId::SOD:
        return parsed<SecurityObject>(file);
    default:
        return UnparsedGroup { bytes(file) };
    }
}

const Bytes& rawOf(const DataGroup& group)
{
    return std::visit([](const auto& one) -> const Bytes& { return one.raw; }, group);
}

} // namespace kelvara::chip
