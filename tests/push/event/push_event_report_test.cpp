// System event reports: names, types and the parameter set of each record and event.
#include "kavo/push/event/push_event_report.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "kavo/host/sysevent/sys_event.h"

namespace {

using Kavo::SysEventType;
using Kavo::Push::PushEvent;
using Kavo::Push::PushEventInfo;
using Kavo::Push::PushEventReport;

// "KEY=value" per parameter, with its value type: s string, i int32, u uint64.
std::vector<std::string> Describe(const Kavo::SysEventRecord& record)
{
    std::vector<std::string> out;
    for (const auto& p : record.params) {
        std::ostringstream value;
        std::visit([&value](const auto& v) { value << v; }, p.value);
        out.push_back(p.key + "=" + "siu"[p.value.index()] + ":" + value.str());
    }
    return out;
}

const PushEventInfo EXTENSION("remoteNotification", "com.example.mail", "NotifyExt", 100, 7);
// Built with no application context and no account service: empty bundle, account 0.
const PushEventInfo SERVICE("kavo.push.IPushService/RegisterToken", -2, 1234567890123UL);

TEST(PushEventReportTest, RecordTypeChoosesTheSetAndTheEventAddsTheCost)
{
    using Set = std::vector<std::string>;
    const Set extension = {"EXTENSION_TYPE=s:remoteNotification", "BUNDLE_NAME=s:com.example.mail",
                           "ABILITY_NAME=s:NotifyExt", "ACCOUNT_ID=i:100", "ERROR_CODE=i:7"};
    const Set service = {"URI=s:kavo.push.IPushService/RegisterToken", "BUNDLE_NAME=s:", "ACCOUNT_ID=i:0",
                         "ERROR_CODE=i:-2"};
    const Set invoke = {"URI=s:kavo.push.IPushService/RegisterToken", "BUNDLE_NAME=s:", "ACCOUNT_ID=i:0",
                        "COST_TIME=u:1234567890123", "ERROR_CODE=i:-2"};
    struct Case {
        PushEvent event;
        const PushEventInfo& info;
        std::string name;
        SysEventType type;
        const Set& params;
    };
    const Case cases[] = {
        {PushEvent::START_EXTENSION, EXTENSION, "START_EXTENSION", SysEventType::BEHAVIOR, extension},
        {PushEvent::START_EXTENSION_ERROR, EXTENSION, "START_EXTENSION_ERROR", SysEventType::FAULT, extension},
        {PushEvent::INVOKE_PUSH_SERVICE, EXTENSION, "INVOKE_PUSH_SERVICE", SysEventType::BEHAVIOR, extension},
        {PushEvent::CONNECT_PUSHSERVICE_ERROR, SERVICE, "CONNECT_PUSHSERVICE_ERROR", SysEventType::FAULT, service},
        {PushEvent::UNCONNECT_PUSHSERVICE_ERROR, SERVICE, "UNCONNECT_PUSHSERVICE_ERROR", SysEventType::FAULT, service},
        {PushEvent::INVOKE_PUSH_SERVICE, SERVICE, "INVOKE_PUSH_SERVICE", SysEventType::BEHAVIOR, invoke},
    };
    for (const auto& c : cases) {
        Kavo::SysEventRecorder recorder;
        PushEventReport::SendEvent(c.event, c.info);
        auto events = recorder.Events();
        ASSERT_EQ(events.size(), 1u) << c.name;
        EXPECT_EQ(std::make_tuple(events[0].domain, events[0].name, events[0].type),
                  std::make_tuple("PUSH_MANAGER", c.name, c.type));
        EXPECT_EQ(Describe(events[0]), c.params) << c.name;
    }
    Kavo::SysEventRecorder recorder;
    EXPECT_THROW(PushEventReport::SendEvent(static_cast<PushEvent>(5), EXTENSION), std::out_of_range);
    EXPECT_TRUE(recorder.Events().empty()) << "an event outside the catalogue writes nothing";
}

}  // namespace
