// Plays a card's back to the view at thirty frames a second, as a shaking hand holds it near, and measures how long
// after the card's arrival the machine-readable zone is accepted.
//
//   kelvara-evaluate-live [first seed = 5000000] [runs = 100]

#include "Kelvara/QKMRZScanResult.h"
#include "Kelvara/QorvelKycView.h"
#include "Kelvara/SdkModel.h"
#include "Tools/Evaluate/HeldSubject.h"
#include "Tools/Evaluate/RectangleScenes.h"

#include <QApplication>
#include <QDeadlineTimer>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace kelvara;
using namespace kelvara::evaluate;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kLongestMilliseconds = 3000;

struct Host final : QorvelKycViewDelegate
{
    void didDetectSdkDataBeforeJitsi(QorvelKycView&, const std::shared_ptr<SdkModel>& model) override
    {
        record = model;
    }
    void didCaptureIdFrontPhoto(QorvelKycView&, const UIImage&, const QString&, const UIImage&, const QString&) override
    { }
    void didCaptureIdBackPhoto(QorvelKycView&, const UIImage&, const QString&, const UIImage&, const QString&) override
    { }
    void didCaptureSelfiePhoto(QorvelKycView&, const UIImage&, const QString&, const UIImage&, const QString&) override
    { }
    void didReadNfc(QorvelKycView&, const NFCPassportModel&) override { }
    void didClose(QorvelKycView&, const std::shared_ptr<SdkModel>&) override { }

    std::shared_ptr<SdkModel> record;
};

struct Outcome
{
    int milliseconds = -1; ///< From the card's first frame; -1: not accepted.
    bool isRight = false;
};

Outcome play(const specimen::SpecimenData& data)
{
    const std::vector<QImage> frames = heldFilm(data, specimen::Subject::Back);
    QImage empty(kFrame, QImage::Format_ARGB32_Premultiplied);
    empty.fill(QColor(90, 80, 70));
    constexpr int before = 8;
    std::atomic<Clock::rep> arrival { 0 };
    const auto picture = [&](std::int64_t index, std::chrono::microseconds) {
        if (index < before)
            return empty;
        if (arrival == 0)
            arrival = Clock::now().time_since_epoch().count();
        return frameOf(frames, index - before);
    };
    PlatformServices services = phoneSeeing(ReplaySource::generator(picture), empty);

    Host host;
    QorvelKycView view(QRectF(QPointF(), kView), services);
    view.setDelegate(&host);
    view.setViewTypes({ ViewType::jitsi }); // hands the record out, which goes on being filled
    view.setViewTypes({ ViewType::idPhoto });
    view.show();
    QDeadlineTimer limit(kLongestMilliseconds + 1000);
    while (!host.record->mrzInfo && !limit.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 2);
    if (!host.record->mrzInfo || arrival == 0)
        return {};
    const auto waited = Clock::now() - Clock::time_point(Clock::duration(arrival));
    const QKMRZScanResult& mrz = *host.record->mrzInfo;
    return { static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(waited).count()),
        mrz.documentNumber == data.documentNumber && mrz.birthDate == data.birthDate
            && mrz.expiryDate == data.expiryDate && mrz.personalNumber == data.identityNumber };
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const auto first = static_cast<std::uint32_t>(argc > 1 ? std::atol(argv[1]) : gateSeeds);
    const auto runs = static_cast<std::uint32_t>(argc > 2 ? std::max(1, std::atoi(argv[2])) : 100);
    std::vector<int> times;
    std::uint32_t withinASecond = 0;
    int wrong = 0;
    for (std::uint32_t seed = first; seed < first + runs; ++seed) {
        const Outcome outcome = play(specimen::SpecimenData::fromSeed(seed));
        if (outcome.milliseconds < 0 || outcome.milliseconds > 1000)
            std::printf("seed %u: %s\n", seed,
                outcome.milliseconds < 0 ? "not accepted" : qPrintable(QString::number(outcome.milliseconds) + " ms"));
        if (outcome.milliseconds < 0)
            continue;
        times.push_back(outcome.milliseconds);
        withinASecond += outcome.milliseconds <= 1000;
        wrong += !outcome.isRight;
    }
    std::sort(times.begin(), times.end());
    std::printf("%u runs, seeds from %u: accepted within 1 s %u, accepted at all %zu, with a wrong field %d\n", runs,
        first, withinASecond, times.size(), wrong);
    if (!times.empty())
        std::printf("median %d ms, 95 %% %d ms\n", times[times.size() / 2], times[(times.size() - 1) * 95 / 100]);
    return 0;
}
