// The public message table, and the helpers that rebuild a result or fold one into another.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <tuple>
#include <vector>

#include "kavo/push/common/push_error_message.h"

namespace {

using namespace Kavo::Push;

// The codes are 202, 401, then 1000900001 upwards; the messages reach applications letter for letter.
const std::vector<std::string> MESSAGES = {"The caller is illegal.",
                                           "Invalid input parameter.",
                                           "System internal error.",
                                           "Push extension does not exist.",
                                           "Push extension callback execution failed.",
                                           "Push extension callback execution timed out.",
                                           "The event has been registered.",
                                           "Failed to connect to the RQID service.",
                                           "Internal error of the RQID service.",
                                           "Failed to connect to the push service.",
                                           "Internal error of the push service.",
                                           "Illegal application identity.",
                                           "The network is unavailable.",
                                           "Push rights are not activated.",
                                           "Cross-location application is not allowed to obtain the token.",
                                           "The device does not support getting token.",
                                           "The number of bound profile-app relationships exceeds the maximum.",
                                           "The os distributed account is not logged in.",
                                           "Current operation does not support.",
                                           "Number of calls exceeded.",
                                           "Illegal entity id.",
                                           "App token is empty.",
                                           "App is not available or not registered.",
                                           "Notification switch off.",
                                           "Number of entity ids exceed the upper limit.",
                                           "Failed to display subscription UI.",
                                           "No rights to access entity id.",
                                           "Illegal entity type.",
                                           "Remote notification content is invalid.",
                                           "VoIP service internal error.",
                                           "Illegal call id.",
                                           "The user has not logged in with TALVEN ID."};

TEST(PushErrorMessageTest, EveryPublicCodeAndNoOtherRebuildsItsMessage)
{
    ASSERT_EQ(PushErrorMessage::errorMessageMap.size(), MESSAGES.size());
    for (size_t i = 0; i < MESSAGES.size(); ++i) {
        const int code = i == 0 ? 202 : i == 1 ? 401 : 1000900000 + static_cast<int>(i) - 1;
        EXPECT_TRUE(PushErrorMessage::IsErrorExist(code)) << code;
        EXPECT_EQ(PushErrorMessage::RebuildPushRsp(code).GetInfo(),
                  MESSAGES[i] + ": error(" + std::to_string(code) + ")");
    }
    for (int code : {0, -1, 1000900000, 1000900031, 100002014, INT_MIN}) {
        EXPECT_FALSE(PushErrorMessage::IsErrorExist(code)) << code;
        EXPECT_EQ(PushErrorMessage::RebuildPushRsp(code).GetInfo(), "System internal error.: error(1000900001)")
            << code;
    }
}

// RebuildErrDesc folds a result into a text; RebuildPushRsp folds it into a target's description,
// leaving the target's codes alone and returning the target as it then is.
TEST(PushErrorMessageTest, FoldingAppendsTheInfoOfAnythingButAnEmptySuccess)
{
    // The name, the result folded in, the text before and after.
    const std::tuple<const char*, PushBaseRsp, const char*, const char*> cases[] = {
        {"empty success changes nothing", PushBaseRsp(), "a", "a"},
        {"success with only an inner code counts as empty", PushBaseRsp(PUSH_SUCCESS, 5, std::string()), "a", "a"},
        {"failure appended after the separator", PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, 100000143, std::string("s")),
         "a", "a, s: error(1000900001), innerCode(100000143)"},
        {"an empty text takes the info without separator", PushBaseRsp(PUSH_ERR_CALLER_ILLEGAL, std::string("s")), "",
         "s: error(202)"},
        {"success with a description is appended", PushBaseRsp(PUSH_SUCCESS, std::string("done")), "a", "a, done"},
    };
    for (const auto& [name, source, before, after] : cases) {
        std::string desc = before;
        PushErrorMessage::RebuildErrDesc(source, desc);
        EXPECT_EQ(desc, after) << name;
        PushBaseRsp target(4, PUSH_ERR_INVALID_PARAM, "%s", before);
        target.SetInnerErr(77);
        PushBaseRsp result = PushErrorMessage::RebuildPushRsp(target, source);
        const std::string info = std::string(after) + ": error(401), innerCode(77)";
        EXPECT_EQ(target.GetInfo(), info) << name;
        EXPECT_EQ(result.GetInfo(), info) << name;
        EXPECT_EQ(result.GetSubStatusCode(), 4) << name;
    }
}

}  // namespace
