#include "Platform/Vision/TextPitch.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kelvara {

namespace {

constexpr int kPieces = 3; ///< Of a row, looked at one by one.
constexpr int kPiece = 128; ///< Columns that a piece is sampled at.
constexpr int kColumns = kPieces * kPiece;
constexpr int kLines = 10;
constexpr double kFewest = 28;
constexpr double kMost = 60;
constexpr double kDigit = 1.08; ///< Its height over a capital's.
constexpr double kStep = 1.004;

/// Where there is ink along the row, 0 to 1 for each column (CV_32F).
cv::Mat presenceOf(const cv::Mat& strokes, const TextRow& row)
{
    const double across = std::max(row.thickness, 6.0) * 0.9;
    const double dx = row.length() / kColumns;
    const double dy = across / kLines;
    const cv::Matx23d map(dx, 0, row.left + dx / 2, row.slope * dx, dy, row.y(row.left) - across / 2 + dy / 2);
    cv::Mat strip;
    cv::warpAffine(
        strokes, strip, map, { kColumns, kLines }, cv::INTER_LINEAR | cv::WARP_INVERSE_MAP, cv::BORDER_REPLICATE);
    cv::Mat peak;
    cv::reduce(strip, peak, 0, cv::REDUCE_MAX);
    cv::Mat ceiling;
    cv::dilate(peak, ceiling, cv::getStructuringElement(cv::MORPH_RECT, { 33, 1 }));
    cv::Mat presence(1, kColumns, CV_32F);
    for (int x = 0; x < kColumns; ++x) {
        const float most = std::max<float>(ceiling.at<uchar>(x), 12);
        presence.at<float>(x) = std::min(1.0F, float(peak.at<uchar>(x)) / (0.6F * most));
    }
    return presence;
}

/// The pitches that are tried, and a cosine and a sine of each: 2 n rows, as long as a piece.
struct Waves
{
    std::vector<double> counts; ///< Characters in a row.
    cv::Mat table; ///< CV_32F.

    Waves()
    {
        for (double count = kFewest; count < kMost; count *= kStep)
            counts.push_back(count);
        table.create(int(2 * counts.size()), kPiece, CV_32F);
        for (std::size_t i = 0; i < counts.size(); ++i) {
            const double turn = 2 * std::numbers::pi * counts[i] / (kPieces * kPiece);
            for (int x = 0; x < kPiece; ++x) {
                table.at<float>(int(2 * i), x) = float(std::cos(turn * x) / kPiece);
                table.at<float>(int(2 * i + 1), x) = float(std::sin(turn * x) / kPiece);
            }
        }
    }
};

const Waves& waves()
{
    static const Waves all;
    return all;
}

} // namespace

TextPitch pitchOf(const cv::Mat& strokes, const std::vector<TextRow>& rows)
{
    // Every piece of every row is a column; perspective lets the pitch's phase drift from one to the next.
    cv::Mat pieces(kPiece, int(rows.size()) * kPieces, CV_32F);
    double length = 0;
    for (std::size_t r = 0; r < rows.size(); ++r) {
        const cv::Mat presence = presenceOf(strokes, rows[r]);
        for (int piece = 0; piece < kPieces; ++piece) {
            const cv::Mat own = presence.colRange(piece * kPiece, (piece + 1) * kPiece);
            const cv::Mat level = own - cv::mean(own)[0];
            cv::Mat(level.t()).copyTo(pieces.col(int(r) * kPieces + piece));
        }
        length += rows[r].length() / double(rows.size());
    }
    cv::Mat strengths;
    cv::gemm(waves().table, pieces, 1, cv::noArray(), 0, strengths);
    TextPitch best;
    for (std::size_t i = 0; i < waves().counts.size(); ++i) {
        const auto* cosines = strengths.ptr<float>(int(2 * i));
        const auto* sines = strengths.ptr<float>(int(2 * i + 1));
        double rhythm = 0;
        for (int c = 0; c < strengths.cols; ++c)
            rhythm += std::hypot(double(cosines[c]), double(sines[c])) / strengths.cols;
        if (rhythm > best.rhythm)
            best = { length / waves().counts[i], rhythm };
    }
    return best;
}

double capitalOf(const cv::Mat& strokes, const std::vector<TextRow>& rows, double pitch)
{
    constexpr int across = 30; // samples of 1/20 pitch
    constexpr int along = 8; // samples of a character
    std::vector<double> heights;
    for (const TextRow& row : rows) {
        const int characters = int(row.length() / pitch);
        const double dx = pitch / along;
        const double dy = pitch / 20;
        const cv::Matx23d map(dx, -row.slope * dy, row.left, row.slope * dx, dy, row.y(row.left) - across / 2.0 * dy);
        cv::Mat strip;
        cv::warpAffine(strokes, strip, map, { characters * along, across }, cv::INTER_LINEAR | cv::WARP_INVERSE_MAP,
            cv::BORDER_REPLICATE);
        for (int c = 0; c < characters; ++c) {
            cv::Mat peak;
            cv::reduce(strip.colRange(c * along, (c + 1) * along), peak, 1, cv::REDUCE_MAX);
            double most = 0;
            cv::minMaxLoc(peak, nullptr, &most);
            int first = across;
            int last = 0;
            for (int y = 0; y < across; ++y) {
                if (peak.at<uchar>(y) > 0.5 * most) {
                    first = std::min(first, y);
                    last = y;
                }
            }
            heights.push_back((last - first + 1) / 20.0);
        }
    }
    if (heights.empty())
        return pitch;
    // Fillers are lower, and often the most.
    const auto high = heights.begin() + std::ptrdiff_t(double(heights.size()) * 0.85);
    std::nth_element(heights.begin(), high, heights.end());
    return pitch * std::clamp(*high / kDigit, 0.6, 1.2);
}

} // namespace kelvara
