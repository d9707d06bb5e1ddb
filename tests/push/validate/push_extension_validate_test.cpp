#include "kavo/push/validate/push_extension_validate.h"

#include <gtest/gtest.h>

namespace {

using namespace Kavo::Push;

TEST(PushExtensionValidateTest, SurvivalTimeIsCheckedAsInARequest)
{
    PushBaseRsp rsp = PushExtensionValidate::ValidatePushExtensionInfo(PushExtensionInfo(0, false, PushPayload()));
    EXPECT_EQ(rsp.GetErrDescription(), "survival time is invalid: 0");
}

}  // namespace
