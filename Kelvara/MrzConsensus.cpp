#include "Kelvara/MrzConsensus.h"

#include <algorithm>
#include <utility>

namespace kelvara {

namespace {

constexpr float kLeast = 0.02F; ///< The weight of a character that its reading is not certain of at all.

using Reading = std::vector<MrzLineReading>;

bool isSameShape(const Reading& a, const Reading& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
        [](const MrzLineReading& x, const MrzLineReading& y) { return x.text.size() == y.text.size(); });
}

/// The readings that have the commonest shape.
std::vector<const Reading*> alike(const std::vector<Reading>& readings)
{
    std::vector<const Reading*> best;
    for (const Reading& shape : readings) {
        std::vector<const Reading*> same;
        for (const Reading& reading : readings) {
            if (isSameShape(shape, reading))
                same.push_back(&reading);
        }
        if (same.size() > best.size())
            best = std::move(same);
    }
    return best;
}

struct Voice
{
    QChar character;
    float weight = 0;
    float certainty = 0; ///< The greatest of those who say so.
};

float certaintyOf(const MrzLineReading& line, qsizetype at)
{
    return std::size_t(at) < line.certainties.size() ? line.certainties[std::size_t(at)] : kLeast;
}

void add(std::vector<Voice>& voices, QChar character, float certainty)
{
    auto voice = std::find_if(voices.begin(), voices.end(), [&](const Voice& v) { return v.character == character; });
    if (voice == voices.end())
        voice = voices.insert(voices.end(), { character, 0, 0 });
    voice->weight += std::max(certainty, kLeast);
    voice->certainty = std::max(voice->certainty, certainty);
}

} // namespace

std::vector<MrzLineReading> consensusOf(const std::vector<std::vector<MrzLineReading>>& readings)
{
    const std::vector<const Reading*> same = alike(readings);
    std::vector<MrzLineReading> agreed;
    if (same.empty())
        return agreed;
    for (std::size_t l = 0; l < same.front()->size(); ++l) {
        MrzLineReading line;
        for (qsizetype at = 0; at < same.front()->at(l).text.size(); ++at) {
            std::vector<Voice> voices;
            float all = 0;
            QString others;
            for (const Reading* reading : same) {
                const MrzLineReading& own = (*reading)[l];
                add(voices, own.text[at], certaintyOf(own, at));
                all += std::max(certaintyOf(own, at), kLeast);
                if (std::size_t(at) < own.alternatives.size())
                    others += own.alternatives[std::size_t(at)];
            }
            std::stable_sort(
                voices.begin(), voices.end(), [](const Voice& a, const Voice& b) { return a.weight > b.weight; });
            const Voice& winner = voices.front();
            line.text += winner.character;
            line.certainties.push_back(std::min(winner.certainty, winner.weight / all));
            QString alternatives;
            for (std::size_t v = 1; v < voices.size(); ++v)
                alternatives += voices[v].character;
            for (const QChar other : std::as_const(others)) {
                if (other != winner.character && !alternatives.contains(other))
                    alternatives += other;
            }
            line.alternatives.push_back(alternatives);
        }
        agreed.push_back(std::move(line));
    }
    return agreed;
}

} // namespace kelvara
