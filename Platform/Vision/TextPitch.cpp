#include "Platform/Vision/TextPitch.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace kelvara {

namespace {

constexpr int kColumns = 704; ///< That a row is sampled at.
constexpr int kLines = 12;
constexpr int kPieces = 3; ///< Looked at one by one: perspective lets the pitch drift along a row.
constexpr double kFewest = 28;
constexpr double kMost = 60;
constexpr double kDigit = 1.08; ///< Its height over a capital's.
constexpr double kStep = 1.004;

/// Where there is ink along the row, 0 to 1 for each column.
std::vector<double> presenceOf(const cv::Mat& strokes, const TextRow& row)
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
    cv::dilate(peak, ceiling, cv::getStructuringElement(cv::MORPH_RECT, { 61, 1 }));
    std::vector<double> presence(kColumns);
    for (int x = 0; x < kColumns; ++x) {
        const double most = std::max<double>(ceiling.at<uchar>(x), 12);
        presence[std::size_t(x)] = std::min(1.0, peak.at<uchar>(x) / (0.6 * most));
    }
    return presence;
}

/// The strength of the wave of that length in a piece.
double wave(const std::vector<double>& presence, std::size_t begin, std::size_t end, double length)
{
    const double turn = 2 * std::numbers::pi / length;
    const std::complex<double> step(std::cos(turn), std::sin(turn));
    std::complex<double> phase(1, 0);
    std::complex<double> sum;
    double mean = 0;
    for (std::size_t i = begin; i < end; ++i)
        mean += presence[i] / double(end - begin);
    for (std::size_t i = begin; i < end; ++i) {
        sum += (presence[i] - mean) * phase;
        phase *= step;
    }
    return std::abs(sum) / double(end - begin);
}

} // namespace

TextPitch pitchOf(const cv::Mat& strokes, const std::vector<TextRow>& rows)
{
    std::vector<std::vector<double>> presences;
    double length = 0;
    for (const TextRow& row : rows) {
        presences.push_back(presenceOf(strokes, row));
        length += row.length() / double(rows.size());
    }
    TextPitch best;
    for (double count = kFewest; count < kMost; count *= kStep) {
        double rhythm = 0;
        for (const auto& presence : presences) {
            for (int piece = 0; piece < kPieces; ++piece)
                rhythm += wave(presence, std::size_t(kColumns * piece / kPieces),
                    std::size_t(kColumns * (piece + 1) / kPieces), kColumns / count);
        }
        rhythm /= kPieces * double(presences.size());
        if (rhythm > best.rhythm)
            best = { length / count, rhythm };
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
        const cv::Matx23d map(dx, -row.slope * dy, row.left, row.slope * dx, dy, row.y(row.left) - across / 2 * dy);
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
