// The push service running with load's client processes, faults, chaos and hostile peers against
// it; and stopping cleanly.
#include <gtest/gtest.h>
#include <json/json.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/tools/kavo-push/tool_runner.h"

namespace {

using KavoTest::RunTool;
using KavoTest::TempDir;
using KavoTest::ToolRun;

// `kavo-push serve` in the background, its output in files of `dir`.
class Service {
public:
    Service(const TempDir& dir, const std::vector<std::string>& options) : dir_(dir), socket_(dir.File("push.sock"))
    {
        chmod(dir.Path().c_str(), 0711);  // the applications' uids reach the socket inside
        std::vector<std::string> args = {KAVO_TOOL_PATH, "serve", "--socket", socket_};
        args.insert(args.end(), options.begin(), options.end());
        std::vector<char*> argv;
        for (auto& arg : args) {
            argv.push_back(arg.data());
        }
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, dir.File("serve.out").c_str(), O_WRONLY | O_CREAT, 0600);
        posix_spawn_file_actions_addopen(&actions, 2, dir.File("serve.err").c_str(), O_WRONLY | O_CREAT, 0600);
        if (posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ) != 0) {
            pid_ = -1;
        }
        posix_spawn_file_actions_destroy(&actions);
        struct stat info {};
        for (int tries = 0; pid_ > 0 && tries < 1000 && stat(socket_.c_str(), &info) != 0; ++tries) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    ~Service()
    {
        if (pid_ > 0) {
            Stop(SIGKILL);
        }
    }

    const std::string& Socket() const { return socket_; }
    pid_t Pid() const { return pid_; }
    // The exit status after `signal`; -1 when it did not exit.
    int Stop(int signal)
    {
        int status = 0;
        kill(pid_, signal);
        bool exited = waitpid(pid_, &status, 0) == pid_ && WIFEXITED(status);
        pid_ = -1;
        return exited ? WEXITSTATUS(status) : -1;
    }
    std::string Out() const { return dir_.Read("serve.out"); }
    std::string Err() const { return dir_.Read("serve.err"); }

private:
    const TempDir& dir_;
    std::string socket_;
    pid_t pid_ = -1;
};

Json::Value ParseJson(const std::string& text)
{
    Json::Value json;
    std::istringstream(text) >> json;
    return json;
}

bool AnyChildOf(pid_t parent)
{
    std::string out = KavoTest::RunProgram({"ps", "-o", "pid=", "--ppid", std::to_string(parent)}).out;
    return out.find_first_not_of(" \n") != std::string::npos;
}

class ServiceCommandTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (geteuid() != 0) {
            GTEST_SKIP() << "the applications' clients take the applications' uids, which needs root";
        }
    }
};

// Every fault kind, chaos and every hostile peer at once: load's checks all pass, the service is
// back to its threads, descriptors and children of the start, and a SIGTERM stops it cleanly.
TEST_F(ServiceCommandTest, ServesThroughFaultsChaosAndHostilePeersThenStopsClean)
{
    TempDir dir;
    Service service(dir, {"--apps", "3", "--chaos", "--chaos-longest-ms", "300", "--chaos-seed", "5", "--idle-ms",
                          "300", "--max-connections", "32"});
    ASSERT_GT(service.Pid(), 0);
    ToolRun load =
        RunTool({"load", "--socket", service.Socket(), "--clients", "4", "--apps", "4", "--requests", "1500",
                 "--faults", "crash=3%,garbage=3%,oversized=3%,hang=0.3%", "--chaos", "--hostile", "all", "--json"});
    Json::Value report = ParseJson(load.out);
    const Json::Value& s = report["service"];
    EXPECT_EQ(load.status, 0) << load.out << load.err;
    EXPECT_TRUE(s["passed"].asBool()) << s["checks"]["firstProblem"].asString();
    for (const char* fault : {"crash", "garbage", "oversized", "hang", "none"}) {
        EXPECT_GT(s["faults"][fault].asUInt64(), 0U) << fault << " was asked for";
    }
    for (const char* check : {"lost", "refused", "duplicated", "misdirected", "wrongCode", "notSent"}) {
        EXPECT_EQ(s["checks"][check].asUInt64(), 0U) << check;
    }
    EXPECT_TRUE(s["service"]["settled"].asBool());
    for (const char* resource : {"threads", "fds", "children"}) {
        EXPECT_EQ(s["service"]["end"][resource], s["service"]["start"][resource]) << resource;
    }
    EXPECT_EQ(s["hostile"].size(), 4U);
    pid_t pid = service.Pid();
    EXPECT_EQ(service.Stop(SIGTERM), 0) << service.Err();
    EXPECT_FALSE(AnyChildOf(pid));
    struct stat info {};
    EXPECT_NE(stat(service.Socket().c_str(), &info), 0) << "the socket file is removed";
    std::string answered = "code 0: " + s["codes"]["0"].asString() + "\n";
    EXPECT_NE(service.Out().find(answered), std::string::npos) << "totals count what load saw\n" << service.Out();
    EXPECT_NE(service.Err().find("chaos: "), std::string::npos) << "the chaos windows are logged";
}

