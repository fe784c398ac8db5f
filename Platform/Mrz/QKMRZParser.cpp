#include "Platform/Mrz/QKMRZParser.h"

#include "Platform/Mrz/MrzAgreement.h"
#include "Platform/Mrz/MrzInterpretation.h"
#include "Platform/Mrz/MrzLineMending.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kelvara {

namespace {

/// No picture of a document has more lines than this in its band of long lines.
constexpr std::size_t mostLines = 40;
constexpr qsizetype longestLine = 64;

MrzCells cellsOf(const MrzLineReading& line, bool ocrCorrection)
{
    MrzCells cells;
    if (line.text.size() > longestLine)
        return cells;
    for (qsizetype i = 0; i < line.text.size(); ++i) {
        const auto at = static_cast<std::size_t>(i);
        MrzCell cell;
        cell.read = line.text[i].unicode();
        cell.taken = cell.read;
        if (at < line.certainties.size())
            cell.certainty = line.certainties[at] >= 0 ? line.certainties[at] : 0; // Not a number is no certainty.
        if (at < line.alternatives.size())
            cell.alternatives = line.alternatives[at].left(8);
        if (ocrCorrection) {
            if (cell.read == u' ')
                continue;
            if (cell.read >= u'a' && cell.read <= u'z')
                cell.taken = static_cast<char16_t>(cell.read - u'a' + u'A');
            if (cell.read == u'\u00ab') { // Two fillers drawn as one quotation mark.
                cell.taken = u'<';
                cells.push_back(cell);
            }
        }
        cells.push_back(std::move(cell));
    }
    return cells;
}

class Search
{
public:
    Search(const std::vector<MrzCells>& lines, bool ocrCorrection, const QDate& today)
        : m_lines(lines), m_ocrCorrection(ocrCorrection), m_today(today)
    { }

    std::optional<QKMRZResult> find()
    {
        for (std::size_t first = 0; first < m_lines.size(); ++first) {
            for (const MrzFormat& format : mrzFormats()) {
                if (first + static_cast<std::size_t>(format.lines) <= m_lines.size() && mayBegin(format, first))
                    tryWindow(format, first);
            }
        }
        if (!m_best)
            return std::nullopt;
        if (m_isContested)
            m_best->result.allCheckDigitsValid = false;
        return std::move(m_best->result);
    }

private:
    /// Visas have their own letter; without a final check digit they would take much for a visa that is not.
    [[nodiscard]] bool mayBegin(const MrzFormat& format, std::size_t first) const
    {
        const bool isVisa = format.format == MrzDocumentFormat::MRVA || format.format == MrzDocumentFormat::MRVB;
        return !m_lines[first].empty() && isVisa == (m_lines[first].front().taken == u'V');
    }

    [[nodiscard]] std::vector<MrzMendedLine> variants(const MrzFormat& format, std::size_t first, int line) const
    {
        const MrzCells& cells = m_lines[first + static_cast<std::size_t>(line)];
        if (!m_ocrCorrection) {
            if (static_cast<int>(cells.size()) != format.length)
                return {};
            return { { cells, {} } };
        }
        if (format.names.line == line && format.names.column == 0)
            return mendEnd(cells, format.length);
        static constexpr std::array firstLine { 1, 15 }; // Behind the document code; before an identity number.
        return mendLength(cells, format.length, line == 0 ? std::span<const int>(firstLine) : std::span<const int>());
    }

    void tryWindow(const MrzFormat& format, std::size_t first)
    {
        std::vector<std::vector<MrzMendedLine>> choices;
        for (int line = 0; line < format.lines; ++line) {
            choices.push_back(variants(format, first, line));
            if (choices.back().empty())
                return;
        }
        std::vector<const MrzMendedLine*> chosen;
        choose(format, choices, chosen);
    }

    void choose(const MrzFormat& format, const std::vector<std::vector<MrzMendedLine>>& choices,
        std::vector<const MrzMendedLine*>& chosen)
    {
        if (chosen.size() == choices.size()) {
            consider(format, chosen);
            return;
        }
        for (const MrzMendedLine& line : choices[chosen.size()]) {
            chosen.push_back(&line);
            choose(format, choices, chosen);
            chosen.pop_back();
        }
    }

    void consider(const MrzFormat& format, const std::vector<const MrzMendedLine*>& lines)
    {
        MrzZone zone;
        std::vector<MrzMark> marks;
        for (const MrzMendedLine* line : lines) {
            for (MrzMark mark : line->marks) {
                mark.line = static_cast<int>(zone.lines.size());
                marks.push_back(mark);
            }
            zone.lines.push_back(line->cells);
        }
        MrzInterpretation found = interpretMrzZone(format, std::move(zone), std::move(marks), m_ocrCorrection, m_today);
        if (!found.isPlausible)
            return;
        if (m_best && m_best->result.allCheckDigitsValid && found.result.allCheckDigitsValid
            && !sameProtectedFields(m_best->result, found.result))
            m_isContested = true;
        // Of equals the last: what is lost or doubled is likeliest in the long run of fillers at the end.
        if (!m_best || found.merit() >= m_best->merit())
            m_best = std::move(found);
    }

    const std::vector<MrzCells>& m_lines;
    const bool m_ocrCorrection;
    const QDate m_today;
    std::optional<MrzInterpretation> m_best;
    bool m_isContested = false;
};

} // namespace

QKMRZParser::QKMRZParser(bool ocrCorrection) : m_ocrCorrection(ocrCorrection)
{
    setToday({});
}

void QKMRZParser::setToday(std::function<QDate()> today)
{
    m_today = today ? std::move(today) : [] { return QDate::currentDate(); };
}

std::optional<QKMRZResult> QKMRZParser::parse(const QStringList& lines) const
{
    std::vector<MrzLineReading> readings;
    for (const QString& line : lines)
        readings.push_back({ line, {}, {} });
    return parse(readings);
}

std::optional<QKMRZResult> QKMRZParser::parse(const std::vector<MrzLineReading>& lines) const
{
    std::vector<MrzCells> cells;
    for (const MrzLineReading& line : lines) {
        if (cells.size() == mostLines)
            break;
        cells.push_back(cellsOf(line, m_ocrCorrection));
    }
    return Search(cells, m_ocrCorrection, m_today()).find();
}

} // namespace kelvara
