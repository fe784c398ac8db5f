// Looks for cards in photographed specimen cards and in pictures without one, and prints how often that was right, for
// the library's detector and for the usual short recipe.
//
//   kelvara-evaluate-rectangles [first seed = 5000000] [pictures a class = 100] [width = 1000] [height = 700]

#include "Platform/Vision/CardRectangleDetector.h"
#include "Tools/Evaluate/CannyBaseline.h"
#include "Tools/Evaluate/RectangleTally.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>
#include <opencv2/core/utility.hpp>

using namespace kelvara;
using namespace kelvara::evaluate;

namespace {

void print(const char* name, bool hasCard, const RectangleTally& tally)
{
    std::printf("  %-10s", name);
    if (hasCard)
        std::printf(" IoU >= 0.90 %.3f  >= 0.95 %.3f  wrong %.4f", tally.share(tally.within90),
            tally.share(tally.within95), tally.share(tally.wrong()));
    else
        std::printf(" reported %.4f (%d)%21s", tally.share(tally.reported), tally.reported, "");
    std::printf("   median %5.1f ms  99 %% %5.1f ms\n", tally.time(0.5), tally.time(0.99));
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    cv::setNumThreads(1);
    const auto first = static_cast<std::uint32_t>(argc > 1 ? std::atol(argv[1]) : gateSeeds);
    const int count = argc > 2 ? std::atoi(argv[2]) : 100;
    const QSize size(argc > 3 ? std::atoi(argv[3]) : 1000, argc > 4 ? std::atoi(argv[4]) : 700);
    if (count < 1 || size.width() < 1 || size.height() < 1) {
        std::fputs("At least one picture of at least one pixel is needed.\n", stderr);
        return 2;
    }
    std::printf("Rectangles: %d pictures a class, %d x %d, seeds from %u\n", count, size.width(), size.height(), first);

    const CardRectangleDetector detector;
    const CannyBaseline baseline;
    std::vector<RectangleTally> cards(2);
    std::vector<RectangleTally> empties(2);
    for (const RectangleSceneClass& one : rectangleScenes) {
        const std::vector<RectangleTally> found = tallies({ &detector, &baseline }, one.scene, first, count, size, 1);
        std::printf("%s\n", one.name);
        print("lines", one.hasCard, found[0]);
        print("Canny", one.hasCard, found[1]);
        std::fflush(stdout);
        for (std::size_t d = 0; d < 2; ++d) {
            if (one.hasCard)
                cards[d].add(found[d]);
            if (one.isEmpty)
                empties[d].add(found[d]);
        }
    }
    std::printf("all with a card\n");
    print("lines", true, cards[0]);
    print("Canny", true, cards[1]);
    std::printf("all without one\n");
    print("lines", false, empties[0]);
    print("Canny", false, empties[1]);
    return 0;
}
