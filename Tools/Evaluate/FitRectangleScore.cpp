// Learns how the evidence for a card is weighed: photographs scenes of all classes, collects every candidate of the
// search with its features and whether it is the true outline, fits a logistic regression, and prints the table for
// Platform/Vision/CardEvidence.cpp with the figures of a two-fold cross-validation.
//
//   kelvara-fit-rectangle-score [pictures a class = 250]

#include "Platform/Vision/CardEvidence.h"
#include "Tools/Evaluate/RectangleTally.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>
#include <opencv2/core.hpp>

using namespace kelvara;
using namespace kelvara::evaluate;

namespace {

/// Tuning seeds: none of them is in a test or in a published figure.
constexpr std::uint32_t kFirstSeed = 100'000;
constexpr std::size_t kFeatures = std::tuple_size_v<CardFeatures>;
constexpr double kTrueOverlap = 0.97; ///< From which a candidate is the card's outline and not one beside it.

struct Example
{
    CardFeatures features;
    double overlap;
    double weight;
    bool withinLimits;
    std::size_t scene;
};

struct SceneOutcome
{
    const RectangleSceneClass* kind;
    int fold;
};

struct Examples
{
    std::vector<Example> all;
    std::vector<SceneOutcome> scenes;
};

void addScene(const RectangleSceneClass& kind, std::uint32_t seed, Examples& examples)
{
    const QSize size = seed % 3 == 0 ? QSize(798, 562) : QSize(1000, 700);
    const specimen::Scene scene
        = photograph(specimen::SpecimenData::fromSeed(seed), rectangleSceneOptions(kind.scene, seed, size));
    const VisionImage image(scene.image);
    const std::vector<CardCandidate> candidates = searchCards(image.planes(), cardLimits);
    for (const CardCandidate& candidate : candidates) {
        const Outline outline(candidate.corners.begin(), candidate.corners.end());
        const double common = scene.corners ? overlap(outline, outlineOf(*scene.corners)) : 0;
        double weight = 1 / std::sqrt(static_cast<double>(candidates.size()));
        // Outlines that are true, but not of a whole card, teach nothing; they compete all the same.
        if ((kind.scene == RectangleScene::Phone && QuadSize(candidate.corners).aspect() > 1.65F)
            || (kind.scene == RectangleScene::Cut && common > 0.7))
            weight = 0;
        if (common > 0.90 && common < kTrueOverlap)
            weight /= 2;
        examples.all.push_back({ featuresOf(candidate), common, weight,
            within(candidate.corners, cardLimits, image.planes().bgra(0).size()), examples.scenes.size() });
    }
    examples.scenes.push_back({ &kind, static_cast<int>(seed % 2) });
}

/// The weights of a logistic regression by Newton's method; the last one is the constant. `fold` is left out.
cv::Mat_<double> fit(const std::vector<Example>& examples, const std::vector<SceneOutcome>& scenes, int leftOut)
{
    constexpr int size = static_cast<int>(kFeatures) + 1;
    constexpr double ridge = 0.3;
    cv::Mat_<double> mean = cv::Mat_<double>::zeros(size, 1);
    cv::Mat_<double> spread = cv::Mat_<double>::zeros(size, 1);
    for (const Example& example : examples) {
        for (int i = 0; i + 1 < size; ++i) {
            const double value = example.features[static_cast<std::size_t>(i)];
            mean(i) += value / static_cast<double>(examples.size());
            spread(i) += value * value / static_cast<double>(examples.size());
        }
    }
    for (int i = 0; i + 1 < size; ++i)
        spread(i) = std::sqrt(std::max(spread(i) - mean(i) * mean(i), 1e-12));
    cv::Mat_<double> weights = cv::Mat_<double>::zeros(size, 1);
    for (int round = 0; round < 50; ++round) {
        cv::Mat_<double> gradient = ridge * weights;
        cv::Mat_<double> hessian = ridge * cv::Mat_<double>::eye(size, size);
        gradient(size - 1) = 0;
        cv::Mat_<double> x(size, 1);
        for (const Example& example : examples) {
            if (scenes[example.scene].fold == leftOut)
                continue;
            for (int i = 0; i + 1 < size; ++i)
                x(i) = (example.features[static_cast<std::size_t>(i)] - mean(i)) / spread(i);
            x(size - 1) = 1;
            const double p = 1 / (1 + std::exp(-weights.dot(x)));
            gradient += example.weight * (p - (example.overlap >= kTrueOverlap ? 1 : 0)) * x;
            hessian += example.weight * p * (1 - p) * x * x.t();
        }
        cv::Mat_<double> step;
        cv::solve(hessian, gradient, step, cv::DECOMP_CHOLESKY);
        weights -= step;
        if (cv::norm(step, cv::NORM_INF) < 1e-7)
            break;
    }
    for (int i = 0; i + 1 < size; ++i) {
        weights(i) /= spread(i);
        weights(size - 1) -= weights(i) * mean(i);
    }
    return weights;
}

double logOdds(const cv::Mat_<double>& weights, const CardFeatures& features)
{
    double sum = weights(static_cast<int>(kFeatures));
    for (std::size_t i = 0; i < kFeatures; ++i)
        sum += weights(static_cast<int>(i)) * static_cast<double>(features[i]);
    return sum;
}

/// What each scene's best candidate would be, by the weights that were fitted without the scene.
void crossValidate(const Examples& examples)
{
    struct Best
    {
        double score = -1e9;
        double overlap = 0;
        bool withinLimits = false;
    };
    std::vector<Best> best(examples.scenes.size());
    const cv::Mat_<double> folds[] = { fit(examples.all, examples.scenes, 0), fit(examples.all, examples.scenes, 1) };
    for (const Example& example : examples.all) {
        const double score = logOdds(folds[examples.scenes[example.scene].fold], example.features);
        if (score > best[example.scene].score)
            best[example.scene] = { score, example.overlap, example.withinLimits };
    }
    for (const double least : { -4.0, -3.0, -2.5, -2.0, -1.0, 0.0 }) {
        std::printf("log odds > %4.1f:", least);
        for (const RectangleSceneClass& kind : rectangleScenes) {
            int scenes = 0;
            int right = 0;
            int wrong = 0;
            for (std::size_t i = 0; i < best.size(); ++i) {
                if (examples.scenes[i].kind != &kind)
                    continue;
                ++scenes;
                const bool reported = best[i].withinLimits && best[i].score > least;
                right += reported && kind.hasCard && best[i].overlap >= 0.90;
                wrong += reported && !(kind.hasCard && best[i].overlap >= 0.90);
            }
            if (kind.hasCard)
                std::printf("  %s %d/%d", kind.name, right, scenes);
            if (wrong > 0)
                std::printf("  %s WRONG %d/%d", kind.name, wrong, scenes);
        }
        std::printf("\n");
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    const auto count = static_cast<std::uint32_t>(argc > 1 ? std::atoi(argv[1]) : 250);
    Examples examples;
    for (const RectangleSceneClass& kind : rectangleScenes) {
        for (std::uint32_t seed = kFirstSeed; seed < kFirstSeed + count; ++seed)
            addScene(kind, seed, examples);
    }
    std::printf("%zu candidates in %zu scenes\n", examples.all.size(), examples.scenes.size());
    crossValidate(examples);
    const cv::Mat_<double> weights = fit(examples.all, examples.scenes, -1);
    for (std::size_t i = 0; i < kFeatures; ++i)
        std::printf("%.5gF, ", weights(static_cast<int>(i)));
    std::printf("\nconstant %.5gF\n", weights(static_cast<int>(kFeatures)));
    return 0;
}
