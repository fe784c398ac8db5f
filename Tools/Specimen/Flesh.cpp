#include "Tools/Specimen/Flesh.h"

#include "Tools/Specimen/Pixels.h"
#include "Tools/Specimen/Texture.h"

#include <QPainter>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace kelvara::specimen {

namespace {

/// Coverage of `area` by what `draw` paints in white, CV_8U, at 1 / `coarse` of the size.
template<typename Draw> cv::Mat coverage(QRect area, int coarse, const Draw& draw)
{
    QImage mask((area.width() + coarse - 1) / coarse, (area.height() + coarse - 1) / coarse,
        QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(1.0 / coarse, 1.0 / coarse);
    painter.translate(-area.topLeft());
    draw(painter);
    painter.end();
    cv::Mat alpha;
    cv::extractChannel(pixelsOf(mask), alpha, 3);
    return alpha;
}

/// How bright the surface is, 0 … 1 (CV_32F, full size): a cylinder's fall towards the rim, mottled, creased.
cv::Mat relief(const Limb& limb, QRect area, int coarse, cv::Size size, Dice& dice)
{
    // Beyond the picture's border a finger goes on: its cut is no rim.
    const int pad = static_cast<int>(limb.roundness) / coarse * coarse + coarse;
    const cv::Mat wide = coverage(area.adjusted(-pad, -pad, pad, pad), coarse,
        [&](QPainter& painter) { painter.fillPath(limb.outline, Qt::white); });
    cv::Mat depth;
    cv::distanceTransform(wide > 127, depth, cv::DIST_L2, 5);
    cv::GaussianBlur(depth, depth, {}, std::max(0.6, limb.roundness * 0.12 / coarse));
    const int inner = pad / coarse;
    depth = depth(cv::Rect(inner, inner, (size.width + coarse - 1) / coarse, (size.height + coarse - 1) / coarse));
    cv::Mat creases = coverage(area, coarse, [&](QPainter& painter) {
        painter.strokePath(limb.creases, QPen(Qt::white, std::max(1.2, limb.roundness * 0.11)));
    });
    cv::GaussianBlur(creases, creases, {}, std::max(0.5, limb.roundness * 0.06 / coarse));
    const cv::Mat mottle
        = cloudNoise(depth.size(), limb.roundness * 2.2 / coarse + 2, limb.roundness * 2.2 / coarse + 2, 4, dice);
    cv::Mat light(depth.size(), CV_32F);
    const auto flat = static_cast<float>(limb.roundness / coarse);
    for (int y = 0; y < light.rows; ++y) {
        auto* out = light.ptr<float>(y);
        const auto* d = depth.ptr<float>(y);
        const auto* c = creases.ptr<uchar>(y);
        const auto* m = mottle.ptr<float>(y);
        for (int x = 0; x < light.cols; ++x) {
            const float t = std::min(1.0F, d[x] / flat);
            const float round = 0.60F + 0.40F * std::sqrt(std::max(0.0F, t * (2 - t)));
            out[x] = round * (1 + 0.10F * m[x]) * (1 - 0.13F * c[x] / 255.0F);
        }
    }
    cv::resize(light, light, size, 0, 0, cv::INTER_LINEAR);
    return light;
}

} // namespace

void paintLimb(QImage& picture, const Limb& limb, Dice& dice)
{
    const auto tone = static_cast<float>(dice.unit());
    const cv::Vec3f fair(156, 180, 226);
    const cv::Vec3f dark(66, 92, 142);
    const cv::Vec3f skin = fair + tone * (dark - fair);
    const cv::Vec3f horn = skin * 0.6F + cv::Vec3f(84, 86, 100);

    const int reach = static_cast<int>(limb.roundness * 0.8) + 2;
    const QRect area
        = limb.outline.boundingRect().toAlignedRect().adjusted(-reach, -reach, reach, reach) & picture.rect();
    if (area.isEmpty())
        return;
    // What is soft anyway is made at a part of the size.
    const int coarse = limb.roundness > 40 ? 4 : limb.roundness > 12 ? 2 : 1;
    const auto fill = [&](QPainter& painter) { painter.fillPath(limb.outline, Qt::white); };
    const cv::Mat mask = coverage(area, 1, fill);
    const cv::Mat nails = coverage(area, 1, [&](QPainter& painter) { painter.fillPath(limb.nails, Qt::white); });
    const cv::Mat light = relief(limb, area, coarse, mask.size(), dice);
    cv::Mat shadow = coverage(area, coarse, [&](QPainter& painter) {
        painter.translate(limb.roundness * 0.2, limb.roundness * 0.26);
        fill(painter);
    });
    cv::GaussianBlur(shadow, shadow, {}, std::max(0.7, limb.roundness * 0.22 / coarse));
    cv::resize(shadow, shadow, {}, coarse, coarse, cv::INTER_LINEAR);

    cv::Mat pixels = pixelsOf(picture);
    cv::Mat target = pixels(cv::Rect(area.x(), area.y(), area.width(), area.height()));
    for (int y = 0; y < target.rows; ++y) {
        auto* out = target.ptr<cv::Vec4b>(y);
        const auto* m = mask.ptr<uchar>(y);
        const auto* s = shadow.ptr<uchar>(y);
        const auto* n = nails.ptr<uchar>(y);
        const auto* l = light.ptr<float>(y);
        for (int x = 0; x < target.cols; ++x) {
            if (m[x] == 0 && s[x] == 0)
                continue;
            const float inside = m[x] / 255.0F;
            const float under = 1 - 0.45F * s[x] / 255.0F;
            const float nail = n[x] / 255.0F * 0.8F;
            for (int c = 0; c < 3; ++c) {
                // Flesh glows redder where the light falls off.
                const float depth = 1 - (1 - l[x]) * (c == 2 ? 0.85F : c == 1 ? 1.05F : 1.12F);
                const float top = (skin[c] + nail * (horn[c] - skin[c])) * depth;
                const float below = out[x][c] * under;
                out[x][c] = cv::saturate_cast<uchar>(below + inside * (top - below));
            }
        }
    }
}

} // namespace kelvara::specimen
