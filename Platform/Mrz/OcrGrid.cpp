#include "Platform/Mrz/OcrGrid.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace kelvara::ocr {

namespace {

constexpr double kLinePitch = 2.5; ///< Of OCR-B in documents, in pitches of its characters.

/// Lines that are shorter than one of a document's length get its ends.
void takeEnds(std::vector<Grid>& grids, double pitch)
{
    const Grid* whole = nullptr;
    for (const Grid& grid : grids) {
        if (isDocumentLength(grid.length()) && (!whole || grid.length() > whole->length()))
            whole = &grid;
    }
    if (!whole)
        return;
    const double left = whole->x.at(whole->first);
    const double slope = whole->y.slope(left);
    for (Grid& grid : grids) {
        if (grid.length() >= whole->length())
            continue;
        // Across a turned band the lines' beginnings drift sideways.
        const double begin = left - slope * (grid.y.at(left) - whole->y.at(left));
        const double exact = grid.x.inverse(begin, grid.first);
        const int first = int(std::lround(exact));
        const int last = first + whole->last - whole->first;
        if (std::abs(exact - first) < 0.4 && first <= grid.first && last >= grid.last
            && std::abs(grid.x.at(first) - begin) < 0.4 * pitch) {
            grid.first = first;
            grid.last = last;
        }
    }
}

/// A document's lines as one grid, numbered from the longest line that was found.
class Shape
{
public:
    Shape(const std::vector<Grid>& grids, const cv::Mat& ink, double pitch, double height)
        : m_longest(*std::max_element(
            grids.begin(), grids.end(), [](const Grid& a, const Grid& b) { return a.length() < b.length(); })),
          m_middle(m_longest.x.at((m_longest.first + m_longest.last) / 2.0)), m_slope(m_longest.y.slope(m_middle)),
          m_pitch(m_longest.x.slope((m_longest.first + m_longest.last) / 2.0)), m_height(height)
    {
        cv::integral(ink != 0, m_sums, CV_32S);
        m_isOne = std::all_of(grids.begin(), grids.end(), [&](const Grid& grid) { return add(grid, pitch); });
    }

    /// The grids of the best shape; nothing when no shape fits well.
    [[nodiscard]] std::vector<Grid> best() const
    {
        std::vector<Grid> grids;
        if (!m_isOne)
            return grids;
        double most = kLeastFit;
        for (const std::size_t length : { 30U, 36U, 44U }) {
            const int lines = int(linesOfLength(length));
            for (int top = m_bottom - lines + 1; top <= m_top; ++top) {
                for (int first = m_last - int(length) + 1; first <= m_first; ++first) {
                    const double fit = fitOf(top, lines, first, int(length));
                    if (fit > most) {
                        most = fit;
                        grids = gridsOf(top, lines, first, int(length));
                    }
                }
            }
        }
        return grids;
    }

private:
    static constexpr double kLeastFit = 0.75; ///< The share of a shape's places that have ink.
    static constexpr double kLeastInk = 0.012; ///< Of a place with any, in squares of a capital's height.
    static constexpr int kMargin = 3; ///< So many places beside a line must be empty.

    [[nodiscard]] double yOf(const Grid& grid) const { return grid.y.at(m_middle); }

    bool add(const Grid& grid, double pitch)
    {
        const double below = yOf(grid) - yOf(m_longest);
        const double exactLine = below / (kLinePitch * pitch);
        const int line = int(std::lround(exactLine));
        // The place that lies where the longest line's first is.
        const double begin = m_longest.x.at(m_longest.first) - m_slope * below;
        const double exact = grid.x.inverse(begin, grid.first);
        const int shift = m_longest.first - int(std::lround(exact));
        if (std::abs(exactLine - line) > 0.3 || std::abs(exact - std::lround(exact)) > 0.4)
            return false;
        const bool isFirst = m_found.empty();
        m_found.push_back({ grid, line, shift });
        m_top = isFirst ? line : std::min(m_top, line);
        m_bottom = isFirst ? line : std::max(m_bottom, line);
        m_first = isFirst ? grid.first + shift : std::min(m_first, grid.first + shift);
        m_last = isFirst ? grid.last + shift : std::max(m_last, grid.last + shift);
        return true;
    }

    /// The grid of a line, found or not, in its own numbers, from place `first` of the shape on.
    [[nodiscard]] Grid gridOf(int line, int first, int length) const
    {
        for (const Found& found : m_found) {
            // A curve fitted to few glyphs leads astray beyond them.
            if (found.line == line && found.grid.length() * 10 >= std::size_t(length) * 7) {
                Grid grid = found.grid;
                grid.first = first - found.shift;
                grid.last = grid.first + length - 1;
                return grid;
            }
        }
        Grid grid = m_longest;
        grid.first = first;
        grid.last = first + length - 1;
        double below = line * kLinePitch * m_pitch;
        for (const Found& found : m_found) {
            if (found.line == line)
                below = yOf(found.grid) - yOf(m_longest);
        }
        grid.y.a += below;
        grid.x.a -= m_slope * below;
        return grid;
    }

