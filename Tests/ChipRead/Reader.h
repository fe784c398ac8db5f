#pragma once

#include "Platform/Chip/PassportReader.h"
#include "Platform/Chip/software/SoftwareTerminal.h"
#include "Tools/Evaluate/ChipSamples.h"

#include <future>
#include <gtest/gtest.h>
#include <mutex>

namespace kelvara {

using chip::DataGroupId;
using chip::ProtocolOutcome;
using chip::software::ChipFault;
using chip::software::ChipFaults;
using chip::software::ChipProfile;
using chip::software::Forgery;
using chip::software::SoftwareChip;
using chip::software::SoftwareTerminal;
using chip::software::TestAuthority;
using ErrorKind = NFCPassportReaderError::Kind;

using namespace std::chrono_literals;

using evaluate::issuer;
using evaluate::plainProfile;

inline std::shared_ptr<SoftwareChip> makeChip(const ChipProfile& profile)
{
    auto made = SoftwareChip::make(profile);
    if (const auto* problem = std::get_if<QString>(&made)) {
        ADD_FAILURE() << problem->toStdString();
        return nullptr;
    }
    return std::get<std::shared_ptr<SoftwareChip>>(made);
}

/// What came of a read.
struct Outcome
{
    std::shared_ptr<NFCPassportModel> passport;
    std::optional<NFCPassportReaderError> error;
    std::vector<NFCViewDisplayMessage> messages;

    [[nodiscard]] std::string sentence() const
    {
        return error ? error->debugDescription().toStdString() : passport ? "read" : "neither";
    }
};

/// A read that is under way: its completion is counted, and waited for.
class Read
{
public:
    PassportReader::DisplayMessage display()
    {
        return [this](const NFCViewDisplayMessage& message) {
            const std::lock_guard lock(m_mutex);
            m_outcome.messages.push_back(message);
            return std::optional<QString>();
        };
    }
    PassportReader::Completed completed()
    {
        return [this](std::shared_ptr<NFCPassportModel> passport, std::optional<NFCPassportReaderError> error) {
            EXPECT_NE(passport != nullptr, error.has_value());
            {
                const std::lock_guard lock(m_mutex);
                m_outcome.passport = std::move(passport);
                m_outcome.error = std::move(error);
            }
            m_done.set_value(); // throws when there is a second completion
        };
    }
    Outcome get()
    {
        EXPECT_EQ(m_done.get_future().wait_for(60s), std::future_status::ready) << "the read hangs";
        const std::lock_guard lock(m_mutex);
        return m_outcome;
    }

private:
    std::mutex m_mutex;
    Outcome m_outcome;
    std::promise<void> m_done;
};

/// Reads from a terminal, whatever lies on it.
inline Outcome readFrom(const std::shared_ptr<SoftwareTerminal>& terminal, const QString& key,
    const QUrl& masterList = {}, const QList<DataGroupId>& tags = {})
{
    PassportReader reader(ReaderLogLevel::Warning, masterList);
    reader.setTerminal(terminal);
    reader.setPatience(2s, 2s);
    Read read;
    reader.readPassport(key, tags, true, read.display(), read.completed());
    return read.get();
}

/// Reads a chip that is held there again at once whenever it is lost.
inline Outcome readChip(const std::shared_ptr<SoftwareChip>& chip, const QUrl& masterList = {})
{
    const auto terminal = std::make_shared<SoftwareTerminal>(chip);
    terminal->setReturnAfterLoss(0ms);
    return readFrom(terminal, chip->mrzKey(), masterList);
}

/// What a read that must fail has failed with.
inline ErrorKind failureOf(const Outcome& outcome)
{
    if (outcome.error)
        return outcome.error->kind;
    ADD_FAILURE() << "it was read";
    return ErrorKind::AlreadyReading;
}

/// Nothing else was delivered than what is on the chip, and everything of it that can be read.
inline void expectWhole(const Outcome& outcome, const SoftwareChip& chip)
{
    ASSERT_TRUE(outcome.passport) << outcome.sentence();
    const NFCPassportModel& passport = *outcome.passport;
    for (const auto& [id, file] : chip.files()) {
        const bool isDelivered = chip::isDataGroup(id) || id == DataGroupId::COM || id == DataGroupId::SOD;
        const bool isLocked = id == DataGroupId::DG3 || id == DataGroupId::DG4;
        if (!isDelivered || isLocked)
            continue;
        const auto read = passport.dataGroupsRead.find(id);
        ASSERT_NE(read, passport.dataGroupsRead.end()) << chip::entryOf(id).name;
        EXPECT_EQ(chip::rawOf(read->second), file) << chip::entryOf(id).name;
    }
    EXPECT_FALSE(passport.faceImage.isNull());
    ASSERT_TRUE(passport.verification.passiveAuthentication);
    EXPECT_EQ(passport.verification.passiveAuthentication->signature, chip::SignatureOutcome::Valid);
    EXPECT_TRUE(passport.verification.passiveAuthentication->areHashesRight());
    EXPECT_EQ(outcome.messages.back().kind, NFCViewDisplayMessage::Kind::successfulRead);
}

} // namespace kelvara
