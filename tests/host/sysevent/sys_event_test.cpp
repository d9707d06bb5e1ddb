// The system event writer: recorded events keep their parameters in order and type, bad
// events are refused, and the JSON-lines file holds one whole object per line even when many
// threads write at once.
#include "kavo/host/sysevent/sys_event.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/test_support.h"

namespace {

using Kavo::SysEventParam;
using Kavo::SysEventRecord;
using Kavo::SysEventRecorder;
using Kavo::SysEventType;
using Kavo::SysEventWrite;

TEST(SysEventTest, RecordsKeepOrderAndValueTypes)
{
    SysEventRecorder outer;
    {
        SysEventRecorder inner;
        EXPECT_EQ(
            SysEventWrite("PUSH_MANAGER", "INVOKE_PUSH_SERVICE", SysEventType::BEHAVIOR,
                          {{"URI", std::string("x")}, {"COST_TIME", uint64_t{1} << 40}, {"ERROR_CODE", int32_t{-3}}}),
            0);
        ASSERT_EQ(inner.Events().size(), 1u);
    }
    SysEventWrite("PUSH_MANAGER", "START_EXTENSION", SysEventType::BEHAVIOR, {});
    auto events = outer.Events();
    ASSERT_EQ(events.size(), 2u);
    const SysEventRecord& first = events[0];
    EXPECT_EQ(first.type, SysEventType::BEHAVIOR);
    ASSERT_EQ(first.params.size(), 3u);
    EXPECT_EQ(first.params[0].key, "URI");
    EXPECT_EQ(std::get<uint64_t>(first.params[1].value), uint64_t{1} << 40);
    EXPECT_EQ(std::get<int32_t>(first.params[2].value), -3);
    EXPECT_EQ(events[1].name, "START_EXTENSION");
}

TEST(SysEventTest, InvalidEventsAreRefusedAndNotRecorded)
{
    struct Case {
        const char* name;
        std::string domain;
        std::string event;
        int type;
        std::vector<SysEventParam> params;
    };
    const Case cases[] = {
        {"empty domain", "", "E", 1, {}},
        {"empty name", "D", "", 1, {}},
        {"type 0", "D", "E", 0, {}},
        {"type 5", "D", "E", 5, {}},
        {"an empty key", "D", "E", 1, {{"", int32_t{1}}}},
    };
    SysEventRecorder recorder;
    for (const auto& c : cases) {
        EXPECT_EQ(SysEventWrite(c.domain, c.event, static_cast<SysEventType>(c.type), c.params), -1) << c.name;
    }
    EXPECT_TRUE(recorder.Events().empty());
}

TEST(SysEventTest, JsonEscapesTextAndWritesNumbersBare)
{
    SysEventRecord record{
        "D",
        "E",
        SysEventType::FAULT,
        {{"S", std::string("a\"b\\c\n\x01")}, {"I", int32_t{-7}}, {"U", uint64_t{18446744073709551615ULL}}}};
    EXPECT_EQ(Kavo::SysEventToJson(record),
              R"({"domain":"D","name":"E","type":1,"params":{"S":"a\"b\\c\n\u0001","I":-7,"U":18446744073709551615}})");
}

TEST(SysEventTest, ConcurrentWritersLeaveOneWholeObjectPerLine)
{
    char path[] = "/tmp/kavo_sysevent_XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    constexpr int THREADS = 4;
    constexpr int EACH = 200;
    {
        KavoTest::ScopedEnv env("KAVO_SYSEVENT_FILE", path);
        std::vector<std::thread> writers;
        for (int t = 0; t < THREADS; ++t) {
            writers.emplace_back([t] {
                std::string payload(300 + t, static_cast<char>('a' + t));
                for (int i = 0; i < EACH; ++i) {
                    SysEventWrite("PUSH_MANAGER", "INVOKE_PUSH_SERVICE", SysEventType::BEHAVIOR,
                                  {{"URI", payload}, {"ERROR_CODE", int32_t{i}}});
                }
            });
        }
        for (auto& writer : writers) {
            writer.join();
        }
    }
    SysEventWrite("PUSH_MANAGER", "AFTER", SysEventType::FAULT, {});  // the variable is gone: not written
    std::ifstream in(path);
    std::string line;
    int lines = 0;
    while (std::getline(in, line)) {
        ++lines;
        ASSERT_EQ(line.rfind("{\"domain\":\"PUSH_MANAGER\",\"name\":\"INVOKE_PUSH_SERVICE\"", 0), 0u) << line;
        ASSERT_EQ(line.back(), '}');
        char fill = line[line.find("\"URI\":\"") + 7];
        EXPECT_EQ(line.find_first_not_of(fill, line.find("\"URI\":\"") + 7), line.find("\",\"ERROR_CODE\""))
            << "one writer's text, whole";
    }
    EXPECT_EQ(lines, THREADS * EACH);
    std::remove(path);
}

}  // namespace
