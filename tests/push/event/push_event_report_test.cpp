// System event reports: the catalogue's names and types, the parameter set each record and
// event choose, and the service record's own bundle and account.
#include "kavo/push/event/push_event_report.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "kavo/host/device/device.h"
#include "kavo/host/sysevent/sys_event.h"

namespace {

using Kavo::SysEventRecorder;
using Kavo::SysEventType;
using Kavo::Push::PushEvent;
using Kavo::Push::PushEventInfo;
using Kavo::Push::PushEventReport;

// "KEY=value" per parameter, with its value type: s string, i int32, u uint64.
std::vector<std::string> Describe(const Kavo::SysEventRecord& record)
{
    std::vector<std::string> out;
    for (const auto& p : record.params) {
        if (const auto* s = std::get_if<std::string>(&p.value)) {
            out.push_back(p.key + "=s:" + *s);
        } else if (const auto* i = std::get_if<int32_t>(&p.value)) {
            out.push_back(p.key + "=i:" + std::to_string(*i));
        } else {
            out.push_back(p.key + "=u:" + std::to_string(std::get<uint64_t>(p.value)));
        }
    }
    return out;
}

const PushEventInfo EXTENSION_RECORD("remoteNotification", "com.example.mail", "NotifyExt", 100, 7);
const PushEventInfo SERVICE_RECORD = [] {
    // Built with no application context and no account service: empty bundle, account 0.
    return PushEventInfo("kavo.push.IPushService/RegisterToken", -2, 1234567890123UL);
}();

TEST(PushEventReportTest, RecordTypeChoosesTheSetAndTheEventAddsTheCost)
{
    const std::vector<std::string> extensionSet = {"EXTENSION_TYPE=s:remoteNotification",
                                                   "BUNDLE_NAME=s:com.example.mail", "ABILITY_NAME=s:NotifyExt",
                                                   "ACCOUNT_ID=i:100", "ERROR_CODE=i:7"};
    const std::vector<std::string> serviceSet = {"URI=s:kavo.push.IPushService/RegisterToken",
                                                 "BUNDLE_NAME=s:", "ACCOUNT_ID=i:0", "ERROR_CODE=i:-2"};
    const std::vector<std::string> invokeSet = {"URI=s:kavo.push.IPushService/RegisterToken",
                                                "BUNDLE_NAME=s:", "ACCOUNT_ID=i:0", "COST_TIME=u:1234567890123",
                                                "ERROR_CODE=i:-2"};
    struct Case {
        const char* name;
        PushEvent event;
        const PushEventInfo& info;
        std::string eventName;
        SysEventType type;
        std::vector<std::string> params;
    };
    const Case cases[] = {
        {"extension start is behaviour", PushEvent::START_EXTENSION, EXTENSION_RECORD, "START_EXTENSION",
         SysEventType::BEHAVIOR, extensionSet},
        {"extension start error is a fault with five parameters", PushEvent::START_EXTENSION_ERROR, EXTENSION_RECORD,
         "START_EXTENSION_ERROR", SysEventType::FAULT, extensionSet},
        {"an invocation with an extension record uses the extension set", PushEvent::INVOKE_PUSH_SERVICE,
         EXTENSION_RECORD, "INVOKE_PUSH_SERVICE", SysEventType::BEHAVIOR, extensionSet},
        {"connection error with a service record has no cost", PushEvent::CONNECT_PUSHSERVICE_ERROR, SERVICE_RECORD,
         "CONNECT_PUSHSERVICE_ERROR", SysEventType::FAULT, serviceSet},
        {"disconnection error likewise", PushEvent::UNCONNECT_PUSHSERVICE_ERROR, SERVICE_RECORD,
         "UNCONNECT_PUSHSERVICE_ERROR", SysEventType::FAULT, serviceSet},
        {"an invocation puts the cost before the result", PushEvent::INVOKE_PUSH_SERVICE, SERVICE_RECORD,
         "INVOKE_PUSH_SERVICE", SysEventType::BEHAVIOR, invokeSet},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SysEventRecorder recorder;
        PushEventReport::SendEvent(c.event, c.info);
        auto events = recorder.Events();
        ASSERT_EQ(events.size(), 1u);
        EXPECT_EQ(events[0].domain, "PUSH_MANAGER");
        EXPECT_EQ(events[0].name, c.eventName);
        EXPECT_EQ(events[0].type, c.type);
        EXPECT_EQ(Describe(events[0]), c.params);
    }
}

TEST(PushEventReportTest, EventOutsideTheCatalogueThrowsAndWritesNothing)
{
    SysEventRecorder recorder;
    EXPECT_THROW(PushEventReport::SendEvent(static_cast<PushEvent>(5), EXTENSION_RECORD), std::out_of_range);
    EXPECT_TRUE(recorder.Events().empty());
}

TEST(PushEventInfoTest, ServiceRecordTakesThisProcesssBundleAndAccount)
{
    Kavo::Host::Device device;
    device.AddAccount({101, true, true, true});
    device.SetProcessIdentity("com.kavo.push", 101 * 200000 + 3100);
    device.Activate();
    PushEventInfo info("kavo.push.IPushService/Subscribe", 0);
    EXPECT_EQ(info.GetBundleName(), "com.kavo.push");
    EXPECT_EQ(info.GetAccountId(), 101);
    EXPECT_EQ(info.GetType(), 0);
    EXPECT_EQ(info.GetCostTime(), 0u);
    EXPECT_TRUE(info.GetExtensionType().empty());
    EXPECT_EQ(EXTENSION_RECORD.GetType(), 1);
    EXPECT_TRUE(EXTENSION_RECORD.GetUri().empty());
}

}  // namespace
