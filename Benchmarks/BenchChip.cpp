#include "Platform/Chip/PassportReader.h"
#include "Platform/Chip/software/SoftwareTerminal.h"
#include "Platform/Chip/transport/PcscTerminal.h"
#include "Tests/Support/ReaderService.h"
#include "Tools/Evaluate/ChipSamples.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>
#include <chrono>
#include <future>

// A whole read of EF.COM, SOD, DG1, DG2 of 17 kB, DG11 and DG14, against what the chip (played by software in the same
// process) needs for its answers. "own" is the reader's part of the time, "apdu" how much of it each command takes.

namespace {

using namespace kelvara;
using namespace kelvara::chip;
using namespace kelvara::chip::software;
using Clock = std::chrono::steady_clock;

/// Notes how long a channel takes for its answers.
class TimedChannel final : public CardChannel
{
public:
    TimedChannel(std::unique_ptr<CardChannel> channel, std::atomic<std::int64_t>& spent, std::atomic<unsigned>& count)
        : m_channel(std::move(channel)), m_spent(spent), m_count(count)
    { }
    std::variant<Bytes, TransportError> transmit(ByteView command) override
    {
        const auto begin = Clock::now();
        auto answer = m_channel->transmit(command);
        m_spent += (Clock::now() - begin).count();
        ++m_count;
        return answer;
    }
    bool passesExtendedLength() const override { return m_channel->passesExtendedLength(); }

private:
    std::unique_ptr<CardChannel> m_channel;
    std::atomic<std::int64_t>& m_spent;
    std::atomic<unsigned>& m_count;
};

class TimedTerminal final : public CardTerminal
{
public:
    explicit TimedTerminal(std::shared_ptr<CardTerminal> terminal) : m_terminal(std::move(terminal)) { }
    bool isAvailable() const override { return m_terminal->isAvailable(); }
    std::variant<std::unique_ptr<CardChannel>, TransportError> waitForCard(
        std::chrono::milliseconds timeout, const CancelToken& cancel) override
    {
        auto opened = m_terminal->waitForCard(timeout, cancel);
        if (auto* channel = std::get_if<std::unique_ptr<CardChannel>>(&opened))
            return std::make_unique<TimedChannel>(std::move(*channel), spent, count);
        return opened;
    }
    std::atomic<std::int64_t> spent { 0 }; ///< Nanoseconds.
    std::atomic<unsigned> count { 0 };

private:
    std::shared_ptr<CardTerminal> m_terminal;
};

enum Access { WithBac, WithPace, WithEverything };

std::shared_ptr<SoftwareChip> document(Access access)
{
    ChipProfile profile = evaluate::usualProfile();
    if (access != WithBac)
        profile.pace = { {} };
    if (access != WithEverything) {
        profile.chipAuthentication.clear();
        if (access == WithBac)
            profile.files[DataGroupId::DG14]
                = *fromHex("6E 14 31 12 30 10 06 0B 2A 86 48 86 F7 0D 01 01 01 01 01 02 01 01");
    } else {
        profile.activeAuthentication.emplace();
        profile.activeAuthentication->curve = "brainpoolP256r1";
    }
    auto made = SoftwareChip::make(profile);
    const auto* chip = std::get_if<std::shared_ptr<SoftwareChip>>(&made);
    return chip ? *chip : nullptr;
}

void read(benchmark::State& state, const std::shared_ptr<SoftwareChip>& chip, std::shared_ptr<CardTerminal> cards)
{
    const auto terminal = std::make_shared<TimedTerminal>(std::move(cards));
    PassportReader reader(ReaderLogLevel::Error);
    reader.setTerminal(terminal);
    double whole = 0;
    double longest = 0;
    for (auto _ : state) {
        std::promise<bool> done;
        const auto begin = Clock::now();
        reader.readPassport(chip->mrzKey(), {}, true, {}, [&done](auto passport, auto) { done.set_value(!!passport); });
        if (!done.get_future().get())
            return state.SkipWithError("The chip was not read.");
        const double took = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
        whole += took;
        longest = std::max(longest, took);
    }
    const double spent = static_cast<double>(terminal->spent) / 1e6;
    const auto reads = static_cast<double>(state.iterations());
    state.counters["apdus"] = terminal->count / reads;
    state.counters["own_ms"] = (whole - spent) / reads;
    state.counters["own_ms_per_apdu"] = (whole - spent) / terminal->count;
    state.counters["chip_ms"] = spent / reads; // the baseline
    state.counters["ratio"] = whole / spent;
    state.counters["longest_ms"] = longest;
}

void readInProcess(benchmark::State& state, Access access, bool isExtended)
{
    const auto chip = document(access);
    if (!chip)
        return state.SkipWithError("There is no such chip.");
    const auto terminal = std::make_shared<SoftwareTerminal>(chip);
    terminal->setPassesExtendedLength(isExtended);
    read(state, chip, terminal);
}

/// Here "chip" is everything beneath the reader: the PC/SC service, its virtual reader and the chip.
void readThroughService(benchmark::State& state, Access access)
{
    const auto service = test::ReaderService::start();
    if (!service)
        return state.SkipWithError("It needs pcscd, vsmartcard-vpcd, root, and no other reader service.");
    const auto chip = document(access);
    const VirtualReaderCard card(virtualReaderCard(chip), service->port());
    read(state, chip, std::make_shared<PcscTerminal>());
}

BENCHMARK_CAPTURE(readInProcess, BAC_extended, WithBac, true)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readInProcess, BAC_short, WithBac, false)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readInProcess, PACE_extended, WithPace, true)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readInProcess, PACE_CA_AA_short, WithEverything, false)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readThroughService, BAC, WithBac)->UseRealTime()->Iterations(20)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readThroughService, PACE, WithPace)->UseRealTime()->Iterations(20)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