// The caller is who the kernel says: root is no application, each application gets its own answer,
// and a crashed extension is started again for the next request.
TEST_F(ServiceCommandTest, TheCallerIsTheUidOfTheConnection)
{
    TempDir dir;
    Service service(dir, {"--apps", "2"});
    ASSERT_GT(service.Pid(), 0);
    struct Case {
        std::vector<std::string> as;
        std::string data;
        int status;
        std::string part;
    };
    const std::vector<Case> cases = {
        {{}, "hello", 1, "code: 1000900001\nmessage: System internal error."},
        {{"--as", "com.example.app2"}, "hello", 0, "\"value\" : \"com.example.app2\""},
        {{"--as", "com.example.mail"}, "big-icon", 0, "\"value\" : \"com.example.mail\""},
        {{"--as", "com.example.app1"}, "crash", 1, "code: 1000900003"},
        {{"--as", "com.example.app1"}, "hello", 0, "You have mail: hello"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = {"send", "--socket", service.Socket()};
        args.insert(args.end(), c.as.begin(), c.as.end());
        args.insert(args.end(), {"mail", c.data});
        ToolRun send = RunTool(args);
        EXPECT_EQ(send.status, c.status) << c.data << send.out << send.err;
        EXPECT_NE(send.out.find(c.part), std::string::npos) << c.data << "\n" << send.out;
    }
    EXPECT_EQ(service.Stop(SIGINT), 0);
    EXPECT_NE(service.Out().find("4 started, 1 crashed"), std::string::npos) << service.Out();
}

// Bad options are named before anything starts; a taken socket or no service at all is a failure.
TEST(ServiceOptionsTest, RefusesWhatItCannotRun)
{
    TempDir dir;
    std::string socket = dir.Write("taken", "");
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string part;
    };
    const std::vector<Case> cases = {
        {{"load", "--clients", "1", "--requests", "1", "--faults", "crash=2"}, 2, "bad fault 'crash=2'"},
        {{"load", "--clients", "1", "--requests", "1", "--faults", "melt=1%"}, 2, "bad fault 'melt=1%'"},
        {{"load", "--clients", "1", "--requests", "1", "--faults", "crash=60%,hang=41%"}, 2, "more than 100%"},
        {{"load", "--clients", "1", "--requests", "1", "--hostile", "rude"}, 2, "unknown hostile peer 'rude'"},
        {{"load", "--clients", "0", "--requests", "1"}, 2, "expected --clients"},
        {{"load", "--clients", "2", "--requests", "-1"}, 2, "expected --clients"},
        {{"load", "--clients", "1", "--requests", "1", "--socket", dir.File("none")}, 1, "no service listens"},
        {{"send", "--as", "com.example.app0"}, 2, "no application 'com.example.app0'"},
        {{"send", "--socket", dir.File("none")}, 1, "no service listens"},
        {{"serve", "--apps", "1001"}, 2, "expected counts"},
        {{"serve", "--socket", socket}, 1, "cannot listen on " + socket},
    };
    for (const auto& c : cases) {
        ToolRun run = RunTool(c.args);
        EXPECT_EQ(run.status, c.status) << c.args.back() << run.err;
        EXPECT_NE(run.err.find(c.part), std::string::npos) << run.err;
    }
}

}  // namespace
