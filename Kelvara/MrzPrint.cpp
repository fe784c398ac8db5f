#include "Kelvara/MrzPrint.h"

#include "Platform/Mrz/MrzStates.h"

#include <algorithm>
#include <optional>

namespace kelvara {

namespace {

constexpr double kTold = 18; ///< Capitals of so many pixels show the difference of O and 0.
constexpr float kUntold = 0.85F;
constexpr float kDoubtful = 0.9F;
constexpr float kCertain = 0.95F;

bool isZeroOrO(QChar character)
{
    return character == u'0' || character == u'O';
}

/// The document's first line among those that were read; nothing where they cannot be matched one to one.
std::optional<std::size_t> firstLine(const QKMRZResult& result, const std::vector<MrzLineReading>& lines)
{
    const auto count = std::size_t(result.lines.size());
    if (std::any_of(result.marks.begin(), result.marks.end(),
            [](const MrzMark& mark) { return mark.kind == MrzMark::Kind::LengthMended; }))
        return std::nullopt;
    for (std::size_t first = 0; first + count <= lines.size(); ++first) {
        const bool isIt = std::all_of(result.marks.begin(), result.marks.end(), [&](const MrzMark& mark) {
            const QString& text = lines[first + std::size_t(mark.line)].text;
            return mark.column < text.size() && text[mark.column] == mark.read;
        });
        if (isIt && lines[first].text.size() == result.lines.front().size())
            return first;
    }
    return std::nullopt;
}

bool isInCode(const QKMRZResult& result, const MrzMark& mark)
{
    if (mark.line == 0)
        return mark.column < 2 || (mark.column < 5 && !isMrzState(result.lines[0].mid(2, 3)));
    const int nationality = result.format == MrzDocumentFormat::TD1 ? 15 : 10;
    return mark.line == 1 && mark.column >= nationality && mark.column < nationality + 3
        && !isMrzState(result.lines[1].mid(nationality, 3));
}

} // namespace

void doubtZeros(std::vector<MrzLineReading>& lines, double capital)
{
    if (capital >= kTold)
        return;
    for (MrzLineReading& line : lines) {
        for (std::size_t i = 0; i < line.certainties.size(); ++i) {
            if (isZeroOrO(line.text[qsizetype(i)]))
                line.certainties[i] = std::min(line.certainties[i], kUntold);
        }
    }
}

std::vector<MrzLineReading> withZerosPreferred(const std::vector<MrzLineReading>& lines)
{
    std::vector<MrzLineReading> guess = lines;
    for (std::size_t l = 0; l < guess.size(); ++l) {
        MrzLineReading& line = guess[l];
        const bool areNames = line.text.size() == 30 ? l + 1 == guess.size() : l + 2 == guess.size();
        for (std::size_t i = 0; i < line.certainties.size() && !areNames; ++i) {
            QChar character = line.text[qsizetype(i)];
            if (character != u'O' || line.certainties[i] >= kDoubtful)
                continue;
            line.text[qsizetype(i)] = u'0';
            if (i < line.alternatives.size())
                line.alternatives[i] = QStringLiteral("O") + line.alternatives[i].remove(u'0');
        }
    }
    return guess;
}

QStringList printedLines(const QKMRZResult& result, const std::vector<MrzLineReading>& lines)
{
    QStringList printed = result.lines;
    const auto first = firstLine(result, lines);
    for (const MrzMark& mark : result.marks) {
        if (!first || mark.kind != MrzMark::Kind::CorrectedByGrammar || !mark.read.isDigit() || isZeroOrO(mark.read)
            || !isInCode(result, mark))
            continue;
        const MrzLineReading& line = lines[*first + std::size_t(mark.line)];
        const auto at = std::size_t(mark.column);
        if (at < line.certainties.size() && line.certainties[at] >= kCertain)
            printed[mark.line][mark.column] = mark.read;
    }
    return printed;
}

} // namespace kelvara
