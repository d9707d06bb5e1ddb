// `kavo-push demo` as a user runs it: the service and the extension are two real processes, and
// each scenario ends in its documented public code and message, with the steps, log lines, bytes
// and system events that explain it.
#include <gtest/gtest.h>
#include <json/json.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/tools/kavo_push/tool_runner.h"

namespace {

using KavoTest::RunTool;
using KavoTest::ToolRun;

Json::Value Parse(const std::string& text)
{
    Json::Value json;
    std::istringstream(text) >> json;
    return json;
}

const Json::Value* FindStep(const Json::Value& trace, const std::string& name)
{
    for (const auto& step : trace["steps"]) {
        if (step["name"].asString() == name) {
            return &step;
        }
    }
    return nullptr;
}

bool Logged(const Json::Value& step, const std::string& line)
{
    for (const auto& logged : step["log"]) {
        if (logged.asString() == line) {
            return true;
        }
    }
    return false;
}

// A step expected in the trace: its outcome, log lines it must hold ("LEVEL text") and a part
// of its detail.
struct StepCheck {
    std::string name;
    std::string outcome;
    std::vector<std::string> log;
    std::string detail = "";
};

// The outcome the application receives, and whether the extension process was started.
struct Outcome {
    const char* name;
    int code;
    std::string message;
    bool extensionStarted;
};

struct Scenario {
    Outcome outcome;
    std::vector<StepCheck> steps;
    std::vector<std::string> events;
};

const std::vector<Scenario>& Scenarios()
{
    const StepCheck called{"extension call", "ok", {}, "OK within the survival time of 5 s"};
    const StepCheck exited{"extension process ends", "ok", {}, "exited with status 0"};
    static const std::vector<Scenario> scenarios = {
        {{"default", 0, "", true},
         {{"caller identity", "ok", {"INFO GetCallingUid uid: 20010042", "INFO Get clientUserInfo succeed"}},
          {"extension process", "not running", {}, "application pid 3001 in the background"},
          called,
          exited,
          {"validate overlay icon", "ok", {}, "kept"}},
         {"START_EXTENSION 0"}},
        {{"bad-survival-time", 401, "Invalid input parameter.", false},
         {{"validate request", "failed", {"ERROR survival time is invalid: 0", "ERROR Validate Survival Time Fail"}}},
         {}},
        {{"missing-extension", 1000900002, "Push extension does not exist.", false},
         {{"remote-notification extension exists", "failed", {"ERROR query extension fail:8521221"}}},
         {}},
        {{"account-service-late", 0, "", true},
         {{"foreground account",
           "ok",
           {"ERROR getForegroundOsAccounts fail: account sa not started", "WARN Begin do task for ability:200 again"}},
          called},
         {"START_EXTENSION 0"}},
        {{"oversized-content", 1000900027, "Remote notification content is invalid.", true},
         {called,
          {"validate content",
           "failed",
           {"ERROR remote notification content is invalid: Content size is 10112 over 8192"}}},
         {"START_EXTENSION 0"}},
        {{"oversized-icon", 0, "", true},
         {{"validate content", "ok", {}},
          {"validate overlay icon",
           "removed",
           {"ERROR remote notification content is invalid: Overlay icon size is 4096 over 2048"}}},
         {"START_EXTENSION 0"}},
        {{"extension-crash", 1000900003, "Push extension callback execution failed.", true},
         {{"extension call", "failed", {}, "PEER_GONE"}, {"extension process ends", "ok", {}, "killed by signal 6"}},
         {"START_EXTENSION 0", "START_EXTENSION_ERROR 1000900003"}},
        {{"extension-timeout", 1000900004, "Push extension callback execution timed out.", true},
         {{"extension call", "failed", {}, "DEADLINE_PASSED within the survival time of 1 s"},
          {"extension process ends", "ok", {}, "killed by signal 9"}},
         {"START_EXTENSION 0", "START_EXTENSION_ERROR 1000900004"}},
        {{"extension-garbage", 1000900027, "Remote notification content is invalid.", true},
         {called,
          {"read RemoteNotificationResult",
           "failed",
           {"ERROR RemoteNotificationResult::ReadFromParcel: Read Content Error",
            "ERROR New remoteNotificationResult error"}}},
         {"START_EXTENSION 0"}},
    };
    return scenarios;
}

void CheckProcesses(const Json::Value& trace, bool started)
{
    int service = trace["processes"]["service"].asInt();
    int extension = trace["processes"]["extension"].asInt();
    EXPECT_GT(service, 0);
    EXPECT_NE(service, getpid()) << "the demo is a process of its own";
    if (!started) {
        EXPECT_EQ(extension, 0);
        EXPECT_EQ(trace["bytes"].size(), 1U) << "only the application's request was read";
        return;
    }
    EXPECT_GT(extension, 0);
    EXPECT_NE(extension, service);
    EXPECT_EQ(kill(extension, 0), -1) << "the extension process does not outlive the demo";
    EXPECT_EQ(errno, ESRCH);
    ASSERT_GE(trace["bytes"].size(), 2U);
    EXPECT_EQ(trace["bytes"][1]["from"].asString(), "service");
    EXPECT_EQ(trace["bytes"][1]["hex"], trace["bytes"][0]["hex"]) << "the request crossed as it was read";
}

class DemoCommandTest : public ::testing::Test {};

TEST_F(DemoCommandTest, EveryScenarioEndsInItsPublicCodeAndMessage)
{
    for (const auto& scenario : Scenarios()) {
        const Outcome& s = scenario.outcome;
        SCOPED_TRACE(s.name);
        ToolRun run = RunTool({"demo", "--scenario", s.name, "--json"});
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "") << "neither process reports anything beside the trace";
        Json::Value trace = Parse(run.out);
        EXPECT_EQ(trace["scenario"].asString(), s.name);
        EXPECT_EQ(trace["code"].asInt(), s.code);
        EXPECT_EQ(trace["message"].asString(), s.message);
        EXPECT_EQ(trace["result"].isNull(), s.code != 0);
        CheckProcesses(trace, s.extensionStarted);
        for (const auto& check : scenario.steps) {
            const Json::Value* step = FindStep(trace, check.name);
            ASSERT_NE(step, nullptr) << check.name;
            EXPECT_EQ((*step)["outcome"].asString(), check.outcome) << check.name;
            EXPECT_NE((*step)["detail"].asString().find(check.detail), std::string::npos) << check.name;
            for (const auto& line : check.log) {
                EXPECT_TRUE(Logged(*step, line)) << check.name << ": " << line;
            }
        }
        std::vector<std::string> events;
        for (const auto& event : trace["events"]) {
            events.push_back(event["name"].asString() + " " + event["params"]["ERROR_CODE"].asString());
        }
        EXPECT_EQ(events, scenario.events);
    }
}

