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

/// A part of the zone that has letters and is protected by nothing.
struct Code
{
    int line;
    int column;
    int length;

    [[nodiscard]] bool has(const MrzMark& mark) const
    {
        return mark.line == line && mark.column >= column && mark.column < column + length;
    }
};

std::vector<Code> codesOf(const QKMRZResult& result)
{
    std::vector<Code> codes { { 0, 0, 2 } };
    for (const Code& state : { Code { 0, 2, 3 }, Code { 1, result.format == MrzDocumentFormat::TD1 ? 15 : 10, 3 } }) {
        if (!isMrzState(result.lines[state.line].mid(state.column, state.length)))
            codes.push_back(state);
    }
    return codes;
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
    if (!first)
        return printed;
    for (const Code& code : codesOf(result)) {
        const MrzLineReading& line = lines[*first + std::size_t(code.line)];
        const QString read = line.text.mid(code.column, code.length);
        bool isPrinted = false;
        for (qsizetype i = 0; i < read.size(); ++i) {
            const auto at = std::size_t(code.column + i);
            isPrinted |= read[i].isDigit() && !isZeroOrO(read[i]) && at < line.certainties.size()
                && line.certainties[at] >= kCertain;
        }
        if (isPrinted)
            printed[code.line].replace(code.column, code.length, read);
    }
    return printed;
}

} // namespace kelvara
