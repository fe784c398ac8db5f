#include "Platform/Mrz/MrzRivals.h"

#include <algorithm>
#include <utility>

namespace kelvara {

namespace {

/// So many characters may be something else at once.
constexpr int mostExchanges = 3;
/// More combinations than these say that the text is not worth trying.
constexpr int mostCombinations = 1000;
/// With more combinations than these one of them comes out right by chance too easily, when what is wrong is something
/// else that nobody doubts: one in ten satisfies a check digit. Fewer where the OCR is in doubt: it is so of right
/// characters too.
constexpr int mostTrustedCombinations = 8;
constexpr int mostTrustedDoubts = 3;

class Search
{
public:
    Search(const MrzFormat& format, const MrzShapes& shapes, MrzZone& zone, const QDate& today)
        : m_format(format), m_shapes(shapes), m_zone(zone), m_today(today)
    {
        for (MrzCells& line : zone.lines) {
            for (MrzCell& cell : line) {
                if (!cell.rivals.isEmpty())
                    m_open.push_back(&cell);
            }
        }
    }

    MrzSettlement settle()
    {
        tryFrom(0);
        const bool isTooMuch = m_combinations > mostCombinations;
        const bool isGuess = (m_right == 1 && !m_best.empty() && !isTrusted()) || hasBlindChoice();
        for (const auto& [cell, taken] : m_best)
            cell->taken = taken;
        return { m_right > 1 || isTooMuch, isGuess };
    }

private:
    using Exchanges = std::vector<std::pair<MrzCell*, char16_t>>;

    void tryFrom(std::size_t first)
    {
        if (m_right > 1 || ++m_combinations > mostCombinations)
            return;
        const MrzChecks checks = checkMrzZone(m_format, m_shapes, m_zone, m_today);
        if (checks.all() && checks.isIdentityNumberRight) {
            if (m_right++ == 0 || m_exchanges.size() < m_best.size())
                m_best = m_exchanges;
        }
        if (static_cast<int>(m_exchanges.size()) == mostExchanges)
            return;
        for (std::size_t i = first; i < m_open.size(); ++i) {
            MrzCell& cell = *m_open[i];
            const char16_t taken = cell.taken;
            for (const QChar rival : std::as_const(cell.rivals)) {
                cell.taken = rival.unicode();
                m_exchanges.emplace_back(&cell, cell.taken);
                tryFrom(i + 1);
                m_exchanges.pop_back();
            }
            cell.taken = taken;
        }
    }

    /// Whether what stands now was chosen among several look-alikes without the OCR's word for any.
    [[nodiscard]] bool hasBlindChoice() const
    {
        return std::ranges::any_of(
            m_open, [](const MrzCell* cell) { return cell->read != cell->taken && !cell->isCertaintyKnown(); });
    }

    /// A check digit that chose is no check any more. What it chose counts only where there was little to choose from:
    /// a character that the OCR itself doubts, or the one letter out of place in the zone.
    [[nodiscard]] bool isTrusted() const
    {
        if (m_best.size() != 1)
            return false;
        const MrzCell& cell = *m_best.front().first;
        return cell.isCertaintyKnown()
            ? m_combinations <= mostTrustedDoubts
            : m_combinations <= mostTrustedCombinations && cell.rivals.size() == 1 && cell.isMisplaced;
    }

    const MrzFormat& m_format;
    const MrzShapes& m_shapes;
    MrzZone& m_zone;
    const QDate& m_today;
    std::vector<MrzCell*> m_open;
    Exchanges m_exchanges;
    Exchanges m_best;
    int m_combinations = 0;
    int m_right = 0;
};

} // namespace

MrzSettlement settleRivals(const MrzFormat& format, const MrzShapes& shapes, MrzZone& zone, const QDate& today)
{
    return Search(format, shapes, zone, today).settle();
}

} // namespace kelvara