// The extension's own answer: its pid, the uid the kernel reported to it for the service's end
// of the socket, and the content it built (without the icon the service removed).
TEST_F(DemoCommandTest, ResultComesFromTheExtensionProcess)
{
    struct Case {
        const char* scenario;
        bool iconKept;
    };
    const Case cases[] = {{"default", true}, {"oversized-icon", false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.scenario);
        Json::Value trace = Parse(RunTool({"demo", "--scenario", c.scenario, "--json"}).out);
        const Json::Value& result = trace["result"];
        EXPECT_EQ(result["parameters"]["extensionPid"]["value"], trace["processes"]["extension"]);
        EXPECT_EQ(result["parameters"]["callingUid"]["value"].asInt(), static_cast<int>(getuid()));
        EXPECT_EQ(result["content"]["title"].asString(), "New message");
        EXPECT_EQ(result["content"].isMember("overlayIcon"), c.iconKept);
    }
}

TEST_F(DemoCommandTest, TextTraceShowsStepsBytesEventsAndResult)
{
    ToolRun run = RunTool({"demo"});
    ASSERT_EQ(run.status, 0) << run.err;
    for (const char* text : {"processes: service pid ", "1. read RemoteNotificationRequest: ok",
                             "     log INFO Get clientUserInfo succeed", "service -> extension, 56 bytes: ",
                             "\"name\":\"START_EXTENSION\"", "code: 0\n", "\"title\" : \"New message\""}) {
        EXPECT_NE(run.out.find(text), std::string::npos) << text;
    }
    EXPECT_EQ(run.err, "") << "log lines are shown once, in the trace";

    ToolRun list = RunTool({"demo", "--list-scenarios"});
    std::set<std::string> listed;
    std::istringstream lines(list.out);
    for (std::string line; std::getline(lines, line);) {
        listed.insert(line.substr(0, line.find(' ')));
    }
    std::set<std::string> expected;
    for (const auto& s : Scenarios()) {
        expected.insert(s.outcome.name);
    }
    EXPECT_EQ(listed, expected);
}

TEST_F(DemoCommandTest, BadUsageAndABadDescriptorAreRefused)
{
    struct Case {
        const char* name;
        std::vector<std::string> args;
        int status;
    };
    const Case cases[] = {
        {"unknown scenario", {"demo", "--scenario", "nope"}, 2},
        {"stray argument", {"demo", "default"}, 2},
        {"scenario without its name", {"demo", "--scenario"}, 2},
        {"extension without a descriptor", {"extension"}, 2},
        {"extension told an unknown behaviour", {"extension", "--fd", "0", "--behaviour", "sing"}, 2},
        {"extension given a file, not a socket", {"extension", "--fd", "0"}, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ToolRun run = RunTool(c.args);
        EXPECT_EQ(run.status, c.status) << run.err;
        EXPECT_EQ(run.out, "");
    }
}

}  // namespace
