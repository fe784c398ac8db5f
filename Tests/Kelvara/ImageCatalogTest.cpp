#include "Kelvara/ImageCatalog.h"
#include "Kelvara/ControlImage.h"

#include <QPainter>
#include <QPainterPath>

#include <gmock/gmock.h>

namespace kelvara::test {
namespace {

TEST(ImageCatalog, HasEveryControlImageSharpAtAnySize)
{
    EXPECT_THAT(ImageCatalog::names(),
        testing::UnorderedElementsAre(QStringLiteral("camera_button_on"), QStringLiteral("camera_button_off"),
            QStringLiteral("loading_card"), QStringLiteral("flash"), QStringLiteral("flash-off"),
            QStringLiteral("flip_h"), QStringLiteral("cancel")));
    for (const QString& name : ImageCatalog::names()) {
        SCOPED_TRACE(name.toStdString());
        for (const double ratio : { 1.0, 2.75, 6.0 }) {
            const std::optional<UIImage> image = getMyImage(name, ratio);
            ASSERT_TRUE(image);
            EXPECT_EQ(image->size().toSize(), ImageCatalog::naturalSize(name).toSize());
            const QImage pixels = *image;
            int clear = 0;
            int drawn = 0;
            for (int y = 0; y < pixels.height(); ++y) {
                for (int x = 0; x < pixels.width(); ++x) {
                    clear += qAlpha(pixels.pixel(x, y)) == 0;
                    drawn += qAlpha(pixels.pixel(x, y)) > 128;
                }
            }
            const int all = pixels.width() * pixels.height();
            EXPECT_GT(clear, all / 100) << "corners are clear";
            EXPECT_GT(drawn, all / 10) << "something is drawn";
        }
        EXPECT_TRUE(ImageCatalog::render(name, {}).isNull());
        EXPECT_TRUE(ImageCatalog::render(name, { 100000, 100000 }).isNull());
    }
    for (const QString& unknown : { QString(), QStringLiteral("Flash"), QStringLiteral("../images/flash") })
        EXPECT_FALSE(getMyImage(unknown) || ControlImage::named(unknown));
}

QImage paintedAt(const ControlImage& image, int side)
{
    QImage target(side, side, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::transparent);
    QPainter painter(&target);
    painter.scale(side / 24.0, side / 24.0);
    image.paint(painter, QRectF(0, 0, 24, 24), QPainterPath());
    return target;
}

TEST(ControlImage, KnowsADrawingAgainAndPaintsItSharp)
{
    const UIImage small = *getMyImage(QStringLiteral("cancel"), 1);
    const ControlImage drawing(small);
    EXPECT_EQ(drawing.name(), QStringLiteral("cancel"));
    EXPECT_TRUE(drawing == *ControlImage::named(QStringLiteral("cancel")));
    EXPECT_EQ(paintedAt(drawing, 96), ImageCatalog::render(QStringLiteral("cancel"), { 96, 96 }));

    QImage tinted = small;
    tinted.setPixelColor(0, 0, Qt::red);
    EXPECT_EQ(ControlImage(tinted).name(), QString()) << "painted on, it is a bitmap";
    EXPECT_EQ(qRed(paintedAt(ControlImage(tinted), 96).pixel(0, 0)), 255);
    EXPECT_TRUE(ControlImage(QImage()).isNull());
}

} // namespace
} // namespace kelvara::test
