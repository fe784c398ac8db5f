#include "Platform/Vision/MrzBandImage.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <vector>

namespace kelvara {

namespace {

// In capitals' heights.
constexpr double kMarginAcross = 0.7;
constexpr double kMarginAlong = 1.6;

constexpr double kPatternShare = 0.95; ///< What part of a pattern's pixels is to come below the faint.
constexpr double kFaint = 0.2; ///< Shares of ink so small do no harm.
constexpr double kSquat = 0.87; ///< A capital over the pitch; digits are a tenth higher.
constexpr double kDarkestPattern = 0.6;

/// The part of the picture that the band lies in, as one channel.
cv::Mat channelOf(const QImage& picture, const QRect& part, bool brightest)
{
    const QImage cut = picture.copy(part);
    if (!brightest || picture.format() == QImage::Format_Grayscale8) {
        const QImage grey = cut.convertToFormat(QImage::Format_Grayscale8);
        return cv::Mat(
            grey.height(), grey.width(), CV_8U, const_cast<uchar*>(grey.constBits()), std::size_t(grey.bytesPerLine()))
            .clone();
    }
    const QImage rgb = cut.convertToFormat(QImage::Format_RGB32);
    const cv::Mat pixels(
        rgb.height(), rgb.width(), CV_8UC4, const_cast<uchar*>(rgb.constBits()), std::size_t(rgb.bytesPerLine()));
    std::vector<cv::Mat> channels;
    cv::split(pixels, channels);
    return cv::max(channels[0], cv::max(channels[1], channels[2]));
}

cv::Mat block(double width, double height)
{
    const auto odd = [](double length) { return std::max(3, int(length) / 2 * 2 + 1); };
    return cv::getStructuringElement(cv::MORPH_RECT, { odd(width), odd(height) });
}

/// Without light's and paper's unevenness, as floats: 0 is paper, 1 ink.
cv::Mat inkOf(const cv::Mat& band, double capital)
{
    cv::Mat paper;
    cv::morphologyEx(
        band, paper, cv::MORPH_CLOSE, block(1.1 * capital, 1.1 * capital), { -1, -1 }, 1, cv::BORDER_REPLICATE);
    cv::blur(paper, paper, { int(1.5 * capital), int(capital) }, { -1, -1 }, cv::BORDER_REPLICATE);
    cv::Mat ink;
    cv::subtract(paper, band, ink);
    cv::Mat darkest;
    cv::dilate(ink, darkest, block(3 * capital, 0.9 * capital));
    cv::blur(darkest, darkest, { int(4 * capital), int(capital) }, { -1, -1 }, cv::BORDER_REPLICATE);
    // Where there are no glyphs, paper stays paper.
    double most = 0;
    cv::minMaxLoc(darkest, nullptr, &most);
    darkest = cv::max(darkest, 0.5 * most);
    cv::Mat share;
    ink.convertTo(share, CV_32F);
    darkest.convertTo(darkest, CV_32F, 0.9, 1);
    share /= darkest;
    return share;
}

/// How dark the pattern is that lies between the lines, whose first and last middles are at `first` and `last`.
double patternOf(const cv::Mat& ink, int lines, double first, double last, double capital)
{
    const double apart = (last - first) / (lines - 1);
    const double half = (apart - 1.25 * capital) / 2;
    std::vector<float> shares;
    for (int gap = 0; gap + 1 < lines && half >= 1; ++gap) {
        const double middle = first + (gap + 0.5) * apart;
        const int begin = std::max(0, int(middle - half));
        const int end = std::min(ink.rows, int(middle + half) + 1);
        for (int y = begin; y < end; ++y)
            shares.insert(shares.end(), ink.ptr<float>(y), ink.ptr<float>(y) + ink.cols);
    }
    if (shares.empty())
        return 0;
    const auto most = shares.begin() + std::ptrdiff_t(kPatternShare * double(shares.size()));
    std::nth_element(shares.begin(), most, shares.end());
    return double(*most);
}

} // namespace

QImage drawMrzBand(const QImage& picture, const MrzBand& band, const MrzBandLook& look)
{
    const double capital = look.capital;
    const double scale = capital / band.pitch;
    QPolygonF outline;
    for (const QPointF& corner : band.corners)
        outline << corner;
    const double reach = (kMarginAlong + 1) * band.pitch;
    const QRect part
        = outline.boundingRect().adjusted(-reach, -reach, reach, reach).toAlignedRect().intersected(picture.rect());
    if (part.isEmpty() || band.pitch < 1)
        return {};
    cv::Mat channel = channelOf(picture, part, look.brightestChannel);
    double reduced = 1;
    if (scale < 0.8) {
        reduced = scale;
        cv::resize(channel, channel, {}, reduced, reduced, cv::INTER_AREA);
    }
    std::array<cv::Point2f, 4> from;
    for (std::size_t i = 0; i < 4; ++i)
        from[i] = cv::Point2f(float((band.corners[i].x() - part.x() + 0.5) * reduced - 0.5),
            float((band.corners[i].y() - part.y() + 0.5) * reduced - 0.5));
    const auto distance = [&](std::size_t a, std::size_t b) {
        return std::hypot(band.corners[a].x() - band.corners[b].x(), band.corners[a].y() - band.corners[b].y());
    };
    const double width = scale * (distance(0, 1) + distance(3, 2)) / 2;
    // Print that is seen from aslant is squat.
    const double stretch = band.capital < kSquat * band.pitch ? band.pitch / band.capital : 1;
    const double height = scale * stretch * (distance(0, 3) + distance(1, 2)) / 2;
    const double left = kMarginAlong * capital;
    const double top = kMarginAcross * capital;
    const std::array<cv::Point2f, 4> to { cv::Point2f(float(left), float(top)),
        cv::Point2f(float(left + width), float(top)), cv::Point2f(float(left + width), float(top + height)),
        cv::Point2f(float(left), float(top + height)) };
    cv::Mat drawn;
    cv::warpPerspective(channel, drawn, cv::getPerspectiveTransform(from.data(), to.data()),
        { int(width + 2 * left), int(height + 2 * top) }, cv::INTER_CUBIC, cv::BORDER_REPLICATE);
    if (look.sharpness > 0) {
        cv::Mat soft;
        cv::GaussianBlur(drawn, soft, {}, 0.18 * capital);
        cv::addWeighted(drawn, 1 + look.sharpness, soft, -look.sharpness, 0, drawn);
    }
    cv::Mat ink = inkOf(drawn, capital);
    // A pattern that is darker than faint is taken off, and what is left stretched to full contrast.
    const double half = 0.55 * capital * stretch;
    const double pattern = std::clamp(
        patternOf(ink, band.lines, top + half, top + height - half, capital) - kFaint, 0.0, kDarkestPattern);
    ink = (ink - pattern) / (1 - pattern);
    QImage result(drawn.cols, drawn.rows, QImage::Format_Grayscale8);
    cv::Mat out(drawn.rows, drawn.cols, CV_8U, result.bits(), std::size_t(result.bytesPerLine()));
    ink.convertTo(out, CV_8U, -255, 255);
    return result;
}

} // namespace kelvara
