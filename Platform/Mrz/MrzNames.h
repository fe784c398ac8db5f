#pragma once

#include <QString>
#include <QStringView>

namespace kelvara {

struct MrzNames
{
    QString surnames;
    QString givenNames;
};

/// Splits a name field at its first run of two or more fillers; the other fillers become spaces. A name that fills
/// the field to its end was cut off there, which the field does not tell. Without such a run all of it is the primary
/// identifier.
[[nodiscard]] MrzNames splitMrzNames(QStringView field);

} // namespace kelvara
