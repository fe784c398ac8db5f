#include "Platform/Mrz/MrzLineMending.h"

#include <algorithm>
#include <cstdlib>

namespace kelvara {

namespace {

MrzMark mark(int column, char16_t read, char16_t taken)
{
    return {
        .line = 0, .column = column, .read = QChar(read), .taken = QChar(taken), .kind = MrzMark::Kind::LengthMended
    };
}

MrzMendedLine withFillers(const MrzCells& line, int column, int count)
{
    MrzMendedLine mended { line, {} };
    MrzCell filler;
    filler.taken = u'<';
    mended.cells.insert(mended.cells.begin() + column, static_cast<std::size_t>(count), filler);
    for (int i = 0; i < count; ++i)
        mended.marks.push_back(mark(column + i, 0, u'<'));
    return mended;
}

MrzMendedLine without(const MrzCells& line, int column, int count)
{
    MrzMendedLine mended { line, {} };
    const auto first = mended.cells.begin() + column;
    for (int i = 0; i < count; ++i)
        mended.marks.push_back(mark(column, line[static_cast<std::size_t>(column + i)].read, 0));
    mended.cells.erase(first, first + count);
    return mended;
}

bool isFiller(const MrzCells& line, int column)
{
    return column >= 0 && column < static_cast<int>(line.size())
        && line[static_cast<std::size_t>(column)].taken == u'<';
}

/// Different mendings often come to the same text.
void addNew(std::vector<MrzMendedLine>& found, MrzMendedLine mended)
{
    const auto isSame = [&](const MrzMendedLine& other) {
        return std::equal(other.cells.begin(), other.cells.end(), mended.cells.begin(), mended.cells.end(),
            [](const MrzCell& a, const MrzCell& b) { return a.taken == b.taken; });
    };
    if (std::none_of(found.begin(), found.end(), isSame))
        found.push_back(std::move(mended));
}

} // namespace

std::vector<MrzMendedLine> mendLength(const MrzCells& line, int length, std::span<const int> loneFillers)
{
    const int size = static_cast<int>(line.size());
    const int error = size - length;
    if (error == 0)
        return { { line, {} } };
    std::vector<MrzMendedLine> found;
    if (std::abs(error) > mostMrzLengthError)
        return found;
    for (int column = 0; column <= size; ++column) {
        // At the beginning of a run: elsewhere in it comes to the same.
        const bool isRun = isFiller(line, column) && !isFiller(line, column - 1);
        if (error < 0) {
            const bool isLone = std::ranges::find(loneFillers, column) != loneFillers.end();
            if (isRun || isLone || column == size)
                addNew(found, withFillers(line, column, -error));
        } else if (isRun && (error == 1 || isFiller(line, column + 1))) {
            addNew(found, without(line, column, error));
        }
    }
    if (error > 0) {
        addNew(found, without(line, 0, error));
        addNew(found, without(line, size - error, error));
    }
    return found;
}

std::vector<MrzMendedLine> mendEnd(const MrzCells& line, int length)
{
    const int error = static_cast<int>(line.size()) - length;
    if (error == 0)
        return { { line, {} } };
    if (std::abs(error) > mostMrzLengthError)
        return {};
    if (error < 0)
        return { withFillers(line, static_cast<int>(line.size()), -error) };
    return { without(line, 0, error), without(line, length, error) };
}

} // namespace kelvara
