// The public message table (every row, its text and its order) and the helpers that rebuild a
// result from a code or fold one result's information into another's description.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "kavo/push/common/push_error_message.h"

namespace {

using namespace Kavo::Push;

struct Row {
    int code;
    const char* text;
};

// The messages reach applications; they are kept letter for letter.
const std::vector<Row>& PublicRows()
{
    static const std::vector<Row> rows = {
        {202, "The caller is illegal."},
        {401, "Invalid input parameter."},
        {1000900001, "System internal error."},
        {1000900002, "Push extension does not exist."},
        {1000900003, "Push extension callback execution failed."},
        {1000900004, "Push extension callback execution timed out."},
        {1000900005, "The event has been registered."},
        {1000900006, "Failed to connect to the RQID service."},
        {1000900007, "Internal error of the RQID service."},
        {1000900008, "Failed to connect to the push service."},
        {1000900009, "Internal error of the push service."},
        {1000900010, "Illegal application identity."},
        {1000900011, "The network is unavailable."},
        {1000900012, "Push rights are not activated."},
        {1000900013, "Cross-location application is not allowed to obtain the token."},
        {1000900014, "The device does not support getting token."},
        {1000900015, "The number of bound profile-app relationships exceeds the maximum."},
        {1000900016, "The os distributed account is not logged in."},
        {1000900017, "Current operation does not support."},
        {1000900018, "Number of calls exceeded."},
        {1000900019, "Illegal entity id."},
        {1000900020, "App token is empty."},
        {1000900021, "App is not available or not registered."},
        {1000900022, "Notification switch off."},
        {1000900023, "Number of entity ids exceed the upper limit."},
        {1000900024, "Failed to display subscription UI."},
        {1000900025, "No rights to access entity id."},
        {1000900026, "Illegal entity type."},
        {1000900027, "Remote notification content is invalid."},
        {1000900028, "VoIP service internal error."},
        {1000900029, "Illegal call id."},
        {1000900030, "The user has not logged in with TALVEN ID."},
    };
    return rows;
}

class PushErrorMessageTest : public ::testing::Test {};

TEST_F(PushErrorMessageTest, TableHoldsExactlyThePublicRowsInOrder)
{
    const auto& rows = PublicRows();
    ASSERT_EQ(PushErrorMessage::errorMessageMap.size(), rows.size());
    size_t i = 0;
    for (const auto& [code, text] : PushErrorMessage::errorMessageMap) {
        EXPECT_EQ(static_cast<int>(code), rows[i].code) << "row " << i;
        EXPECT_EQ(text, rows[i].text) << "row " << i;
        ++i;
    }
    EXPECT_EQ(PushErrorMessage::DESC_SEPARATOR, ", ");
}

TEST_F(PushErrorMessageTest, EveryKnownCodeRebuildsItsStandardMessage)
{
    for (const auto& row : PublicRows()) {
        PushBaseRsp rsp = PushErrorMessage::RebuildPushRsp(row.code);
        EXPECT_EQ(rsp.GetErrAsInt32(), row.code);
        EXPECT_EQ(rsp.GetErrDescription(), row.text) << row.code;
        EXPECT_FALSE(rsp.IsInnerCodeValid()) << row.code;
        EXPECT_FALSE(rsp.IsSubStatusCodeValid()) << row.code;
        EXPECT_TRUE(PushErrorMessage::IsErrorExist(row.code)) << row.code;
    }
}

TEST_F(PushErrorMessageTest, CodesOutsideTheTableBecomeSystemInternalError)
{
    struct Case {
        const char* name;
        int code;
    };
    const Case cases[] = {
        {"unknown code", 12345},
        {"success has no message", 0},
        {"no public code has no message", -1},
        {"just below the block", 1000900000},
        {"just above the block", 1000900031},
        {"an inner code is not a public code", 100002014},
        {"smallest int", INT_MIN},
    };
    for (const auto& c : cases) {
        EXPECT_FALSE(PushErrorMessage::IsErrorExist(c.code)) << c.name;
        PushBaseRsp rsp = PushErrorMessage::RebuildPushRsp(c.code);
        EXPECT_EQ(rsp.GetErrAsInt32(), 1000900001) << c.name;
        EXPECT_EQ(rsp.GetErrDescription(), "System internal error.") << c.name;
        EXPECT_FALSE(rsp.IsInnerCodeValid()) << c.name;
    }
}

TEST_F(PushErrorMessageTest, RebuildErrDescAppendsTheInfoOfAnythingButAnEmptySuccess)
{
    struct Case {
        const char* name;
        PushBaseRsp rsp;
        const char* before;
        const char* after;
    };
    const Case cases[] = {
        {"empty success leaves the text", PushBaseRsp(), "a", "a"},
        {"empty success leaves an empty text", PushBaseRsp(), "", ""},
        {"failure appended after the separator", PushBaseRsp(PUSH_ERR_INVALID_PARAM, std::string("x")), "a",
         "a, x: error(401)"},
        {"failure into an empty text has no separator", PushBaseRsp(PUSH_ERR_INVALID_PARAM, std::string("x")), "",
         "x: error(401)"},
        {"success with a description is appended", PushBaseRsp(PUSH_SUCCESS, std::string("done")), "a", "a, done"},
        {"success with only an inner code counts as empty", PushBaseRsp(PUSH_SUCCESS, 5, std::string()), "a", "a"},
        {"failure without a description is appended", PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL), "a",
         "a, : error(1000900001)"},
        {"inner-only result", PushBaseRsp(INNER_ERR_TIMER_FAILED), "t", "t, : error(-1), innerCode(100002018)"},
    };
    for (const auto& c : cases) {
        std::string desc = c.before;
        PushErrorMessage::RebuildErrDesc(c.rsp, desc);
        EXPECT_EQ(desc, c.after) << c.name;
    }
}

