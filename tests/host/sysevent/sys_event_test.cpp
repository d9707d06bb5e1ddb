#include "kavo/host/sysevent/sys_event.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "tests/support/test_support.h"

namespace {

using namespace Kavo;

TEST(SysEventTest, NestedRecordersBadEventsAndTheJsonForm)
{
    SysEventRecorder outer;
    {
        SysEventRecorder inner;
        EXPECT_EQ(SysEventWrite("PUSH_MANAGER", "INVOKE", SysEventType::BEHAVIOR, {{"COST", uint64_t{1} << 40}}), 0);
        EXPECT_EQ(inner.Events().size(), 1u);
    }
    // No domain, no name, types 0 and 5, an empty key.
    const std::tuple<const char*, const char*, int, std::vector<SysEventParam>> bad[] = {
        {"", "E", 1, {}}, {"D", "", 1, {}}, {"D", "E", 0, {}}, {"D", "E", 5, {}}, {"D", "E", 1, {{"", int32_t{1}}}}};
    for (const auto& [domain, event, type, params] : bad) {
        EXPECT_EQ(SysEventWrite(domain, event, static_cast<SysEventType>(type), params), -1) << domain << "/" << event;
    }
    SysEventWrite("PUSH_MANAGER", "START_EXTENSION", SysEventType::FAULT, {});
    auto events = outer.Events();
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[1].name, "START_EXTENSION");
    SysEventRecord record{"D", "E", SysEventType::FAULT, {{"S", std::string("a\"b\\c\n\x01")}, {"I", int32_t{-7}}}};
    record.params.push_back({"U", uint64_t{18446744073709551615ULL}});
    EXPECT_EQ(SysEventToJson(record),
              R"({"domain":"D","name":"E","type":1,"params":{"S":"a\"b\\c\n\u0001","I":-7,"U":18446744073709551615}})");
}

TEST(SysEventTest, ConcurrentWritersLeaveOneWholeObjectPerLine)
{
    const std::string path = ::testing::TempDir() + "kavo_sysevent_" + std::to_string(getpid());
    std::remove(path.c_str());
    constexpr int THREADS = 4, EACH = 200;
    {
        KavoTest::ScopedEnv env("KAVO_SYSEVENT_FILE", path.c_str());
        std::vector<std::thread> writers;
        for (int t = 0; t < THREADS; ++t) {
            writers.emplace_back([t] {
                std::string payload(300 + t, static_cast<char>('a' + t));
                for (int i = 0; i < EACH; ++i) {
                    SysEventWrite("PUSH_MANAGER", "INVOKE", SysEventType::BEHAVIOR, {{"URI", payload}, {"N", i}});
                }
            });
        }
        for (auto& writer : writers) {
            writer.join();
        }
    }
    SysEventWrite("PUSH_MANAGER", "AFTER", SysEventType::FAULT, {});  // the variable is gone: not written
    std::ifstream in(path);
    int lines = 0;
    for (std::string line; std::getline(in, line); ++lines) {
        ASSERT_EQ(line.rfind(R"({"domain":"PUSH_MANAGER","name":"INVOKE","type":4,"params":{"URI":")", 0), 0u) << line;
        const size_t text = line.find("\"URI\":\"") + 7;
        EXPECT_EQ(line.find_first_not_of(line[text], text), line.find("\",\"N\":")) << "one writer's text, whole";
        ASSERT_EQ(line.back(), '}');
    }
    EXPECT_EQ(lines, THREADS * EACH);
    std::remove(path.c_str());
}

}  // namespace
