// What of a script and a command line is accepted, and how a refusal shows.
#include "tests/replay/ReplayFixture.h"

namespace velko::testing {

namespace {

class FormatTest : public ReplayFixture {};

TEST_F(FormatTest, ALineThatIsNotInTheFormatEndsTheScriptWithItsNumber) {
    const std::vector<std::string> badLines{
        "nonsense",
        "",
        "[1]",
        "{\"op\":\"state\"} {\"op\":\"state\"}",
        "{}",
        R"({"op":5})",
        R"({"op":"dance"})",
        R"({"op":"goto"})",
        R"({"op":"goto","page":"1"})",
        R"({"op":"goto","page":1.5})",
        R"({"op":"goto","page":3000000000})",
        R"({"op":"open","path":"/nowhere","password":7})",
        R"({"op":"night","on":1})",
        R"({"op":"colors","bg":"#FFFFFFF","fg":"#FF000000"})",
        R"({"op":"convert","what":"page_to_moon","page":0,"x":1,"y":1})",
        R"({"op":"fault","what":"rain"})",
        R"({"op":"fault","what":"engine_throw","after":-1})",
        R"({"op":"resize","w":10,"h":-1})",
        R"({"op":"resize","w":10,"h":10,"sx":0})",
        R"({"op":"drag","x0":1,"y0":1,"x1":2,"y1":2,"steps":0})",
        R"({"op":"setting","key":"NoSuchKey"})",
        R"({"op":"setting","key":"IsAutoSave","value":1.5,"type":"Int32"})",
        R"({"op":"wait","timeout_ms":-5})",
    };
    for (const std::string& strLine : badLines) {
        ReplayProcess replay;
        replay.Send(R"({"op":"default_layout","mode":2})");
        replay.Send(strLine);
        replay.Send(R"({"op":"state"})");
        EXPECT_EQ(replay.Finish(), 2) << strLine;
        EXPECT_EQ(replay.Errors().rfind("line 2:", 0), 0U) << strLine << "\n" << replay.Errors();
        ASSERT_EQ(replay.RestOfOutput().size(), 1U) << strLine;
        EXPECT_EQ(replay.RestOfOutput()[0], R"({"op":"default_layout"})") << strLine;
    }
}

TEST_F(FormatTest, ARefusedCommandLineIsToldApartFromAScript) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"--unknown"},
                                                      {"--size", "10x-1"},
                                                      {"--size"},
                                                      {"--composition-scale", "1,x"},
                                                      {"--dpi", "nan"},
                                                      {"--engine", "none"},
                                                      {folder / "missing.jsonl"},
                                                      {"-", "-"}}) {
        ReplayProcess replay(arguments);
        EXPECT_EQ(replay.Finish(), 2) << arguments[0];
        EXPECT_FALSE(replay.Errors().empty()) << arguments[0];
        EXPECT_TRUE(replay.RestOfOutput().empty()) << arguments[0];
    }
}

TEST_F(FormatTest, AScriptInAFileRunsAsOneOnTheStandardInput) {
    const std::string strScript = "{\"op\":\"state\"}\n{\"op\":\"matrix\",\"page\":0}\n";
    ReplayProcess fromFile({folder.Write("script.jsonl", strScript)});
    ReplayProcess fromInput({"-"});
    fromInput.Send(R"({"op":"state"})");
    fromInput.Send(R"({"op":"matrix","page":0})");
    EXPECT_EQ(fromFile.Finish(), 0);
    EXPECT_EQ(fromInput.Finish(), 0);
    ASSERT_EQ(fromFile.RestOfOutput().size(), 2U);
    EXPECT_EQ(fromFile.RestOfOutput(), fromInput.RestOfOutput());
    EXPECT_EQ(fromFile.RestOfOutput()[1], R"({"op":"matrix","m":[1,0,0,1,0,0]})");
}

TEST_F(FormatTest, NumbersReadBackExactlyAndTextsStayJson) {
    ReplayProcess replay({"--dpi", "97.3"});
    ExpectOpens(replay, 1);
    const double dbScale = State(replay).value("scale").toDouble();
    EXPECT_EQ(static_cast<double>(static_cast<float>(dbScale)), dbScale)
        << "the scale is a 32-bit float; its double must be that float's value";

    const QString strOdd = QString::fromUtf8("\"\\\n\t\x01 \xC3\xA4");
    const QJsonObject echoed =
        replay.Run({{"op", "setting"}, {"key", "AppStoreUrl"}, {"value", strOdd}});
    EXPECT_EQ(echoed.value("value").toString(), strOdd);
    EXPECT_EQ(replay.Finish(), 0);
}

TEST_F(FormatTest, WhatTheControlRefusesIsAnAnswerAndTheScriptGoesOn) {
    ReplayProcess replay;
    const QJsonObject refused = replay.Run({{"op", "save_state"}});
    EXPECT_EQ(refused.value("error").toString(), "Platform::NullReferenceException");
    EXPECT_FALSE(refused.value("message").toString().isEmpty());
    EXPECT_EQ(refused.value("op").toString(), "save_state");
    EXPECT_EQ(State(replay).value("count").toInt(-1), 0);
    EXPECT_EQ(replay.Finish(), 0);
}

TEST_F(FormatTest, DebugOutputShowsOnlyWhenAskedFor) {
    for (const bool bAsked : {false, true}) {
        ReplayProcess replay(bAsked ? std::vector<std::string>{"--debug-output"}
                                    : std::vector<std::string>());
        ExpectOpens(replay, 1);
        EXPECT_EQ(std::any_of(replay.Events().begin(), replay.Events().end(),
                              [](const QJsonObject& event) { return event.contains("debug"); }),
                  bAsked);
    }
}

}

}
