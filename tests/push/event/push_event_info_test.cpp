#include "kavo/push/event/push_event_info.h"

#include <gtest/gtest.h>

#include <tuple>

#include "kavo/host/device/device.h"

namespace {

using Kavo::Push::PushEventInfo;

TEST(PushEventInfoTest, ServiceRecordTakesThisProcesssBundleAndAccount)
{
    Kavo::Host::Device device;
    device.AddAccount({101, true, true, true});
    device.SetProcessIdentity("com.kavo.push", 101 * 200000 + 3100);
    device.Activate();
    PushEventInfo info("kavo.push.IPushService/Subscribe", 0);
    EXPECT_EQ(std::make_tuple(info.GetBundleName(), info.GetAccountId(), info.GetType(), info.GetCostTime()),
              std::make_tuple("com.kavo.push", 101, 0, 0u));
}

}  // namespace
