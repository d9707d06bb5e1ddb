// Driving the simulated device from a test: a platform service that comes up late, one that
// fails once, and one that never comes.
#include <gtest/gtest.h>

#include <chrono>

#include <kavo/host/device/device.h>
#include <kavo/host/samgr/system_ability_manager.h>
#include <kavo/push/common/system_ability_status_service.h>
#include <kavo/push/platform/push_account_helper.h>
#include <kavo/push/platform/push_bundle_helper.h>

namespace {

using namespace Kavo::Push;
using Kavo::Host::Device;
using Status = SystemAbilityStatusService;

// guide: fixture
// A device with one account and the mail application; the registry follows the services.
class MailDeviceTest : public ::testing::Test {
protected:
    MailDeviceTest()
    {
        Status::SetStatus(Status::ANCHOR_ABILITY_ID, Status::STARTED);
        listener_ = Manager().AddStatusListener(
            [](int32_t id, bool up) { Status::SetStatus(id, up ? Status::STARTED : Status::STOPPED); });
        device_.AddAccount({100, true, true, true});
        device_.InstallBundle({"com.example.mail", 10042});
    }
    ~MailDeviceTest() override
    {
        device_.Deactivate();
        Manager().RemoveStatusListener(listener_);
    }
    static Kavo::SystemAbilityManagerClient& Manager() { return Kavo::SystemAbilityManagerClient::GetInstance(); }

    Device device_;
    int listener_ = 0;
};
// end guide

// guide: late
TEST_F(MailDeviceTest, AServiceThatComesLateIsWaitedFor)
{
    Status::SetStatus(Device::ACCOUNT_SERVICE, Status::STOPPED);
    device_.StartServiceAfter(Device::ACCOUNT_SERVICE, std::chrono::milliseconds(100));
    device_.Activate();
    int localId = -1;
    EXPECT_TRUE(PushAccountHelper::GetForegroundOsAccountLocalId(localId).Succeed());
    EXPECT_EQ(localId, 100);
}
// end guide

// guide: once
TEST_F(MailDeviceTest, AFailureOnceReachesTheCallerOnce)
{
    device_.Activate();
    device_.SetReturnCode(Device::BUNDLE_SERVICE, "GetBundleInfoV9", 5);  // the next call only
    Kavo::AppExecFwk::BundleInfo info;
    PushBaseRsp first = PushBundleHelper::GetBundleInfoV9("com.example.mail", 100, info);
    EXPECT_EQ(first.GetErr(), PUSH_ERR_NONE) << "no public code: the caller maps it";
    EXPECT_EQ(first.GetErrDescription(), "Get RimoBundleInfo, 5");
    EXPECT_TRUE(PushBundleHelper::GetBundleInfoV9("com.example.mail", 100, info).Succeed());
    EXPECT_EQ(info.uid, 20010042);
}
// end guide

// guide: never
// Tracked as stopped, the service is waited for (about ten seconds) before the query gives up.
TEST_F(MailDeviceTest, AServiceThatNeverComesFailsAsNotStarted)
{
    Status::SetStatus(Device::BUNDLE_SERVICE, Status::STOPPED);
    device_.SetServiceAbsent(Device::BUNDLE_SERVICE);
    device_.Activate();
    Kavo::AppExecFwk::BundleInfo info;
    PushBaseRsp rsp = PushBundleHelper::GetBundleInfoV9("com.example.mail", 100, info);
    EXPECT_EQ(rsp.GetErr(), PUSH_ERR_SYSTEM_INTERNAL);
    EXPECT_EQ(rsp.GetErrDescription(), "get bms fail: bms sa not started");
}
// end guide

}  // namespace
