#pragma once

#include "Platform/Mrz/MrzLineReading.h"
#include "Platform/Mrz/QKMRZResult.h"

#include <QStringList>

#include <vector>

namespace kelvara {

/// Takes from the OCR the certainty with which it tells O from 0 in lines whose capitals are `capital` pixels high in
/// the picture: they differ by a fourteenth of that, and enlarging a picture adds nothing to it.
void doubtZeros(std::vector<MrzLineReading>& lines, double capital);

/// The same lines with 0 for every doubtful O that does not stand among names: numbers rarely have the letter. For a
/// guess; the doubt stays.
[[nodiscard]] std::vector<MrzLineReading> withZerosPreferred(const std::vector<MrzLineReading>& lines);

/// What is printed on the document as far as it can be told: the result's lines, but where grammar asks for letters in
/// the document code or in a state's code that then is none, and the OCR is certain of a digit, what it read. There are
/// documents that are printed so.
[[nodiscard]] QStringList printedLines(const QKMRZResult& result, const std::vector<MrzLineReading>& lines);

} // namespace kelvara