    [[nodiscard]] std::vector<Grid> gridsOf(int top, int lines, int first, int length) const
    {
        std::vector<Grid> grids;
        for (int line = top; line < top + lines; ++line)
            grids.push_back(gridOf(line, first, length));
        return grids;
    }

    [[nodiscard]] bool hasInk(const Grid& grid, int number) const
    {
        const double x = grid.x.at(number);
        const double y = grid.y.at(x);
        const cv::Rect place(cv::Point(int(x - 0.4 * m_pitch), int(y - 0.6 * m_height)),
            cv::Point(int(x + 0.4 * m_pitch), int(y + 0.6 * m_height)));
        const cv::Rect inside = place & cv::Rect(0, 0, m_sums.cols - 1, m_sums.rows - 1);
        if (inside.empty())
            return false;
        const auto sum = [&](int column, int row) { return m_sums.at<int>(row, column); };
        const int ink = sum(inside.x + inside.width, inside.y + inside.height) - sum(inside.x, inside.y + inside.height)
            - sum(inside.x + inside.width, inside.y) + sum(inside.x, inside.y);
        return ink / 255.0 > std::max(4.0, kLeastInk * m_height * m_height);
    }

    [[nodiscard]] double fitOf(int top, int lines, int first, int length) const
    {
        int inside = 0;
        int outside = 0;
        for (const Grid& grid : gridsOf(top, lines, first, length)) {
            for (int number = grid.first - kMargin; number <= grid.last + kMargin; ++number) {
                const bool isInside = number >= grid.first && number <= grid.last;
                if (hasInk(grid, number))
                    ++(isInside ? inside : outside);
            }
        }
        return (inside - 2.0 * outside) / (lines * length);
    }

    struct Found
    {
        Grid grid;
        int line; ///< Lines below the longest.
        int shift; ///< From its own numbers to the shape's.
    };

    const Grid m_longest;
    const double m_middle;
    const double m_slope;
    const double m_pitch;
    const double m_height;
    cv::Mat m_sums;
    std::vector<Found> m_found;
    int m_top = 0;
    int m_bottom = 0;
    int m_first = 0;
    int m_last = 0;
    bool m_isOne = false;
};

} // namespace

std::optional<Grid> gridOf(const std::vector<Component>& row, double pitch)
{
    std::vector<double> numbers { 0 };
    std::vector<double> xs { row.front().x() };
    std::vector<double> ys { row.front().y() };
    for (std::size_t i = 1; i < row.size(); ++i) {
        numbers.push_back(numbers.back() + std::round((row[i].x() - row[i - 1].x()) / pitch));
        xs.push_back(row[i].x());
        ys.push_back(row[i].y());
    }
    Grid grid;
    grid.x = fitCurve(numbers, xs, pitch * 0.25);
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < xs.size(); ++i)
            numbers[i] = std::round(grid.x.inverse(xs[i], numbers[i]));
        grid.x = fitCurve(numbers, xs, pitch * 0.15);
    }
    grid.y = fitCurve(xs, ys, pitch * 0.12);
    const auto ends = std::minmax_element(numbers.begin(), numbers.end());
    grid.first = int(*ends.first);
    grid.last = int(*ends.second);
    const double step = grid.x.slope((grid.first + grid.last) / 2.0);
    if (std::size_t(grid.last - grid.first) >= kMostCells || step < 0.7 * pitch || step > 1.4 * pitch)
        return std::nullopt;
    return grid;
}

bool isDocumentLength(std::size_t cells)
{
    return linesOfLength(cells) > 0;
}

std::size_t linesOfLength(std::size_t cells)
{
    return cells == 30 ? 3 : cells == 36 || cells == 44 ? 2 : 0;
}

void complete(std::vector<Grid>& grids, const cv::Mat& ink, double pitch, double height)
{
    if (grids.empty())
        return;
    takeEnds(grids, pitch);
    const std::size_t length = grids.front().length();
    const bool isWhole = grids.size() >= 2 && grids.size() >= linesOfLength(length) && isDocumentLength(length)
        && std::all_of(grids.begin(), grids.end(), [&](const Grid& grid) { return grid.length() == length; });
    if (isWhole || grids.size() > 3)
        return;
    std::vector<Grid> whole = Shape(grids, ink, pitch, height).best();
    if (!whole.empty())
        grids = std::move(whole);
}

} // namespace kelvara::ocr
