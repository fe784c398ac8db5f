#include "Tools/Replay/FlowScriptFile.h"
#include "Tools/Replay/soak/FlowGenerator.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace kelvara::replay {
namespace {

struct BadRow
{
    const char* script;
    const char* place; ///< What the sentence must name.
};

/// Only letters and digits: brackets and quotes mislead the programs that list tests.
std::string plain(const char* text)
{
    return QString::fromLatin1(text).remove(QRegularExpression(QStringLiteral("[^A-Za-z0-9]"))).toStdString();
}

void PrintTo(const BadRow& row, std::ostream* out)
{
    *out << plain(row.place);
}

class BadScripts : public testing::TestWithParam<BadRow>
{ };

TEST_P(BadScripts, AreRefusedWithThePlaceAtFault)
{
    const auto script = flowScriptFromJson(GetParam().script, QDir());
    ASSERT_TRUE(std::holds_alternative<QString>(script));
    const QString sentence = std::get<QString>(script);
    EXPECT_TRUE(sentence.contains(QLatin1String(GetParam().place))) << sentence.toStdString();
    EXPECT_TRUE(sentence.endsWith(u'.')) << sentence.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Replay, BadScripts,
    testing::Values(BadRow { "", "JSON" }, BadRow { "[]", "object" }, BadRow { "{}", "\"flow\"" },
        BadRow { R"({"flow":[1]})", "flow[0]" }, BadRow { R"({"flow":[{}]})", "flow[0]" },
        BadRow { R"({"flow":[], "colour": 1})", "colour" }, BadRow { R"({"flow":[], "seed": "a"})", "seed" },
        BadRow { R"({"flow":[], "frame": {"width": 0}})", "frame.width" },
        BadRow { R"({"flow":[], "detectors": "good"})", "detectors" },
        BadRow { R"({"flow":[], "chip": {"mrz": ["A"]}})", "mrz" },
        BadRow { R"({"flow":[], "chip": {"colour": 1}})", "colour" },
        BadRow { R"({"flow":[{"wait":"ready"},{"tap":"nose"}]})", "flow[1].tap" },
        BadRow { R"({"flow":[{"tap":"shutter","wait":"ready"}]})", "flow[0]" },
        BadRow { R"({"flow":[{"tap":"shutter","speed":1}]})", "flow[0].speed" },
        BadRow { R"({"flow":[{"show":"front","atMost":1}]})", "flow[0].atMost" },
        BadRow { R"({"flow":[{"wait":"delegate:didDance"}]})", "flow[0].wait" },
        BadRow { R"({"flow":[{"wait":"step:dance"}]})", "flow[0].wait" },
        BadRow { R"({"flow":[{"wait":-1}]})", "flow[0].wait" },
        BadRow { R"({"flow":[{"show":{"file":"/no/such/picture.png"}}]})", "flow[0].show.file" },
        BadRow { R"({"flow":[{"show":{"as":"front"}}]})", "flow[0].show.file" },
        BadRow { R"({"flow":[{"steps":["idPhoto","dance"]}]})", "dance" },
        BadRow { R"({"flow":[{"goTo":"finished"}]})", "flow[0].goTo" },
        BadRow { R"({"flow":[{"camera":"drop"}]})", "flow[0].camera" },
        BadRow { R"({"flow":[{"camera":"plug","which":"left"}]})", "flow[0].which" },
        BadRow { R"({"flow":[{"chip":"drop"}]})", "flow[0].chip" },
        BadRow { R"({"flow":[{"chip":{"fault":{"kind":"boredom"}}}]})", "boredom" },
        BadRow { R"({"flow":[{"conference":"failed:boredom"}]})", "boredom" },
        BadRow { R"({"flow":[{"conference":"dance"}]})", "flow[0].conference" },
        BadRow { R"({"flow":[{"background":"yes"}]})", "flow[0].background" },
        BadRow { R"({"flow":[{"destroy":"in:didDance"}]})", "flow[0].destroy" },
        BadRow { R"({"flow":[{"destroy":"later"}]})", "flow[0].destroy" },
        BadRow { R"({"flow":[{"resize":{"width":-1}}]})", "flow[0].resize.width" }),
    [](const auto& row) { return plain(row.param.place) + "_" + std::to_string(row.index); });

TEST(ScriptFile, LeavesToTheDefaultsWhatItDoesNotSay)
{
    const auto read = flowScriptFromJson(
        R"({"flow":[{"wait":"ready","atMost":5,"mayMiss":true},{"destroy":"in:didClose"},{"conference":"join:a b"}]})",
        QDir());
    ASSERT_TRUE(std::holds_alternative<FlowScript>(read)) << std::get<QString>(read).toStdString();
    const auto& script = std::get<FlowScript>(read);
    EXPECT_TRUE(script.hasCameras && script.hasReader && script.hasCalls && !script.forceNfc);
    EXPECT_EQ(script.detectors, FlowScript::Detectors::Real);
    ASSERT_EQ(script.flow.size(), 3U);
    EXPECT_EQ(script.flow[0].atMost.count(), 5);
    EXPECT_TRUE(script.flow[0].mayMiss);
    EXPECT_EQ(std::get<Destroy>(script.flow[1].act).inside, "didClose");
    EXPECT_EQ(std::get<Join>(script.flow[2].act).url, "a b");
}

TEST(FlowGenerator, WritesScriptsThatCanBeReadAndRepeated)
{
    int withMishaps = 0;
    for (std::uint32_t seed = 0; seed < 300; ++seed) {
        const QJsonObject written = soak::generateFlow(seed);
        EXPECT_EQ(written, soak::generateFlow(seed));
        const auto read = flowScriptFromJson(QJsonDocument(written).toJson(), QDir());
        ASSERT_TRUE(std::holds_alternative<FlowScript>(read)) << seed << ": " << std::get<QString>(read).toStdString();
        withMishaps += QJsonDocument(written).toJson().contains("\"unplug\"") ? 1 : 0;
    }
    EXPECT_GT(withMishaps, 30);
}

} // namespace
} // namespace kelvara::replay
