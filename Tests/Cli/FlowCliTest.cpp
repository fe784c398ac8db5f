#include "Tests/Cli/CliProcess.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace kelvara {
namespace {

struct FlowRow
{
    const char* script;
    int exitCode;
};

class FlowCli : public testing::TestWithParam<FlowRow>
{ };

TEST_P(FlowCli, SaysInItsExitCodeHowItWent)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("script.json"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(GetParam().script);
    file.close();
    const CliProcess process = CliProcess::run({ "flow", file.fileName() });
    EXPECT_EQ(process.exitCode, GetParam().exitCode) << process.complained.toStdString();
    if (GetParam().exitCode == 2) {
        EXPECT_TRUE(process.said.isEmpty());
        EXPECT_TRUE(process.complained.contains("flow[0].tap")) << process.complained.toStdString();
        return;
    }
    ASSERT_EQ(process.objects().size(), 1U) << process.said.toStdString();
    EXPECT_EQ(process.objects().front().value("met").toBool(), GetParam().exitCode == 0);
    EXPECT_TRUE(process.complained.contains("conferenceJoined")) << "the view's own words go to the error stream";
}

INSTANTIATE_TEST_SUITE_P(Cli, FlowCli,
    testing::Values(
        FlowRow {
            R"({"detectors":"told","flow":[{"steps":["jitsi"]},{"conference":"join"},{"conference":"joined"}]})", 0 },
        FlowRow { R"({"detectors":"told","flow":[{"steps":["jitsi"]},{"conference":"join"},{"conference":"joined"},
            {"wait":"step:selfie","atMost":1}]})",
            1 },
        FlowRow { R"({"flow":[{"tap":"nose"}]})", 2 }));

} // namespace
} // namespace kelvara
