#include "Platform/Vision/TextLineDetector.h"

#include "Platform/Vision/VisionPlanes.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace kelvara {

namespace {

constexpr int kWidestPlane = 720; ///< A zone's characters are 9 to 20 pixels apart on a plane below this width.
constexpr int kLeastWidth = 200; ///< Below, they are not told from texture.
constexpr double kCharactersAcross = 36; ///< About as many would span the image.
constexpr double kLeastLineWidth = 0.66; ///< Of the image's.
constexpr double kLeastPeriodicity = 0.42; ///< Of 240 lines of zones the lowest was 0.46; of 300 others one had 0.36.

/// Lengths on the plane in use follow from the distance of two characters.
struct Scale
{
    explicit Scale(int width) : pitch(width / kCharactersAcross) { }

    [[nodiscard]] cv::Size of(double across, double down) const
    {
        const auto odd = [this](double part) { return std::max(1, static_cast<int>(part * pitch / 2) * 2 + 1); };
        return { odd(across), odd(down) };
    }

    double pitch;
};

/// Dark strokes narrower than a character's counter, whatever lies behind them.
cv::Mat strokes(const cv::Mat& luma, const Scale& scale)
{
    cv::Mat ink;
    cv::morphologyEx(luma, ink, cv::MORPH_BLACKHAT, cv::getStructuringElement(cv::MORPH_RECT, scale.of(0.6, 0.6)));
    return ink;
}

/// Where ink ends and grain begins: a part of what the strongest strokes show.
int inkThreshold(const cv::Mat& ink)
{
    std::array<int, 256> counts {};
    for (int y = 0; y < ink.rows; y += 2) {
        const auto* row = ink.ptr<uchar>(y);
        for (int x = 0; x < ink.cols; ++x)
            ++counts[row[x]];
    }
    const int rowsLookedAt = (ink.rows + 1) / 2;
    const auto quantile = [&](double part) {
        const double wanted = part * rowsLookedAt * ink.cols;
        double sum = 0;
        int level = 0;
        while (level < 255 && (sum += counts[static_cast<std::size_t>(level)]) < wanted)
            ++level;
        return level;
    };
    return std::max({ 8, static_cast<int>(0.35 * quantile(0.98)), static_cast<int>(2.5 * quantile(0.5)) });
}

/// How much a line's ink repeats itself at the distance of one character: the highest autocorrelation of its columns
/// over the distances that a zone's characters may have. Type of one width repeats, other print and grain do not.
double periodicity(const cv::Mat& ink, const cv::Mat& member)
{
    // Columns follow the line, which may be turned: each takes the ink of the line's own pixels.
    std::vector<float> profile(static_cast<std::size_t>(ink.cols));
    for (int y = 0; y < ink.rows; ++y) {
        const auto* inkRow = ink.ptr<uchar>(y);
        const auto* memberRow = member.ptr<uchar>(y);
        for (int x = 0; x < ink.cols; ++x)
            profile[static_cast<std::size_t>(x)] += static_cast<float>(inkRow[x] & memberRow[x]);
    }
    cv::Mat columns(1, ink.cols, CV_32F, profile.data());
    cv::Mat slow;
    cv::blur(columns, slow, cv::Size(ink.cols / 12 | 1, 1));
    columns -= slow;
    const double power = columns.dot(columns) / ink.cols;
    if (power <= 0)
        return 0;
    double best = 0;
    for (int lag = ink.cols / 48; lag <= ink.cols / 25; ++lag) {
        const cv::Mat left = columns.colRange(0, ink.cols - lag);
        const cv::Mat right = columns.colRange(lag, ink.cols);
        best = std::max(best, left.dot(right) / (ink.cols - lag) / power);
    }
    return best;
}

} // namespace

std::vector<VNTextObservation> TextLineDetector::detect(const VisionImage& image) const
{
    VisionImage::Planes& planes = image.planes();
    int level = 0;
    while (level + 1 < VisionImage::Planes::levels && planes.luma(level).cols > kWidestPlane)
        ++level;
    const cv::Mat& luma = planes.luma(level);
    if (luma.cols < kLeastWidth || luma.cols > 4 * kWidestPlane || luma.rows < 2)
        return {};
    const Scale scale(luma.cols);

    const cv::Mat ink = strokes(luma, scale);
    cv::Mat black;
    cv::threshold(ink, black, inkThreshold(ink), 255, cv::THRESH_BINARY);

    // Text is an even mixture of ink and ground.
    cv::Mat density;
    cv::boxFilter(black, density, CV_8U, scale.of(2.4, 0.45), cv::Point(-1, -1), true, cv::BORDER_CONSTANT);
    cv::Mat lines;
    cv::inRange(density, cv::Scalar(0.12 * 255), cv::Scalar(0.75 * 255), lines);

    cv::Mat labels;
    cv::Mat stats;
    cv::Mat centres;
    const int count = cv::connectedComponentsWithStats(lines, labels, stats, centres, 4, CV_32S);
    std::vector<VNTextObservation> found;
    const double factor = std::ldexp(1.0, level);
    const QSizeF size = image.size();
    for (int label = 1; label < count; ++label) {
        const cv::Rect box(stats.at<int>(label, cv::CC_STAT_LEFT), stats.at<int>(label, cv::CC_STAT_TOP),
            stats.at<int>(label, cv::CC_STAT_WIDTH), stats.at<int>(label, cv::CC_STAT_HEIGHT));
        if (box.width < kLeastLineWidth * luma.cols)
            continue;
        const double thickness = static_cast<double>(stats.at<int>(label, cv::CC_STAT_AREA)) / box.width;
        if (thickness < 0.4 * scale.pitch || thickness > 2.0 * scale.pitch)
            continue;
        const cv::Mat member = labels(box) == label;
        cv::Mat own = member & black(box);
        if (periodicity(ink(box), member) < kLeastPeriodicity)
            continue;
        const cv::Rect tight = cv::boundingRect(own);
        if (tight.empty())
            continue;
        const double air = 0.15 * scale.pitch;
        const QRectF pixels = QRectF((box.x + tight.x - air) * factor, (box.y + tight.y - air) * factor,
                                  (tight.width + 2 * air) * factor, (tight.height + 2 * air) * factor)
            & QRectF(QPointF(), size);
        VNTextObservation line;
        line.boundingBox = QRectF(pixels.x() / size.width(), 1 - pixels.bottom() / size.height(),
            pixels.width() / size.width(), pixels.height() / size.height());
        line.topLeft = { line.boundingBox.left(), line.boundingBox.bottom() };
        line.topRight = { line.boundingBox.right(), line.boundingBox.bottom() };
        line.bottomLeft = { line.boundingBox.left(), line.boundingBox.top() };
        line.bottomRight = { line.boundingBox.right(), line.boundingBox.top() };
        found.push_back(line);
    }
    return found;
}

} // namespace kelvara
