// Reads software chips of every kind, whole and rough, and prints how the reads end.

#include "Platform/Chip/PassportReader.h"
#include "Platform/Chip/software/SoftwareTerminal.h"
#include "Tools/Evaluate/ChipCombinations.h"
#include "Tools/Evaluate/ChipSamples.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdio>
#include <future>
#include <map>

using namespace kelvara;
using namespace kelvara::evaluate;
using namespace std::chrono_literals;

namespace {

/// How reads ended.
struct Tally
{
    int whole = 0;
    int hung = 0;
    int unverified = 0; ///< Delivered, but not what is on the chip. Never.
    std::map<std::string, int> errors;
    std::vector<std::string> failed; ///< Names of the first reads that did not end whole.

    void print(const char* title) const
    {
        int all = whole + hung + unverified;
        for (const auto& [name, count] : errors)
            all += count;
        std::printf("%-44s %7d reads: %7d whole, %d unverified, %d hung", title, all, whole, unverified, hung);
        for (const auto& [name, count] : errors)
            std::printf(", %d %s", count, name.c_str());
        std::printf("\n");
        for (const std::string& name : failed)
            std::printf("    %s\n", name.c_str());
        std::fflush(stdout);
    }
};

bool isWhole(const NFCPassportModel& passport, const SoftwareChip& chip)
{
    for (const auto& [id, file] : chip.files()) {
        if (!isDataGroup(id) && id != DataGroupId::COM && id != DataGroupId::SOD)
            continue;
        const auto read = passport.dataGroupsRead.find(id);
        // Nothing signs EF.COM: on an open chip a changed one is no harm.
        const bool isSigned = id != DataGroupId::COM;
        if (read == passport.dataGroupsRead.end() || (isSigned && rawOf(read->second) != file))
            return false;
    }
    return !passport.faceImage.isNull();
}

/// The number of commands of a read, which is tallied.
unsigned readOnce(const std::shared_ptr<SoftwareChip>& chip, const std::string& name, Tally& tally)
{
    constexpr std::size_t kNamesShown = 10;
    const auto terminal = std::make_shared<SoftwareTerminal>(chip);
    terminal->setReturnAfterLoss(0ms);
    using Ending = std::pair<std::shared_ptr<NFCPassportModel>, std::optional<NFCPassportReaderError>>;
    auto ending = std::make_shared<std::promise<Ending>>();
    auto future = ending->get_future();
    PassportReader reader(ReaderLogLevel::Error);
    reader.setTerminal(terminal);
    reader.setPatience(5s, 5s);
    reader.readPassport(chip->mrzKey(), {}, true, {}, [ending](auto passport, auto error) {
        ending->set_value({ std::move(passport), std::move(error) });
    });
    if (future.wait_for(30s) != std::future_status::ready) {
        ++tally.hung;
        return 0;
    }
    const auto [passport, error] = future.get();
    if (passport && isWhole(*passport, *chip)) {
        ++tally.whole;
    } else {
        if (passport)
            ++tally.unverified;
        else
            ++tally.errors[std::string(nameOf(error->kind))];
        if (tally.failed.size() < kNamesShown)
            tally.failed.push_back(name + ": "
                + (error ? error->debugDescription().toStdString() : std::string("not what is on the chip")));
    }
    return terminal->counts().commands;
}

std::shared_ptr<SoftwareChip> made(const ChipProfile& profile)
{
    auto chip = SoftwareChip::make(profile);
    if (const auto* problem = std::get_if<QString>(&chip)) {
        std::printf("no such chip: %s\n", qPrintable(*problem));
        std::exit(2);
    }
    return std::get<std::shared_ptr<SoftwareChip>>(chip);
}

void readAllKinds()
{
    Tally tally;
    const auto chipAuthentication = chipAuthenticationKinds();
    const auto activeAuthentication = activeAuthenticationKinds();
    for (const ChipTrait& access : accessTraits()) {
        for (const ChipTrait& ca : chipAuthentication) {
            for (const ChipTrait& aa : activeAuthentication) {
                ChipProfile profile = plainProfile();
                access.apply(profile);
                ca.apply(profile);
                aa.apply(profile);
                readOnce(made(profile), access.name + ", " + ca.name + ", " + aa.name, tally);
            }
        }
    }
    tally.print("access x CA kind x AA kind");
    for (const auto& [title, traits] :
        { std::pair("CA keys", chipAuthenticationKeys()), std::pair("AA keys", activeAuthenticationKeys()) }) {
        Tally keys;
        for (const ChipTrait& trait : traits) {
            ChipProfile profile = plainProfile();
            trait.apply(profile);
            readOnce(made(profile), trait.name, keys);
        }
        keys.print(title);
    }
}

void readRoughly()
{
    struct Kind
    {
        const char* name;
        bool isPace;
        bool isExtended;
    };
    for (const Kind& kind : { Kind { "BAC", false, true }, Kind { "BAC, short", false, false },
             Kind { "PACE", true, true }, Kind { "PACE, short", true, false } }) {
        ChipProfile profile = plainProfile();
        if (kind.isPace)
            profile.pace = { {} };
        profile.activeAuthentication.emplace();
        profile.activeAuthentication->curve = "prime256v1";
        profile.announcesExtendedLength = kind.isExtended;
        profile.acceptsExtendedLength = kind.isExtended;
        Tally whole;
        const auto chip = made(profile);
        std::vector<std::size_t> sizes;
        chip->setTrace([&sizes](const TraceEntry& entry) { sizes.push_back(entry.response.data.size()); });
        const unsigned commands = readOnce(chip, kind.name, whole);
        Tally lost;
        Tally flipped;
        for (unsigned at = 1; at <= commands; ++at) {
            const auto victim = made(profile);
            ChipFaults faults;
            faults.list = { ChipFault::tagLost(at) };
            victim->setFaults(faults);
            readOnce(victim, std::string(kind.name) + ", lost at " + std::to_string(at), lost);
            constexpr std::size_t kProtection = 40; // data objects, padding, checksum, status word
            for (std::size_t byte = 0; byte < sizes[at - 1] + kProtection; ++byte) {
                const auto garbled = made(profile);
                faults.list = { ChipFault::bitFlip(at, byte, static_cast<unsigned>(byte + at) % 8) };
                garbled->setFaults(faults);
                readOnce(garbled,
                    std::string(kind.name) + ", bit of byte " + std::to_string(byte) + " at " + std::to_string(at),
                    flipped);
            }
        }
        lost.print((std::string("tag lost, ") + kind.name).c_str());
        flipped.failed.clear(); // typed errors are as good an end as any
        flipped.print((std::string("bit flipped, ") + kind.name).c_str());
    }
}

void readForgeries()
{
    for (int forgery = 0; forgery <= static_cast<int>(Forgery::ForeignDG1); ++forgery) {
        ChipProfile profile = plainProfile();
        profile.pace = { {} };
        profile.activeAuthentication.emplace();
        profile.activeAuthentication->curve = "prime256v1";
        profile.forgeries = { static_cast<Forgery>(forgery) };
        Tally tally;
        readOnce(made(profile), {}, tally);
        tally.failed.clear();
        tally.print(std::string(nameOf(static_cast<Forgery>(forgery))).c_str());
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList wanted = QCoreApplication::arguments().mid(1);
    const auto isWanted
        = [&wanted](const char* name) { return wanted.isEmpty() || wanted.contains(QLatin1String(name)); };
    if (isWanted("kinds"))
        readAllKinds();
    if (isWanted("rough"))
        readRoughly();
    if (isWanted("forgeries"))
        readForgeries();
    return 0;
}
