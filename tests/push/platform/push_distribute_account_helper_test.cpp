// The distributed account query against a GoogleMock account service.
#include "kavo/push/platform/push_distribute_account_helper.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/push/platform/platform_mocks.h"

namespace KavoTest {
namespace {

using Kavo::Push::PushBaseRsp;
using Kavo::Push::PushDistributeAccountHelper;
using Status = Kavo::Push::SystemAbilityStatusService;

constexpr int32_t NOT_REACHED = 4194321;
constexpr int ACCOUNT = 200;

// One call, no waiting, even while the service is tracked as stopped.
TEST(DistributedAccountTest, AFailureReportsItsCodeWithoutWaiting)
{
    ScopedReadiness readiness;
    EventRecorder events;
    Kavo::LogCapture cap;
    ScopedAccountService service{ACCOUNT};
    readiness.Track(ACCOUNT, Status::STOPPED);
    EXPECT_CALL(*service, GetKavoAccountInfo(_)).WillOnce(Return(NOT_REACHED));
    std::string id = "kept";
    PushBaseRsp distributed = PushDistributeAccountHelper::GetOsDistributedId(id);
    EXPECT_EQ(distributed.GetErr(), 1000900001);
    EXPECT_EQ(distributed.GetErrDescription(), "Get os account distributed id failed:4194321");
    EXPECT_TRUE(HasLine(cap, "Get os account distributed info failed:4194321"));
    EXPECT_EQ(events.Take(), (Events{{35, "GetKavoAccountInfo", 1, "4194321"}}));
}

}  // namespace
}  // namespace KavoTest