TEST_F(PushErrorMessageTest, RebuildPushRspFoldsSourceIntoTargetInPlace)
{
    struct Case {
        const char* name;
        PushBaseRsp target;
        PushBaseRsp source;
        const char* desc;
    };
    const Case cases[] = {
        {"empty success source changes nothing", PushBaseRsp(4, PUSH_ERR_INVALID_PARAM, "t"), PushBaseRsp(), "t"},
        {"success source with only an inner code changes nothing", PushBaseRsp(4, PUSH_ERR_INVALID_PARAM, "t"),
         PushBaseRsp(PUSH_SUCCESS, 5, std::string()), "t"},
        {"failure source appended", PushBaseRsp(4, PUSH_ERR_INVALID_PARAM, "t"),
         PushBaseRsp(PUSH_ERR_SYSTEM_INTERNAL, 100000143, std::string("s")),
         "t, s: error(1000900001), innerCode(100000143)"},
        {"empty target description takes the info alone", PushBaseRsp(4, PUSH_ERR_INVALID_PARAM, ""),
         PushBaseRsp(PUSH_ERR_CALLER_ILLEGAL, std::string("s")), "s: error(202)"},
        {"success source with a description", PushBaseRsp(4, PUSH_ERR_INVALID_PARAM, "t"),
         PushBaseRsp(PUSH_SUCCESS, std::string("ok")), "t, ok"},
    };
    for (const auto& c : cases) {
        PushBaseRsp target = c.target;
        target.SetInnerErr(77);
        PushBaseRsp result = PushErrorMessage::RebuildPushRsp(target, c.source);
        for (const PushBaseRsp* rsp : {&target, &result}) {
            EXPECT_EQ(rsp->GetErrDescription(), c.desc) << c.name;
            EXPECT_EQ(rsp->GetErr(), PUSH_ERR_INVALID_PARAM) << c.name;
            EXPECT_EQ(rsp->GetInnerErr(), 77) << c.name;
            EXPECT_EQ(rsp->GetSubStatusCode(), 4) << c.name;
        }
    }
}

}  // namespace
