#include "Platform/Mrz/OcrLayout.h"

#include "Platform/Mrz/OcrComponents.h"
#include "Platform/Mrz/OcrGrid.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace kelvara::ocr {

namespace {

// Shares of a capital's height. A zero is 1.09 of it, a filler 0.75.
constexpr double kSpeckle = 0.4;
constexpr double kLeastGlyph = 0.5;
constexpr double kMostGlyph = 1.45;
constexpr int kFewestPixels = 10; ///< A capital lower than this is not legible.
constexpr std::size_t kFewestGlyphs = 8;
constexpr std::size_t kMostLines = 12;

/// About the height of a capital: the height that most ink of letter-like components has.
double glyphHeight(const std::vector<Component>& components, int imageHeight)
{
    std::vector<double> ink(std::size_t(imageHeight) + 2, 0.0);
    for (const Component& c : components) {
        if (c.box.height >= kFewestPixels && c.box.height < imageHeight * 0.8 && c.box.width < 1.5 * c.box.height
            && c.area > 0.1 * c.box.area())
            ink[std::size_t(c.box.height)] += c.area;
    }
    double best = 0;
    double height = 0;
    for (int h = kFewestPixels; h < imageHeight; ++h) {
        double near = 0;
        const int reach = std::max(1, h / 10);
        for (int other = h - reach; other <= std::min(h + reach, imageHeight); ++other)
            near += ink[std::size_t(other)];
        // Fillers can outnumber letters; what is taller by a third counts for the taller.
        if (near > best) {
            best = near;
            height = h;
        }
    }
    double taller = 0;
    double tallerHeight = 0;
    for (int h = int(height * 1.2); h <= std::min(int(height * 1.55), imageHeight); ++h) {
        taller += ink[std::size_t(h)];
        tallerHeight += ink[std::size_t(h)] * h;
    }
    return taller > 0.25 * best ? tallerHeight / taller : height;
}

bool isGlyph(const Component& c, double height)
{
    return c.box.height > kLeastGlyph * height && c.box.height < kMostGlyph * height && c.box.width < 1.2 * height
        && c.box.width > 0.12 * height;
}

/// The slope at which the glyphs' centres line up best.
double slopeOf(const std::vector<Component>& glyphs, double height)
{
    double bestSlope = 0;
    double bestScore = -1;
    for (int step = -20; step <= 20; ++step) {
        const double slope = std::tan(step * 0.2 * std::numbers::pi / 180);
        std::vector<double> heights;
        heights.reserve(glyphs.size());
        for (const Component& c : glyphs)
            heights.push_back(c.y() - slope * c.x());
        std::sort(heights.begin(), heights.end());
        double score = -1e-6 * std::abs(step); // of equals the straightest
        std::size_t first = 0;
        for (std::size_t i = 0; i < heights.size(); ++i) {
            while (heights[i] - heights[first] > height / 6)
                ++first;
            score += double(i - first);
        }
        if (score > bestScore) {
            bestScore = score;
            bestSlope = slope;
        }
    }
    return bestSlope;
}

std::vector<std::vector<Component>> rowsOf(std::vector<Component> glyphs, double height, double slope)
{
    const auto level = [&](const Component& c) { return c.y() - slope * c.x(); };
    std::sort(glyphs.begin(), glyphs.end(), [&](const auto& a, const auto& b) { return level(a) < level(b); });
    std::vector<std::vector<Component>> rows;
    for (const Component& c : glyphs) {
        if (rows.empty() || level(c) - level(rows.back().back()) > 0.35 * height)
            rows.emplace_back();
        rows.back().push_back(c);
    }
    std::erase_if(rows, [](const auto& row) { return row.size() < kFewestGlyphs; });
    for (auto& row : rows)
        std::sort(row.begin(), row.end(), [](const auto& a, const auto& b) { return a.x() < b.x(); });
    return rows;
}

/// The distance of neighbouring glyphs that is the commonest.
double pitchOf(const std::vector<std::vector<Component>>& rows, double height)
{
    std::vector<double> gaps;
    for (const auto& row : rows) {
        for (std::size_t i = 1; i < row.size(); ++i) {
            const double gap = row[i].x() - row[i - 1].x();
            if (gap > 0.7 * height && gap < 1.45 * height)
                gaps.push_back(gap);
        }
    }
    if (gaps.size() < kFewestGlyphs)
        return 0;
    const auto middle = gaps.begin() + std::ptrdiff_t(gaps.size() / 2);
    std::nth_element(gaps.begin(), middle, gaps.end());
    return *middle;
}

void setCells(Line& line, const Grid& grid)
{
    line.cells.clear();
    for (int number = grid.first; number <= grid.last; ++number) {
        const double x = grid.x.at(number);
        line.cells.push_back({ { x, grid.y.at(x) }, {}, 0, 0 });
    }
}

/// Gives the component's ink to cells; one that spans several is cut where there is least ink between them.
void distribute(const Component& c, const cv::Mat& labels, Line& line, double pitch, cv::Mat& cells)
{
    const auto nearest = [&](double x) {
        const auto at = std::lower_bound(line.cells.begin(), line.cells.end(), x,
            [&](const Cell& cell, double position) { return cell.center.x + pitch / 2 < position; });
        return int(std::min(at - line.cells.begin(), std::ptrdiff_t(line.cells.size()) - 1));
    };
    const auto give = [&](int cell, int from, int to) {
        cv::Rect ink;
        const auto mark = static_cast<std::uint16_t>(line.mark(std::size_t(cell)));
        for (int y = c.box.y; y < c.box.y + c.box.height; ++y) {
            const int* own = labels.ptr<int>(y);
            auto* out = cells.ptr<std::uint16_t>(y);
            for (int x = from; x < to; ++x) {
                if (own[x] == c.label) {
                    out[x] = mark;
                    ink |= cv::Rect(x, y, 1, 1);
                }
            }
        }
        if (!ink.empty()) {
            line.cells[std::size_t(cell)].ink |= ink;
            ++line.cells[std::size_t(cell)].pieces;
        }
    };
    const int left = c.box.x;
    const int right = c.box.x + c.box.width;
    const int from = nearest(left + pitch * 0.28);
    const int to = nearest(right - pitch * 0.28);
    if (c.box.width < 1.12 * pitch || from >= to)
        return give(nearest(c.x()), left, right);
    int start = left;
    for (int cell = from; cell < to; ++cell) {
        const double border = (line.cells[std::size_t(cell)].center.x + line.cells[std::size_t(cell) + 1].center.x) / 2;
        int best = int(border);
        int least = INT_MAX;
        for (int x = std::max(start + 1, int(border - 0.18 * pitch));
             x <= std::min(right - 1, int(border + 0.18 * pitch)); ++x) {
            int ink = 0;
            for (int y = c.box.y; y < c.box.y + c.box.height; ++y)
                ink += labels.at<int>(y, x) == c.label ? 1 : 0;
            const int cost = 8 * ink + int(std::abs(x - border));
            if (cost < least) {
                least = cost;
                best = x;
            }
        }
        give(cell, start, std::min(best, right));
        start = best;
    }
    give(to, start, right);
}

/// A place at an end that holds no more than a splinter is dirt beside the line.
void trim(Line& line)
{
    const auto isDirt
        = [&](const Cell& cell) { return cell.ink.empty() || cell.ink.height < kLeastGlyph * line.height; };
    while (!isDocumentLength(line.cells.size()) && !line.cells.empty() && isDirt(line.cells.back()))
        line.cells.pop_back();
}

double capitalHeight(const Line& line, double otherwise)
{
    std::vector<double> heights;
    for (const Cell& cell : line.cells) {
        if (cell.ink.height > 0.8 * otherwise && cell.ink.height < kMostGlyph * otherwise)
            heights.push_back(cell.ink.height);
    }
    if (heights.size() < 4)
        return otherwise;
    const auto middle = heights.begin() + std::ptrdiff_t(heights.size() / 2);
    std::nth_element(heights.begin(), middle, heights.end());
    return *middle;
}

/// Whether there are as many lines as some document has, with as many characters.
bool isPlausible(const Layout& layout)
{
    const auto length = [](const Line& line) { return line.cells.size(); };
    const std::size_t first = layout.lines.empty() ? 0 : length(layout.lines.front());
    return isDocumentLength(first) && layout.lines.size() >= linesOfLength(first)
        && std::all_of(layout.lines.begin(), layout.lines.end(), [&](const Line& l) { return length(l) == first; });
}

std::size_t cellsOf(const Layout& layout)
{
    std::size_t cells = 0;
    for (const Line& line : layout.lines)
        cells += line.cells.size();
    return cells;
}

/// The layout of the ink's components after gaps of up to `bridge` pixels are closed.
Layout layoutOf(const cv::Mat& ink, int bridge)
{
    Layout layout;
    layout.cells = cv::Mat::zeros(ink.size(), CV_16U);
    cv::Mat joined = ink;
    if (bridge > 0)
        cv::morphologyEx(ink, joined, cv::MORPH_CLOSE,
            cv::getStructuringElement(cv::MORPH_ELLIPSE, { 2 * bridge + 1, 2 * bridge + 1 }));
    const Components components = componentsOf(joined);
    const double height = glyphHeight(components.all, ink.rows);
    if (height < kFewestPixels)
        return layout;
    std::vector<Component> glyphs;
    std::copy_if(components.all.begin(), components.all.end(), std::back_inserter(glyphs),
        [&](const Component& c) { return isGlyph(c, height); });
    if (glyphs.size() < kFewestGlyphs || glyphs.size() > kMostCells * kMostLines)
        return layout;
    auto rows = rowsOf(glyphs, height, slopeOf(glyphs, height));
    const double pitch = pitchOf(rows, height);
    if (pitch <= 0)
        return layout;
    std::vector<Grid> grids;
    for (const auto& row : rows) {
        const auto grid = gridOf(row, pitch);
        if (grid && grids.size() < kMostLines)
            grids.push_back(*grid);
    }
    complete(grids, ink, pitch, height);
    for (const Grid& grid : grids) {
        Line line;
        line.pitch = grid.x.slope((grid.first + grid.last) / 2.0);
        line.height = height;
        line.firstMark = int(layout.lines.size() * 256) + 1;
        setCells(line, grid);
        layout.lines.push_back(std::move(line));
    }
    for (const Component& c : components.all) {
        if ((c.box.height < kSpeckle * height && c.box.width < kSpeckle * height) || c.box.height > 1.7 * height)
            continue;
        for (std::size_t i = 0; i < grids.size(); ++i) {
            Line& line = layout.lines[i];
            const bool inside = c.x() > line.cells.front().center.x - 0.7 * line.pitch
                && c.x() < line.cells.back().center.x + 0.7 * line.pitch;
            if (inside && std::abs(c.y() - grids[i].y.at(c.x())) < 0.75 * height) {
                distribute(c, components.labels, line, line.pitch, layout.cells);
                break;
            }
        }
    }
    for (Line& line : layout.lines) {
        trim(line);
        line.height = capitalHeight(line, height);
        for (Cell& cell : line.cells)
            cell.height = cell.ink.height;
    }
    std::erase_if(layout.lines, [](const Line& line) { return line.cells.size() < kFewestGlyphs; });
    return layout;
}

} // namespace

Layout findLayout(const cv::Mat& ink)
{
    Layout best = layoutOf(ink, 0);
    // Strokes that blur has thinned away leave pieces of glyphs.
    for (const int bridge : { 3, 6 }) {
        if (isPlausible(best))
            break;
        Layout other = layoutOf(ink, bridge);
        if (isPlausible(other) || cellsOf(other) > cellsOf(best))
            best = std::move(other);
    }
    return best;
}

} // namespace kelvara::ocr
