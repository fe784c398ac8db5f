#pragma once

#include "Platform/Chip/software/ChipProfile.h"
#include "Platform/Chip/software/JsonFields.h"

#include <QDir>

/// The parts of a profile's JSON, each into its part of the profile. What is wrong the fields keep.
namespace kelvara::chip::software {

void readHolder(ChipProfile& profile, JsonFields& fields, const QDir& base);
void readFiles(ChipProfile& profile, JsonFields& fields, const QDir& base);
void readProtocols(ChipProfile& profile, JsonFields& fields);
void readAuthority(ChipProfile& profile, JsonFields& fields);
void readManners(ChipProfile& profile, JsonFields& fields);
void readFaults(ChipProfile& profile, JsonFields& fields);

} // namespace kelvara::chip::software
