#pragma once

#include "Platform/Mrz/OcrComponents.h"
#include "Platform/Mrz/OcrFit.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace kelvara::ocr {

inline constexpr std::size_t kMostCells = 80; ///< More than any line of a document has.

/// A row's grid: where its places lie.
struct Grid
{
    Curve x; ///< Of the place's number.
    Curve y; ///< Of x.
    int first = 0;
    int last = 0;

    [[nodiscard]] std::size_t length() const { return std::size_t(last - first + 1); }
};

/// The grid that a row of glyphs, sorted from left to right, stands on; `pitch` is about the distance of its places.
/// Absent when there is none, or one of more places than any document's.
[[nodiscard]] std::optional<Grid> gridOf(const std::vector<Component>& row, double pitch);

[[nodiscard]] bool isDocumentLength(std::size_t cells);

/// How many lines of that length a document has; 0 when there is none.
[[nodiscard]] std::size_t linesOfLength(std::size_t cells);

/// All lines of a document begin and end one below the other. Gives lines the places that have lost their ink: those
/// shorter than one of a document's length get its ends; where there is none, or lines are missing, the document's
/// shape is taken in which most of what little ink there is finds a place. `height` is about that of a capital.
void complete(std::vector<Grid>& grids, const cv::Mat& ink, double pitch, double height);

} // namespace kelvara::ocr
