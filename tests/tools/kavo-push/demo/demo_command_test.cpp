// The demo's service and extension are two real processes.
#include <gtest/gtest.h>
#include <json/json.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <sstream>
#include <string>
#include <vector>

#include "tests/tools/kavo-push/tool_runner.h"

namespace {

using KavoTest::RunTool;
using KavoTest::ToolRun;

// The code and message the application receives, and whether the extension process started.
struct Outcome {
    const char* name;
    int code;
    std::string message;  // empty on success
    bool extensionStarted;
};

struct Scenario {
    Outcome outcome;
    std::vector<std::string> trace;   // parts of the text trace, in this order
    std::vector<std::string> events;  // "NAME ERROR_CODE" of each system event
};

const std::vector<Scenario>& Scenarios()
{
    const std::string called = "extension call: ok - OK within the survival time of 5 s";
    static const std::vector<Scenario> scenarios = {
        {{"default", 0, "", true},
         {"processes: service pid ", "caller identity: ok", "log INFO GetCallingUid uid: 20010042",
          "log INFO Get clientUserInfo succeed",
          "extension process: not running - application pid 3001 in the background", called,
          "extension process ends: ok - exited with status 0", "validate overlay icon: ok - kept",
          "service -> extension, 56 bytes: ", "START_EXTENSION, type 4"},
         {"START_EXTENSION 0"}},
        {{"bad-survival-time", 401, "Invalid input parameter.", false},
         {"validate request: failed", "log ERROR Validate Survival Time Fail"},
         {}},
        {{"missing-extension", 1000900002, "Push extension does not exist.", false},
         {"remote-notification extension exists: failed", "log ERROR query extension fail:8521221"},
         {}},
        {{"account-service-late", 0, "", true},
         {"foreground account: ok", "log ERROR getForegroundOsAccounts fail: account sa not started",
          "log WARN Begin do task for ability:200 again", called},
         {"START_EXTENSION 0"}},
        {{"oversized-content", 1000900027, "Remote notification content is invalid.", true},
         {called, "validate content: failed", "Content size is 10112 over 8192"},
         {"START_EXTENSION 0"}},
        {{"oversized-icon", 0, "", true},
         {"validate content: ok", "validate overlay icon: removed", "Overlay icon size is 4096 over 2048"},
         {"START_EXTENSION 0"}},
        {{"extension-crash", 1000900003, "Push extension callback execution failed.", true},
         {"extension call: failed - PEER_GONE", "extension process ends: ok - killed by signal 6"},
         {"START_EXTENSION 0", "START_EXTENSION_ERROR 1000900003"}},
        {{"extension-timeout", 1000900004, "Push extension callback execution timed out.", true},
         {"extension call: failed - DEADLINE_PASSED within the survival time of 1 s",
          "extension process ends: ok - killed by signal 9"},
         {"START_EXTENSION 0", "START_EXTENSION_ERROR 1000900004"}},
        {{"extension-garbage", 1000900027, "Remote notification content is invalid.", true},
         {called, "read RemoteNotificationResult: failed", "log ERROR New remoteNotificationResult error"},
         {"START_EXTENSION 0"}},
    };
    return scenarios;
}

// Every part is found after the one before it; every line fits on a screen.
void CheckText(const std::string& text, const std::vector<std::string>& parts)
{
    size_t at = 0;
    for (const auto& part : parts) {
        size_t found = text.find(part, at);
        EXPECT_NE(found, std::string::npos) << part << "\nafter:\n" << text.substr(at);
        at = found == std::string::npos ? at : found + part.size();
    }
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 200U) << line.substr(0, 100);
    }
}

void CheckProcesses(const Json::Value& trace, bool started)
{
    int service = trace["processes"]["service"].asInt();
    int extension = trace["processes"]["extension"].asInt();
    EXPECT_GT(service, 0);
    if (!started) {
        EXPECT_EQ(extension, 0);
        EXPECT_EQ(trace["bytes"].size(), 1U) << "only the application's request was read";
        return;
    }
    EXPECT_NE(extension, service);
    EXPECT_EQ(kill(extension, 0), -1) << "the extension process does not outlive the demo";
    EXPECT_EQ(errno, ESRCH);
    ASSERT_GE(trace["bytes"].size(), 2U);
    EXPECT_EQ(trace["bytes"][1]["from"].asString(), "service");
    EXPECT_EQ(trace["bytes"][1]["hex"], trace["bytes"][0]["hex"]) << "the request crossed as it was read";
}

// The extension's own answer: its pid, the uid the kernel reported to it for the service's end
// of the socket, and the content it built, every byte of a kept icon included.
void CheckResult(const Json::Value& trace, bool iconKept)
{
    const Json::Value& result = trace["result"];
    EXPECT_EQ(result["parameters"]["extensionPid"]["value"], trace["processes"]["extension"]);
    EXPECT_EQ(result["parameters"]["callingUid"]["value"].asInt(), static_cast<int>(getuid()));
    EXPECT_EQ(result["content"]["title"].asString(), "New message");
    EXPECT_EQ(result["content"]["overlayIcon"]["pixels"].asString().size(), iconKept ? 16 * 16 * 4 * 2U : 0U);
}

TEST(DemoCommandTest, EveryScenarioEndsInItsPublicCodeAndMessage)
{
    std::istringstream listed(RunTool({"demo", "--list-scenarios"}).out);
    std::string name;
    for (const auto& scenario : Scenarios()) {
        const Outcome& s = scenario.outcome;
        SCOPED_TRACE(s.name);
        EXPECT_TRUE(listed >> name && name == s.name) << "the scenarios listed, in order";
        listed.ignore(1 << 10, '\n');
        ToolRun text = RunTool({"demo", "--scenario", s.name});
        ToolRun json = RunTool({"demo", "--scenario", s.name, "--json"});
        ASSERT_EQ(text.status, 0) << text.err;
        ASSERT_EQ(json.status, 0) << json.err;
        EXPECT_EQ(text.err + json.err, "") << "neither process reports anything beside the trace";
        std::vector<std::string> parts = scenario.trace;
        parts.push_back("code: " + std::to_string(s.code) +
                        "\nmessage: " + (s.code == 0 ? "(success)\nresult: \n{" : s.message + "\nresult: none\n"));
        CheckText(text.out, parts);
        Json::Value trace;
        std::istringstream(json.out) >> trace;
        EXPECT_EQ(trace["code"].asInt(), s.code);
        EXPECT_EQ(trace["message"].asString(), s.message);
        for (const auto& step : trace["steps"]) {
            EXPECT_NE(text.out.find(step["name"].asString() + ": " + step["outcome"].asString()), std::string::npos);
            for (const auto& line : step["log"]) {
                EXPECT_NE(text.out.find("     log " + line.asString() + "\n"), std::string::npos);
            }
        }
        CheckProcesses(trace, s.extensionStarted);
        std::vector<std::string> events;
        for (const auto& event : trace["events"]) {
            events.push_back(event["name"].asString() + " " + event["params"]["ERROR_CODE"].asString());
        }
        EXPECT_EQ(events, scenario.events);
        if (s.code == 0) {
            CheckResult(trace, text.out.find("validate overlay icon: ok - kept") != std::string::npos);
        } else {
            EXPECT_TRUE(trace["result"].isNull());
        }
    }
    EXPECT_FALSE(listed >> name) << "a listed scenario not run: " << name;
}

}  // namespace
