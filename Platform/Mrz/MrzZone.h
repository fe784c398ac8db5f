#pragma once

#include "Platform/Mrz/MrzFormat.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <vector>

namespace kelvara {

/// One place of a zone while it is being read.
struct MrzCell
{
    char16_t read = 0; ///< As the OCR gave it; 0 where nothing was read.
    char16_t taken = 0; ///< What it is taken for.
    float certainty = -1; ///< 0 to 1; negative: not known.
    QString alternatives; ///< The OCR's own.
    QString rivals; ///< What else it may well be, without `taken`.
    bool isMisplaced = false; ///< A letter among digits that is often read for one.

    [[nodiscard]] bool isCertaintyKnown() const { return certainty >= 0; }
};

using MrzCells = std::vector<MrzCell>;

/// A document's lines, each of the format's length.
struct MrzZone
{
    std::vector<MrzCells> lines;

    [[nodiscard]] MrzCell& at(const MrzPlace& place, int offset = 0)
    {
        return lines[static_cast<std::size_t>(place.line)][static_cast<std::size_t>(place.column + offset)];
    }
    [[nodiscard]] const MrzCell& at(const MrzPlace& place, int offset = 0) const
    {
        return lines[static_cast<std::size_t>(place.line)][static_cast<std::size_t>(place.column + offset)];
    }

    /// What stands at the place as taken.
    [[nodiscard]] QString text(const MrzPlace& place) const
    {
        QString taken;
        for (int i = 0; i < place.length; ++i)
            taken += QChar(at(place, i).taken);
        return taken;
    }

    /// All lines as taken.
    [[nodiscard]] QStringList text() const
    {
        QStringList taken;
        for (std::size_t line = 0; line < lines.size(); ++line)
            taken << text({ static_cast<int>(line), 0, static_cast<int>(lines[line].size()) });
        return taken;
    }
};

} // namespace kelvara
