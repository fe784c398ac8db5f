#include "Platform/Imaging/CIColorKernel.h"
#include "Platform/Imaging/CIContext.h"
#include "Tests/Imaging/Pictures.h"

#include <cmath>
#include <gtest/gtest.h>

namespace kelvara {
namespace {

using Arguments = std::vector<CIColorKernel::Argument>;

QString kernel(const char* body, const char* parameters = "__sample p, float t")
{
    return QStringLiteral("kernel vec4 k(%1) { %2 }").arg(QLatin1String(parameters), QLatin1String(body));
}

QRgb valueAt(const QString& source, QRgb pixel, double number)
{
    QImage image(3, 2, QImage::Format_ARGB32_Premultiplied);
    image.fill(pixel);
    const auto compiled = CIColorKernel::compile(source);
    if (!compiled)
        return 0x12345678U;
    const auto result = compiled->apply(QRectF(0, 0, 3, 2), Arguments { CIImage(image), number });
    return result ? CIContext::shared().createCGImage(*result, result->extent())->pixel(2, 1) : 0x87654321U;
}

// 188 is half of white's light, 128 is 0.2159 of it.
TEST(ColorKernel, ComputesInLinearLight)
{
    struct Row
    {
        const char* body;
        double number;
        QRgb out;
    };
    const QRgb in = qRgb(188, 128, 255);
    const Row rows[] = {
        { "return p;", 0, in },
        { "return p.bgra;", 0, qRgb(255, 128, 188) },
        { "return vec4(p.rrr * t, 1.0);", 0.4318, qRgb(128, 128, 128) },
        { "return vec4(p.r + t, p.r - t, p.r / t, 1);", 0.5, qRgb(255, 9, 255) },
        { "return vec4(vec3(1) - p.rgb, p.a);", 0, qRgb(187, 229, 0) },
        { "return -vec4(-t, -1 * t, t, -1);", 0.5, qRgb(188, 188, 0) },
        { "float a = 1 + 2 * 3; return a == 7. ? vec4(1) : p;", 0, qRgb(255, 255, 255) },
        { "return vec4(min(p.r, p.g), max(p.r, p.g), clamp(p.b, .1, t), 1);", 0.5, qRgb(128, 188, 188) },
        { "return vec4(mix(vec3(0), vec3(1), t), 1);", 0.2159, qRgb(128, 128, 128) },
        { "return vec4(vec3(abs(t)), 1);", -0.5, qRgb(188, 188, 188) },
        { "vec2 a = p.rg; return vec4(vec3(dot(a, vec2(1, 0))), 1);", 0, qRgb(188, 188, 188) },
        { "return (t > 0.5) ? vec4(1) : vec4(0, 0, 0, 1);", 0.5, qRgb(0, 0, 0) },
        { "return (t >= 0.5) ? vec4(1) : vec4(0, 0, 0, 1);", 0.5, qRgb(255, 255, 255) },
        { "return (0.5 < t) ? vec4(1) : vec4(0, 0, 0, 1);", 0.5, qRgb(0, 0, 0) },
        { "return 0.5 <= t ? t > 1 ? p : vec4(1) : vec4(0, 0, 0, 1);", 0.5, qRgb(255, 255, 255) },
    };
    for (const Row& row : rows)
        EXPECT_EQ(valueAt(kernel(row.body), in, row.number), row.out) << row.body;
}

TEST(ColorKernel, RefusesWhatItDoesNotUnderstand)
{
    for (const char* body : { "return vec3(1);", "return vec4(1)", "return vec4(1) : p;", "return q;", "return p.rgbx;",
             "return p ? p : p;", "return vec4(1, 2);", "return noise(p);", "return dot(p, p.rgb);",
             "float p = 1; return p;", "vec3 a = p; return p;", "for (;;) return p;", "return p; return p;",
             "return vec4(1) @ p;", "p = p; return p;", "return p.rgb > t ? p : p;", "return p.;", "return (p;", "" })
        EXPECT_FALSE(CIColorKernel::compile(kernel(body))) << body;
    for (const char* source : { "", "kernel vec4 k(", "vec4 k(__sample p) { return p; }",
             "kernel vec4 k(int p) { return vec4(1); }", "kernel vec4 k(__sample p) { return p; } x" })
        EXPECT_FALSE(CIColorKernel::compile(QString::fromLatin1(source))) << source;
    const QString deep = QString(5000, u'(');
    EXPECT_FALSE(CIColorKernel::compile(kernel(("return " + deep.toStdString()).c_str())));
    const QString minuses = QStringLiteral("return p + ") + QString(5000, u'-') + QStringLiteral("1;");
    EXPECT_TRUE(CIColorKernel::compile(kernel(minuses.toLatin1().constData())));
}

TEST(ColorKernel, TakesSourcesUpToALimit)
{
    const QString whole = kernel("return p;");
    EXPECT_TRUE(CIColorKernel::compile(whole + QString(65536 - whole.size(), u' ')));
    EXPECT_FALSE(CIColorKernel::compile(whole + QString(65537 - whole.size(), u' ')));
    EXPECT_FALSE(CIColorKernel::compile(whole + QString(100'000'000, u' ')));
    EXPECT_FALSE(CIColorKernel::compile(whole + QChar(0xd800)));
}

TEST(ColorKernel, NamesMayLookLikeNumbersToOthers)
{
    for (const char* name : { "inf", "nan", "infinity" }) {
        const QString source = kernel(
            (std::string("return vec4(vec3(") + name + "), 1);").c_str(), (std::string("float ") + name).c_str());
        const auto compiled = CIColorKernel::compile(source);
        ASSERT_TRUE(compiled) << name;
        const auto result = compiled->apply(QRectF(0, 0, 1, 1), Arguments { 0.2159 });
        EXPECT_EQ(CIContext::shared().createCGImage(*result, result->extent())->pixel(0, 0), qRgb(128, 128, 128))
            << name;
        EXPECT_FALSE(CIColorKernel::compile(kernel((std::string("return p * ") + name + ";").c_str()))) << name;
    }
}

TEST(ColorKernel, TakesItsArgumentsAndItsExtent)
{
    const auto compiled = CIColorKernel::compile(kernel("return p + vec4(0, 0, t, 0);"));
    ASSERT_TRUE(compiled);
    EXPECT_EQ(compiled->name(), QStringLiteral("k"));
    const CIImage image(pictures::photo(150, 40)); // more than one run of pixels, and a remainder
    const QRectF extent = image.extent();
    for (const Arguments& wrong : { Arguments {}, Arguments { image }, Arguments { 0.0, image },
             Arguments { image, image }, Arguments { image, 0.0, 0.0 } })
        EXPECT_FALSE(compiled->apply(extent, wrong));
    EXPECT_FALSE(compiled->apply(QRectF(), Arguments { image, 0.0 }));
    EXPECT_FALSE(compiled->apply(QRectF(0, 0, HUGE_VAL, 1), Arguments { image, 0.0 }));

    const auto same = compiled->apply(extent, Arguments { image, 0.0 });
    EXPECT_EQ(
        pictures::largestDifference(*CIContext::shared().createCGImage(*same, extent), pictures::photo(150, 40)), 0);
    const auto beyond = compiled->apply(extent.adjusted(-1, -1, 1, 1), Arguments { image, 0.0 });
    const QImage wider = *CIContext::shared().createCGImage(*beyond, beyond->extent());
    EXPECT_EQ(wider.size(), QSize(152, 42));
    EXPECT_EQ(wider.pixel(0, 0), 0U);
    EXPECT_EQ(wider.pixel(1, 1), pictures::photo(150, 40).pixel(0, 0));

    const auto two = CIColorKernel::compile(kernel("return a * b.r;", "__sample a, __sample b"));
    ASSERT_TRUE(two);
    QImage half(150, 40, QImage::Format_RGB32);
    half.fill(qRgb(188, 0, 0));
    const auto product = two->apply(extent, Arguments { CIImage(half), CIImage(half) });
    EXPECT_EQ(qRed(CIContext::shared().createCGImage(*product, extent)->pixel(100, 20)) / 2,
        94 / 2); // a quarter of light at half the cover
}

} // namespace
} // namespace kelvara
