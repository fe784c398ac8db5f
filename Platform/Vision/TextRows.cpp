#include "Platform/Vision/TextRows.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

namespace kelvara {

namespace {

constexpr int kStroke = 9; ///< Wider than a stroke, in pixels.
constexpr int kAround = 41; ///< What counts as surroundings of a stroke.
constexpr double kFaintShare = 0.5; ///< Of the strongest stroke around.
constexpr double kFaintestStroke = 9; ///< Grey levels by which a stroke must stand out.
constexpr int kGap = 19; ///< Wider than what lies between neighbouring glyphs.
constexpr int kRun = 31; ///< A row has no shorter pieces.
constexpr double kLeastShare = 0.12; ///< Of the picture's width that a piece of a row takes.
constexpr double kSteepest = 0.18;

cv::Mat block(int width, int height)
{
    return cv::getStructuringElement(cv::MORPH_RECT, { width, height });
}

/// Where strokes stand so close that they may be a row, and what is not as long as a row's pieces taken away.
cv::Mat runsOf(const cv::Mat& strokes)
{
    // A faint texture beside print is none, however much it stands out where there is no print.
    cv::Mat least;
    cv::blur(strokes, least, { 3, 3 });
    cv::dilate(least, least, block(kAround, kAround));
    least.convertTo(least, CV_8U, kFaintShare);
    cv::max(least, kFaintestStroke, least);
    cv::Mat runs = strokes > least;
    cv::morphologyEx(runs, runs, cv::MORPH_CLOSE, block(kGap, 1));
    cv::morphologyEx(runs, runs, cv::MORPH_OPEN, block(1, 3));
    cv::morphologyEx(runs, runs, cv::MORPH_OPEN, block(kRun, 1));
    return runs;
}

/// The straight middle of a component; nothing when it is no row.
std::optional<TextRow> rowOf(const cv::Mat& labels, int label, const cv::Rect& box, int area)
{
    double n = 0;
    double sx = 0;
    double sy = 0;
    double sxx = 0;
    double sxy = 0;
    for (int y = box.y; y < box.y + box.height; ++y) {
        const int* row = labels.ptr<int>(y);
        for (int x = box.x; x < box.x + box.width; ++x) {
            if (row[x] != label)
                continue;
            n += 1;
            sx += x;
            sy += y;
            sxx += double(x) * x;
            sxy += double(x) * y;
        }
    }
    const double spread = sxx - sx * sx / n;
    if (spread <= 0)
        return std::nullopt;
    TextRow row;
    row.slope = (sxy - sx * sy / n) / spread;
    row.level = (sy - row.slope * sx) / n;
    row.left = box.x;
    row.right = box.x + box.width - 1;
    row.thickness = area / double(box.width);
    return row;
}

/// Pieces of one row that a gap separates become one.
void join(std::vector<TextRow>& rows)
{
    std::sort(rows.begin(), rows.end(), [](const TextRow& a, const TextRow& b) { return a.left < b.left; });
    for (bool joined = true; joined;) {
        joined = false;
        for (std::size_t i = 0; i < rows.size() && !joined; ++i) {
            for (std::size_t j = i + 1; j < rows.size() && !joined; ++j) {
                TextRow& a = rows[i];
                const TextRow& b = rows[j];
                const double thickness = std::max(a.thickness, b.thickness);
                const double gap = b.left - a.right;
                const double between = (a.right + b.left) / 2;
                if (gap < -thickness || gap > 6 * thickness || std::abs(a.y(between) - b.y(between)) > 0.5 * thickness
                    || std::min(a.thickness, b.thickness) < 0.5 * thickness)
                    continue;
                const double weightA = a.length();
                const double weightB = b.length();
                const double xa = (a.left + a.right) / 2;
                const double xb = (b.left + b.right) / 2;
                const double slope = (b.y(xb) - a.y(xa)) / (xb - xa);
                if (std::abs(slope) > kSteepest)
                    continue;
                a.thickness = (a.thickness * weightA + b.thickness * weightB) / (weightA + weightB);
                a.level = a.y(xa) - slope * xa;
                a.slope = slope;
                a.right = std::max(a.right, b.right);
                rows.erase(rows.begin() + std::ptrdiff_t(j));
                joined = true;
            }
        }
    }
}

} // namespace

cv::Mat strokesOf(const cv::Mat& brightness)
{
    cv::Mat strokes;
    cv::morphologyEx(brightness, strokes, cv::MORPH_BLACKHAT, block(kStroke, kStroke));
    return strokes;
}

std::vector<TextRow> findTextRows(const cv::Mat& strokes)
{
    const cv::Mat runs = runsOf(strokes);
    cv::Mat labels;
    cv::Mat stats;
    cv::Mat centroids;
    const int count = cv::connectedComponentsWithStats(runs, labels, stats, centroids, 8, CV_32S);
    std::vector<TextRow> rows;
    for (int label = 1; label < count; ++label) {
        const int* at = stats.ptr<int>(label);
        const cv::Rect box(at[cv::CC_STAT_LEFT], at[cv::CC_STAT_TOP], at[cv::CC_STAT_WIDTH], at[cv::CC_STAT_HEIGHT]);
        const double thickness = at[cv::CC_STAT_AREA] / double(box.width);
        if (box.width < kLeastShare * strokes.cols || box.width < 3 * thickness || thickness < 3)
            continue;
        if (box.height > 2.2 * thickness + kSteepest * box.width)
            continue;
        const auto row = rowOf(labels, label, box, at[cv::CC_STAT_AREA]);
        if (row && std::abs(row->slope) <= kSteepest)
            rows.push_back(*row);
    }
    // What lies beside a document may be in line with its rows: they may or may not be one.
    std::vector<TextRow> joined = rows;
    join(joined);
    std::copy_if(joined.begin(), joined.end(), std::back_inserter(rows), [&](const TextRow& row) {
        return std::none_of(rows.begin(), rows.end(), [&](const TextRow& piece) {
            return piece.left == row.left && piece.right == row.right && piece.level == row.level;
        });
    });
    std::erase_if(rows, [](const TextRow& row) { return row.length() < 14 * row.thickness; });
    std::sort(rows.begin(), rows.end(),
        [](const TextRow& a, const TextRow& b) { return a.y((a.left + a.right) / 2) < b.y((b.left + b.right) / 2); });
    return rows;
}

} // namespace kelvara
