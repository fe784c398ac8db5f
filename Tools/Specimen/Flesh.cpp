#include "Tools/Specimen/Flesh.h"

#include "Tools/Specimen/Pixels.h"
#include "Tools/Specimen/Texture.h"

#include <QPainter>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace kelvara::specimen {

namespace {

/// Coverage of `path` over the rectangle at `origin`, CV_8U.
cv::Mat coverage(const QPainterPath& path, QRect area)
{
    QImage mask(area.size(), QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-area.topLeft());
    painter.fillPath(path, Qt::white);
    painter.end();
    cv::Mat alpha;
    cv::extractChannel(pixelsOf(mask), alpha, 3);
    return alpha;
}

void paintLimb(cv::Mat& picture, const Limb& limb, const cv::Vec3f& skin, Dice& dice)
{
    const double reach = limb.roundness * 0.9 + 2;
    const QRect whole(0, 0, picture.cols, picture.rows);
    const QRect area = limb.outline.boundingRect().toAlignedRect().adjusted(-static_cast<int>(reach),
                           -static_cast<int>(reach), static_cast<int>(reach), static_cast<int>(reach))
        & whole;
    if (area.isEmpty())
        return;
    cv::Mat mask = coverage(limb.outline, area);
    // Distance from the rim, with the picture's border not taken for a rim: pad, so that a finger goes on outside.
    const int pad = std::max(2, static_cast<int>(limb.roundness));
    const cv::Mat wide = coverage(limb.outline, area.adjusted(-pad, -pad, pad, pad));
    cv::Mat depth;
    cv::distanceTransform(wide > 127, depth, cv::DIST_L2, 3);
    cv::GaussianBlur(depth, depth, {}, std::max(0.6, limb.roundness * 0.1));
    depth = depth(cv::Rect(pad, pad, mask.cols, mask.rows));
    const cv::Mat nail = limb.nail.isEmpty() ? cv::Mat() : coverage(limb.nail, area);
    const cv::Mat pores = cloudNoise(mask.size(), limb.roundness * 0.7 + 2, limb.roundness * 0.7 + 2, 5, dice);

    cv::Mat shadow;
    const double drop = limb.roundness * 0.22;
    const cv::Matx23d offset(1, 0, drop, 0, 1, drop);
    cv::warpAffine(mask, shadow, offset, mask.size(), cv::INTER_NEAREST, cv::BORDER_REPLICATE);
    cv::GaussianBlur(shadow, shadow, {}, std::max(0.8, limb.roundness * 0.22));

    cv::Mat target = picture(cv::Rect(area.x(), area.y(), area.width(), area.height()));
    for (int y = 0; y < target.rows; ++y) {
        auto* out = target.ptr<cv::Vec4b>(y);
        const auto* m = mask.ptr<uchar>(y);
        const auto* s = shadow.ptr<uchar>(y);
        const auto* d = depth.ptr<float>(y);
        const auto* p = pores.ptr<float>(y);
        const auto* n = nail.empty() ? nullptr : nail.ptr<uchar>(y);
        for (int x = 0; x < target.cols; ++x) {
            if (m[x] == 0 && s[x] == 0)
                continue;
            const float inside = m[x] / 255.0F;
            const float dark = 1 - 0.45F * s[x] / 255.0F;
            const float t = std::min(1.0F, d[x] / static_cast<float>(limb.roundness));
            // Light on a cylinder, with the red glow of flesh towards the rim.
            const float lit = 0.62F + 0.40F * std::sqrt(std::max(0.0F, t * (2 - t)));
            const float grain = 1 + 0.055F * p[x];
            const float horn = n ? n[x] / 255.0F : 0;
            const cv::Vec3f glow(0.90F + 0.10F * t, 0.93F + 0.07F * t, 1.0F);
            for (int c = 0; c < 3; ++c) {
                const float flesh = skin[c] * lit * grain * glow[c];
                const float tip = std::min(255.0F, (skin[c] * 0.55F + 104) * (0.8F + 0.2F * lit));
                const float top = flesh + horn * 0.75F * (tip - flesh);
                const float under = out[x][c] * dark;
                out[x][c] = cv::saturate_cast<uchar>(under + inside * (top - under));
            }
        }
    }
}

} // namespace

void paintLimbs(QImage& picture, const std::vector<Limb>& limbs, Dice& dice)
{
    const double tone = dice.unit();
    const cv::Vec3f light(158, 182, 228);
    const cv::Vec3f dark(62, 88, 136);
    const cv::Vec3f skin = light + static_cast<float>(tone) * (dark - light);
    cv::Mat pixels = pixelsOf(picture);
    for (const Limb& limb : limbs)
        paintLimb(pixels, limb, skin, dice);
}

} // namespace kelvara::specimen
