// Finds faces in photographed specimen cards, selfies and pictures without a face, and prints how often that was right.
//
//   kelvara-evaluate-faces [first seed = 5000000] [pictures a class = 100] [least score = the library's own]

#include "Platform/Vision/NativeFaceDetector.h"
#include "Platform/Vision/VisionImage.h"
#include "Tools/Evaluate/ThreadClock.h"
#include "Tools/Specimen/Scene.h"

#include <QGuiApplication>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

using namespace kelvara;
using namespace kelvara::evaluate;
using namespace kelvara::specimen;

namespace {

struct Class
{
    std::string name;
    std::function<SceneOptions(std::uint32_t seed)> options;
};

/// What was found in the pictures of one class.
struct Tally
{
    int faces = 0; ///< pictures with a face
    int found = 0; ///< of these: the first box found is the face
    int foundLater = 0; ///< of these: a later box is
    int falseFirst = 0; ///< of these: the first box found is something else
    int empty = 0; ///< pictures without a face
    int falseFinds = 0; ///< of these: something was found
    std::vector<double> scores; ///< of the face where there is one, of the best false find elsewhere
    std::vector<double> overlaps;
    std::vector<double> milliseconds;
    std::vector<std::uint32_t> mistaken; ///< seeds
};

QRectF inPixels(const QRectF& box, QSize size)
{
    return { box.x() * size.width(), (1 - box.y() - box.height()) * size.height(), box.width() * size.width(),
        box.height() * size.height() };
}

double overlap(const QRectF& a, const QRectF& b)
{
    const QRectF common = a & b;
    const double area = common.width() * common.height();
    return area / (a.width() * a.height() + b.width() * b.height() - area);
}

/// Whether the answer is right.
bool judge(const FaceDetector& detector, const Scene& scene, Tally& tally)
{
    const VisionImage image(scene.image);
    const double begin = threadMilliseconds();
    const std::vector<VNFaceObservation> faces = detector.detect(image);
    tally.milliseconds.push_back(threadMilliseconds() - begin);
    if (!scene.face) {
        ++tally.empty;
        tally.falseFinds += !faces.empty();
        if (!faces.empty())
            tally.scores.push_back(faceScore(faces.front()));
        return faces.empty();
    }
    ++tally.faces;
    for (std::size_t i = 0; i < faces.size(); ++i) {
        const double common = overlap(inPixels(faces[i].boundingBox, scene.image.size()), *scene.face);
        if (common < 0.4) {
            tally.falseFirst += i == 0;
            continue;
        }
        ++(i == 0 ? tally.found : tally.foundLater);
        tally.scores.push_back(faceScore(faces[i]));
        tally.overlaps.push_back(common);
        return i == 0;
    }
    return false;
}

double quantile(std::vector<double> values, double part)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(std::lround(part * static_cast<double>(values.size() - 1)))];
}

void print(const std::string& name, const Tally& t)
{
    std::printf("%-28s %5d", name.c_str(), t.faces + t.empty);
    if (t.faces > 0) {
        std::printf("  found %5.1f %%  later %d  other first %d  overlap %.2f", 100.0 * t.found / t.faces, t.foundLater,
            t.falseFirst, quantile(t.overlaps, 0.5));
        std::printf("  score least %.2f 2%% %.2f median %.2f", quantile(t.scores, 0), quantile(t.scores, 0.02),
            quantile(t.scores, 0.5));
    } else {
        std::printf("  false %d (%.2f %%)  highest score %.2f", t.falseFinds, 100.0 * t.falseFinds / t.empty,
            quantile(t.scores, 1));
    }
    std::printf("  %.1f ms\n", quantile(t.milliseconds, 0.5));
    if (!t.mistaken.empty())
        std::printf("    mistaken seeds:");
    for (std::size_t i = 0; i < std::min<std::size_t>(t.mistaken.size(), 12); ++i)
        std::printf(" %u", t.mistaken[i]);
    if (!t.mistaken.empty())
        std::printf(t.mistaken.size() > 12 ? " …\n" : "\n");
    std::fflush(stdout);
}

Class card(std::string name, Subject subject, double fillFrom, double fillTo, QSize size = { 1000, 700 })
{
    return { std::move(name), [=](std::uint32_t seed) {
                // The seed's own scene with the fill moved into the range, its place in the frame scaled with the air.
                SceneOptions options = ordinary(seed, subject, size);
                const double before = options.fill;
                options.fill = fillFrom + (fillTo - fillFrom) * (before - 0.60) / (0.99 - 0.60);
                options.shift *= (1 - options.fill) / std::max(0.01, 1 - before);
                return options;
            } };
}

Class plain(std::string name, Subject subject, QSize size)
{
    return { std::move(name), [=](std::uint32_t seed) { return ordinary(seed, subject, size); } };
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const auto first = static_cast<std::uint32_t>(argc > 1 ? std::atoi(argv[1]) : 5000000);
    const auto count = static_cast<std::uint32_t>(argc > 2 ? std::atoi(argv[2]) : 100);
    const auto detector
        = argc > 3 ? makeFaceDetector(static_cast<float>(std::atof(argv[3]))) : makeNativeFaceDetector();

    const QSize small(798, 562);
    const QSize oval(540, 720);
    const std::vector<Class> classes = {
        card("front, fill 0.60-0.75", Subject::Front, 0.60, 0.75),
        card("front, fill 0.75-0.99", Subject::Front, 0.75, 0.99),
        card("front, 798 x 562, 0.75-0.99", Subject::Front, 0.75, 0.99, small),
        plain("selfie", Subject::Selfie, oval),
        plain("back", Subject::Back, { 1000, 700 }),
        plain("back, 798 x 562", Subject::Back, small),
        plain("nothing", Subject::Nothing, { 1000, 700 }),
        plain("nothing, in the oval", Subject::Nothing, oval),
        plain("hand", Subject::Hand, { 1000, 700 }),
        plain("phone", Subject::Phone, { 1000, 700 }),
    };
    for (const Class& one : classes) {
        Tally tally;
        for (std::uint32_t seed = first; seed < first + count; ++seed)
            if (!judge(*detector, photograph(SpecimenData::fromSeed(seed), one.options(seed)), tally))
                tally.mistaken.push_back(seed);
        print(one.name, tally);
    }
    return 0;
}
